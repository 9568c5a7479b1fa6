#include "app/shell/tier_log.h"

#include "core/image/tamlo_error.h"
#include "core/io/image_writer.h"
#include "platform/environment.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace tamlo {
namespace {

/// Of a picture's brightest channel: the least in the middle tenth, and the median of a ring round it. A
/// darker middle tells a tier that was vignetted at another scale.
struct CentreAndRing {
    int centreMin = 255, ringMedian = 0;
};

CentreAndRing measure(const ReadyImage& image)
{
    CentreAndRing out;
    std::vector<int> ring;
    const double reach = static_cast<double>(std::min(image.width, image.height));
    for (std::int64_t y = 0; y < image.height; ++y)
        for (std::int64_t x = 0; x < image.width; ++x) {
            const double dx = static_cast<double>(2 * x - image.width) / 2,
                         dy = static_cast<double>(2 * y - image.height) / 2;
            const double r2 = (dx * dx + dy * dy) / (reach * reach);
            const std::uint8_t* p = image.rgba.data() + (y * image.width + x) * 4;
            const int level = std::max({p[0], p[1], p[2]});
            if (r2 < 0.05 * 0.05) out.centreMin = std::min(out.centreMin, level);
            if (r2 > 0.15 * 0.15 && r2 < 0.25 * 0.25) ring.push_back(level);
        }
    if (ring.empty()) return out;
    const auto middle = ring.begin() + static_cast<std::ptrdiff_t>(ring.size() / 2);
    std::nth_element(ring.begin(), middle, ring.end());
    out.ringMedian = *middle;
    return out;
}

} // namespace

TierLog::TierLog() : tells_(platform::environmentVariable("TAMLO_TIER_DEBUG").has_value())
{
    if (const auto folder = platform::environmentVariable("TAMLO_DUMP_FRAME"); folder && !folder->empty())
        folder_ = *folder;
}

void TierLog::event(const std::string& what, const State& state) const
{
    if (tells_)
        std::fprintf(stderr, "[tier] %s %s %lld px · shown %lld · full %lld\n", what.c_str(),
                     state.tier.c_str(), static_cast<long long>(state.longSide),
                     static_cast<long long>(state.shown), static_cast<long long>(state.full));
}

void TierLog::dump(const ReadyImage& image, const std::string& tier)
{
    if (!folder_) return;
    char name[96];
    std::snprintf(name, sizeof name, "shown-%04d-%s-%lldx%lld.png", ++counter_, tier.c_str(),
                  static_cast<long long>(image.width), static_cast<long long>(image.height));
    const CentreAndRing level = measure(image);
    const double ratio = level.ringMedian > 0 ? double(level.centreMin) / level.ringMedian : 0;
    std::string problem;
    try {
        ImageWriter::save(image, (*folder_ / name).string(), 0, std::nullopt);
    } catch (const TamloError& error) {
        problem = std::string(" · ") + error.what();
    }
    std::fprintf(stderr, "[shot %s] centre-min %d · ring median %d · ratio %.2f%s\n", name, level.centreMin,
                 level.ringMedian, ratio, problem.c_str());
}

} // namespace tamlo
