#include "core/film/light/display_lights.h"

#include "core/film/light/display_lights_passes.h"
#include "core/image/gaussian.h"
#include "core/image/render_profiler.h"
#include "core/image/rounding.h"
#include "core/image/source_exposure.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tamlo {
namespace {

constexpr float kBrightestDisplay = 2.0f; // wide gamuts reach above 1 on sRGB primaries, scene light further
// A lamp ends at white nearly everywhere; white cloth or snow does in its brightest folds. Shares of a
// region:
constexpr double kClipsFrom = 0.25;
constexpr double kClipsAt = 0.6;
// It outshines what is around it, as no paint in the same light does.
constexpr double kStandsOutFrom = 4.0;
constexpr double kStandsOutAt = 16.0;
// A frame that is dark as a whole was taken by its lamps; what clips in daylight is mostly a bright surface.
constexpr double kNightTo = 0.05; // median luminance
constexpr double kDayFrom = 0.15;
constexpr double kDayShare = 0.1;
constexpr int kReach = 8;      // cells around a region that know of it
constexpr int kRimReach = 2;   // where its rim is read
constexpr int kSolidReach = 3; // as far the map holds all of a region's light
constexpr double kMapSigma = 1.0;
constexpr Vec3d kLuma{0.2126, 0.7152, 0.0722};

double smooth(double from, double to, double v)
{
    const double t = std::clamp((v - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double luma(const Vec3d& v)
{
    return v[0] * kLuma[0] + v[1] * kLuma[1] + v[2] * kLuma[2];
}

Size gridOf(Size frame)
{
    const std::int64_t longSide = std::max(frame.width, frame.height);
    if (longSide <= DisplayLights::mapPx) return frame;
    const auto side = [&](std::int64_t n) {
        return std::max<std::int64_t>(
            pyRound(static_cast<double>(n * DisplayLights::mapPx) / static_cast<double>(longSide)), 1);
    };
    return {side(frame.width), side(frame.height)};
}

/// A connected region of bright cells with what lies around it.
struct Region {
    double lit = 0.0, clipped = 0.0;
    Vec3d light{}, rim{}, around{};
    double pixels = 0.0, aroundPixels = 0.0;
    Vec3f missing{};
};

/// The regions of a grid, and for each cell the nearest region and how far it is.
class Regions {
public:
    Regions(std::vector<LightCell> cells, Size grid) : cells_(std::move(cells)), grid_(grid)
    {
        label_.assign(cells_.size(), kNone);
        distance_.assign(cells_.size(), kReach + 1);
        for (std::size_t i = 0; i < cells_.size(); ++i)
            if (label_[i] == kNone && isBright(i)) grow(i);
        spread();
        gatherRegions();
    }

    bool empty() const { return regions_.empty(); }

    /// Settles what each region lacks. Returns whether any lacks something.
    bool settle()
    {
        const double frame = framePixels(), share = shareByDaylight();
        bool any = false;
        for (Region& region : regions_) {
            region.missing = missingOf(region, frame, share);
            any = any || region.missing != Vec3f{};
        }
        return any;
    }

    RGBImage map() const
    {
        RGBImage out(grid_.width, grid_.height);
        float* to = out.mutableData();
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            if (label_[i] == kNone) continue;
            const double fade = 1.0 - smooth(kSolidReach, kReach, distance_[i]);
            for (std::size_t c = 0; c < 3; ++c)
                to[i * 3 + c] = static_cast<float>(fade) * regions_[label_[i]].missing[c];
        }
        return gaussianFilter(std::move(out), kMapSigma, EdgeMode::nearest);
    }

private:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    bool isBright(std::size_t i) const { return cells_[i].peak > DisplayLights::touchedFrom; }

    double framePixels() const
    {
        double total = 0.0;
        for (const LightCell& cell : cells_) total += cell.pixels;
        return total;
    }

    double shareByDaylight() const
    {
        std::vector<double> values;
        for (const LightCell& cell : cells_) values.push_back(luma(cell.light) / cell.pixels);
        const double median = SourceExposure::percentile(values, 50.0);
        return 1.0 - (1.0 - kDayShare) * smooth(kNightTo, kDayFrom, median);
    }

    template <typename Visit>
    void eachNeighbour(std::size_t i, const Visit& visit) const
    {
        const auto x = static_cast<std::int64_t>(i) % grid_.width,
                   y = static_cast<std::int64_t>(i) / grid_.width;
        for (std::int64_t v = std::max<std::int64_t>(y - 1, 0); v < std::min(y + 2, grid_.height); ++v)
            for (std::int64_t u = std::max<std::int64_t>(x - 1, 0); u < std::min(x + 2, grid_.width); ++u)
                visit(static_cast<std::size_t>(v * grid_.width + u));
    }

    /// Takes in every bright cell that is connected with a first one.
    void grow(std::size_t first)
    {
        const std::size_t label = regions_.size();
        regions_.emplace_back();
        const std::size_t begin = queue_.size();
        const auto take = [&](std::size_t i) {
            if (label_[i] != kNone || !isBright(i)) return;
            label_[i] = label;
            distance_[i] = 0;
            queue_.push_back(i);
        };
        take(first);
        for (std::size_t at = begin; at < queue_.size(); ++at) eachNeighbour(queue_[at], take);
    }

    /// Gives the cells around each region its label, ring by ring.
    void spread()
    {
        for (std::size_t at = 0; at < queue_.size(); ++at) {
            const std::size_t from = queue_[at];
            if (distance_[from] >= kReach) continue;
            eachNeighbour(from, [&](std::size_t i) {
                if (label_[i] != kNone) return;
                label_[i] = label_[from];
                distance_[i] = distance_[from] + 1;
                queue_.push_back(i);
            });
        }
    }

    void gatherRegions()
    {
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            if (label_[i] == kNone) continue;
            const LightCell& cell = cells_[i];
            Region& region = regions_[label_[i]];
            const bool inside = distance_[i] == 0;
            const bool outside = distance_[i] > kRimReach;
            if (inside) region.lit += cell.lit;
            if (inside) region.clipped += cell.clipped;
            for (std::size_t c = 0; c < 3; ++c) {
                if (inside) region.light[c] += cell.light[c];
                if (outside) region.around[c] += cell.light[c];
                if (!outside) region.rim[c] += cell.rim[c];
            }
            if (inside) region.pixels += cell.pixels;
            if (outside) region.aroundPixels += cell.pixels;
        }
    }

    static Vec3f missingOf(const Region& region, double framePixels, double share)
    {
        const double clips = smooth(kClipsFrom, kClipsAt, region.clipped / std::max(region.lit, 1.0));
        // A lamp of less than a cell shares it with the dark.
        const double inside = luma(region.light) / std::max(region.lit, 1.0);
        const double around = luma(region.around) / std::max(region.aroundPixels, 1.0);
        const double contrast = smooth(std::log(kStandsOutFrom), std::log(kStandsOutAt),
                                       std::log(std::max(inside, 1e-4) / std::max(around, 1e-4)));
        const double gain = DisplayLights::gainOf(region.lit / framePixels);
        const double missing = share * clips * contrast * (gain - 1.0);
        const double most = std::max({region.rim[0], region.rim[1], region.rim[2]});
        Vec3f out{};
        for (std::size_t c = 0; c < 3; ++c)
            out[c] = static_cast<float>(missing * (most > 0.0 ? region.rim[c] / most : 1.0));
        return out;
    }

    std::vector<LightCell> cells_;
    Size grid_;
    std::vector<std::size_t> label_;
    std::vector<int> distance_;
    std::vector<std::size_t> queue_; ///< cells in the order in which they were reached
    std::vector<Region> regions_;
};

} // namespace

double DisplayLights::gainOf(double area)
{
    if (area >= lampArea) return 1.0 + (lampGain - 1.0) * (1.0 - smooth(lampArea, wallArea, area));
    const double t = std::clamp(
        std::log(std::max(area, pointArea) / pointArea) / std::log(lampArea / pointArea), 0.0, 1.0);
    // A sign of neon tubes is thin and long: it covers more than a lamp and is as bright.
    return pointGain * std::pow(lampGain / pointGain, t * t * t * t);
}

DisplayLights::Map DisplayLights::measure(const RGBImage& frame)
{
    const RenderProfiler::Scope booked("display lights", frame.pixelCount());
    if (frame.pixelCount() == 0) return {};
    const Size grid = gridOf(frame.size());
    std::vector<LightCell> cells = gather_lights(frame, grid);
    const auto isScene = [](const LightCell& cell) { return cell.peak > kBrightestDisplay; };
    if (std::ranges::any_of(cells, isScene)) return {};
    Regions regions(std::move(cells), grid);
    if (!regions.settle()) return {};
    return {regions.map()};
}

RGBImage DisplayLights::restore(RGBImage image, const Map& map, double amount)
{
    if (map.empty() || image.pixelCount() == 0 || !(amount > 0.0)) return image;
    const RenderProfiler::Scope booked("display lights", image.pixelCount());
    add_lights(image, map.missing, static_cast<float>(std::min(amount, 1.0)));
    return image;
}

RGBImage DisplayLights::restore(RGBImage image, double amount)
{
    if (!(amount > 0.0)) return image;
    const Map map = measure(image);
    return restore(std::move(image), map, amount);
}

} // namespace tamlo
