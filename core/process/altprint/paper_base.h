// The paper that a handmade print lies on: its colour, by name, by the profile, or by the frame's own choice.
// Domain: display-linear, a perfect white at 1.
#pragma once

#include "core/image/rgb_image.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <string_view>
#include <utility>

namespace tamlo::AltPrint {

/// Named stocks, measured by eye against rag and tinted papers.
inline constexpr std::pair<std::string_view, Vec3d> paperBases[] = {
    {"white_rag", {0.8909, 0.875, 0.8448}},
    {"cream", {0.8642, 0.7996, 0.7132}},
    {"buff", {0.8465, 0.7392, 0.6048}},
};

/// Colour of the bare paper. The option `paper_base` goes before the profile's `base`; an unknown name takes
/// the profile's `base_rgb`, and white rag without one.
Vec3f resolveBase(const PaperProfile& paper, const RenderOptions& options);

} // namespace tamlo::AltPrint
