// How format and crop follow a change of the process: a film brings the formats that it is made in, and a
// crop that was only the window of the format becomes the window of the new one.
#pragma once

#include "app/project/frame.h"
#include "core/image/plane.h"

#include <functional>
#include <optional>
#include <string>

namespace tamlo {

class ProfileStore;

/// The settings with format and frame size such as the new film has them, where the film has changed.
ProcessSettings formatFittingStock(const ProcessSettings& from, ProcessSettings to,
                                   const ProfileStore& store);

/// Something has changed that decides the window of the format.
bool formatWindowKeysChanged(const ProcessSettings& a, const ProcessSettings& b);

/// What the window of a frame depends on beside its settings.
struct WindowOf {
    const ProfileStore& store;
    std::optional<std::string> cropGate; ///< the project's
    /// Size of the source, upright; none when it can't be had.
    std::function<std::optional<Size>(const Frame&)> sourceSize;
};

/// Whose crop follows: one that was the old window, straight and in its ratio; for a knob also one that does
/// not lie within the picture.
enum class Refit { automatic, automaticAndBeyond };

/// Fits the crop of a frame to the window of its new settings, where the window's ratio has changed. A crop
/// that the user made stays.
void followFormatWindow(Frame& frame, const ProcessSettings& before, const WindowOf& window,
                        Refit refit = Refit::automatic);

} // namespace tamlo
