// What the tests of the presses share: flat fields, means, and a press without the spread of light and
// clouds.
#pragma once

#include "core/process/press/inkjet.h"
#include "core/process/press/offset.h"
#include "core/process/press/repro.h"
#include "core/profiles/catalogue/profile_store.h"
#include "tests/support/pictures.h"

#include <numeric>

namespace tamlo::test {

inline PaperProfile paperNamed(const char* name)
{
    return ProfileStore::shared().paper(name);
}

inline RGBImage flat(std::int64_t w, std::int64_t h, float v)
{
    return {w, h, Vec3f{v, v, v}};
}

/// Means in 64-bit floats.
inline Vec3d meansOf(const RGBImage& image)
{
    Vec3d sum{};
    for (std::int64_t i = 0; i < image.pixelCount(); ++i)
        for (std::size_t c = 0; c < 3; ++c) sum[c] += image.data[static_cast<std::size_t>(i) * 3 + c];
    for (double& v : sum) v /= static_cast<double>(image.pixelCount());
    return sum;
}

/// A picture printed at that many micrometres a pixel.
inline RGBImage printed(const char* paper, RGBImage image, double pxUm, RenderOptions options = {},
                        bool mono = false)
{
    options.printPxUm = pxUm;
    return Film::applyRepro(std::move(image), paperNamed(paper), options, mono);
}

inline Vec3d baseOf(const char* paper)
{
    const PaperProfile p = paperNamed(paper);
    return ReproPrint::bases(p.offset ? *p.offset->base : *p.inkjet->base, "coated");
}

} // namespace tamlo::test
