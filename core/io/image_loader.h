// ImageLoader turns a file on disk into scene light: an RGBImage, linear, on sRGB primaries. All decoding of
// the program goes through it. RAW files (by extension alone) are developed by the RAW engine; every other
// file is an encoded picture. The namespace keeps no state but two switches of the environment; every
// operation may be called from any thread.
#pragma once

#include "core/image/source_exposure.h"
#include "core/io/decode_rules.h"
#include "core/io/encoded_decode.h"
#include "core/io/raw_decode.h"

namespace tamlo::ImageLoader {

/// The whole frame, upright, with its source exposure applied. `capLongPx` (0: none) limits the long side of
/// a RAW frame. An encoded picture takes neither exposure nor cap; how it is read is for it alone.
/// Errors: as decodeRAW, RAWDecode::render and decodeEncoded.
RGBImage loadLinear(const std::filesystem::path& path, WBMode wbMode, SourceExposure::Mode srcExposure,
                    std::int64_t capLongPx, const Reading& reading = {});

/// The size that loadLinear gives, without developing or, where the codec allows it, decoding.
/// Errors: as decodeRAW and encodedSize.
Size pictureSize(const std::filesystem::path& path, std::int64_t capLongPx);

} // namespace tamlo::ImageLoader
