// How the pixels of a source are made, in the sizes that the screen asks for. Stateless; from any thread.
#pragma once

#include "app/preview/proxy_file.h"

#include <filesystem>

namespace tamlo::SourceDecode {

using Path = std::filesystem::path;

/// Long side at which a RAW source is measured: the master of a full frame of 135 film.
std::int64_t statsDecodeLong();

/// The proxy of a file. Above 2,048 pixels it has been half floats, so that one read from the cache later is
/// the same to the bit. Errors: those of ImageLoader.
FrameSource proxy(const Path& file, WBMode wb);
/// What the clipped lights of a display picture lack, of the whole picture, upright: what its proxy has.
DisplayLights::Map lights(const RGBImage& whole);
/// A picture of about that long side, by a fast demosaic where that is below the sensor's.
RGBImage detail(const Path& file, std::int64_t longSide, WBMode wb);
/// All there is, up to a cap on the long side of a RAW source; 0 for none. What an export works on.
RGBImage full(const Path& file, std::int64_t capLongPx, WBMode wb);
/// Upright, pixels unread; absent where the file doesn't say.
std::optional<Size> fullPixelSize(const Path& file);

} // namespace tamlo::SourceDecode
