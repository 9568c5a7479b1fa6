#include "core/process/crt/tube_tone.h"

#include "core/image/bands.h"
#include "core/image/rounding.h"
#include "core/process/crt/crt_passes.h"
#include "core/process/crt/scan_lines.h"
#include "core/process/crt/shadow_mask.h"
#include "core/process/crt/video_signal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <list>
#include <mutex>
#include <utility>

namespace tamlo {
namespace {

using namespace CRTScreen;

constexpr double kTilePpx = 96.0;
constexpr std::int64_t kSamples = 4096;
constexpr std::size_t kToneEntries = 1025;
constexpr double kToneRange = 4.0;
constexpr double kMostGain = 8.0;

/// What the tone of a tube follows from.
struct ToneKey {
    CRTParams cfg;
    std::int64_t size = 0; ///< closeness to four decimals
    Structure drawn;
    bool operator==(const ToneKey& other) const
    {
        return size == other.size && drawn.mask == other.drawn.mask && drawn.lines == other.drawn.lines &&
               cfg == other.cfg;
    }
};

ToneKey keyOf(const PaperProfile& paper, const RenderOptions& options, Structure structure)
{
    const double zoom = screen(paper, options).zoom;
    return {frameCfg(paper.crt.value_or(CRTParams{}), zoom), pyRound(zoom * 10'000.0), structure};
}

/// The last few answers, so that a session that looks at many tubes keeps no more than it needs.
template <typename Value>
class ToneCache {
public:
    template <typename Make>
    Value get(const ToneKey& key, const Make& make)
    {
        {
            const std::lock_guard lock(mutex_);
            for (const auto& [known, value] : kept_)
                if (known == key) return value;
        }
        Value value = make();
        const std::lock_guard lock(mutex_);
        kept_.emplace_front(key, value);
        if (kept_.size() > kMost) kept_.pop_back();
        return value;
    }

private:
    static constexpr std::size_t kMost = 16;
    std::mutex mutex_;
    std::list<std::pair<ToneKey, Value>> kept_;
};

ToneCache<double>& gainCache()
{
    static ToneCache<double> cache;
    return cache;
}

ToneCache<std::vector<float>>& lightCache()
{
    static ToneCache<std::vector<float>> cache;
    return cache;
}

ToneCache<std::vector<float>>& toneCache()
{
    static ToneCache<std::vector<float>> cache;
    return cache;
}

/// Values of 0 and above in rising order, by their bits.
void sortRising(std::vector<float>& values)
{
    constexpr int kBits = 11, kPasses = 3;
    constexpr std::size_t kBins = std::size_t{1} << kBits;
    std::vector<float> other(values.size());
    for (int pass = 0; pass < kPasses; ++pass) {
        const auto digit = [&](float v) {
            return (std::bit_cast<std::uint32_t>(v) >> (pass * kBits)) & (kBins - 1);
        };
        std::array<std::size_t, kBins> place{};
        for (const float v : values) ++place[digit(v)];
        std::size_t sum = 0;
        for (std::size_t& bin : place) sum += std::exchange(bin, sum);
        for (const float v : values) other[place[digit(v)]++] = v;
        values.swap(other);
    }
}

/// Mean of min(gain × s, 1).
double clipped(const std::vector<float>& s, double gain)
{
    double sum = 0.0;
    for (const float v : s) sum += std::min(gain * static_cast<double>(v), 1.0);
    return sum / static_cast<double>(s.size());
}

void drawTile(std::vector<Plane>& planes, const Tube& tube, Structure structure, double linePx, double ppx)
{
    const auto [width, height] = planes[0].size();
    const DrawnLines lines(lineCount(height, linePx), linePx, tube.spot);
    const ShadowMask mask(structure.mask ? tube : Tube{}, ppx, {width, structure.mask ? height : 1}, {});
    std::array<float*, 3> data{};
    for (std::size_t c = 0; c < planes.size(); ++c) data[c] = planes[c].mutableData();
    parallelBands(height, width * 4, [&](std::int64_t start, std::int64_t end) {
        ShadowMask::Scratch scratch;
        for (std::int64_t y = start; y < end; ++y) {
            double light = structure.lines ? 0.0 : 1.0;
            if (structure.lines)
                for (const float weight : lines.row(y).weights) light += static_cast<double>(weight);
            std::array<float*, 3> rows{};
            for (std::size_t c = 0; c < planes.size(); ++c) {
                rows[c] = data[c] + y * width;
                std::fill_n(rows[c], width, static_cast<float>(light));
            }
            if (structure.mask) mask.apply(rows, y, 1.0f, scratch);
        }
    });
}

Plane transposed(const Plane& plane)
{
    Plane out(plane.height, plane.width);
    float* to = out.mutableData();
    for (std::int64_t y = 0; y < plane.height; ++y)
        for (std::int64_t x = 0; x < plane.width; ++x) to[x * plane.height + y] = plane.row(y)[x];
    return out;
}

Plane rowsSoftened(Plane plane, double sigma)
{
    constexpr double kEvenRows = 2.0; // a mirrored row is even to 3e-9 beyond
    const std::int64_t width = plane.width;
    const bool even = sigma >= kEvenRows * static_cast<double>(width);
    const RowBlur blur(even ? 0.0 : sigma, width, EdgeMode::reflect);
    float* values = plane.mutableData();
    parallelBands(plane.height, width * 8, [&](std::int64_t start, std::int64_t end) {
        RowBlur::Scratch scratch;
        for (std::int64_t y = start; y < end; ++y) {
            float* row = values + y * width;
            blur.apply(row, scratch);
            if (!even) continue;
            double sum = 0.0;
            for (std::int64_t x = 0; x < width; ++x) sum += static_cast<double>(row[x]);
            std::fill_n(row, width, static_cast<float>(sum / static_cast<double>(width)));
        }
    });
    return plane;
}

Plane softened(Plane plane, double sigma)
{
    return transposed(rowsSoftened(transposed(rowsSoftened(std::move(plane), sigma)), sigma));
}

/// Light of a white screen with that structure, kept: the camera's exposure and a tone share it.
std::vector<float> lightOf(const PaperProfile& paper, const RenderOptions& options, Structure structure)
{
    return lightCache().get(keyOf(paper, options, structure), [&] {
        return samples(tileStructure(tube(paper, options), screen(paper, options), structure, kTilePpx),
                       kSamples);
    });
}

} // namespace

std::vector<Plane> CRTScreen::tileStructure(const Tube& tube, const Screen& screen, Structure structure,
                                            double ppx)
{
    constexpr double kPitches = 6.0, kLeastLines = 4.0;
    constexpr double kWidestLinePx = 512.0; // lines much wider than the mask say the same at any width
    constexpr double kLeastPx = 1e-6;
    const double pxUm = tube.pitchMm * 1000.0 / ppx;
    const double lineMm = screen.heightMm / std::max(screen.lines, 1e-6);
    const double linePx = std::clamp(lineMm * 1000.0 / std::max(pxUm, 1e-6), kLeastPx, kWidestLinePx);
    const double k = std::max(std::rint(ppx * kPitches / linePx), kLeastLines);
    const Size size{pyRound(ppx * kPitches), std::max<std::int64_t>(pyRound(linePx * k), 1)};

    structure.mask = structure.mask && !tube.mono();
    structure.lines = structure.lines && linePx >= minLinePx;
    std::vector<Plane> planes(tube.mono() ? 1 : 3, Plane(size.width, size.height, 1.0f));
    drawTile(planes, tube, structure, linePx, ppx);

    double mean = 0.0;
    for (const Plane& plane : planes) mean += plane.mean() / static_cast<double>(planes.size());
    const auto rest = static_cast<float>(1.0 - tube.bloom), haze = static_cast<float>(tube.bloom * mean);
    for (Plane& plane : planes) {
        float* values = plane.mutableData();
        for (std::int64_t i = 0; i < plane.count(); ++i) values[i] = rest * values[i] + haze;
        plane = softened(std::move(plane), tube.cameraPsfUm / std::max(pxUm, 1e-6));
    }
    return planes;
}

std::vector<float> CRTScreen::samples(const std::vector<Plane>& planes, std::int64_t n)
{
    std::vector<float> all;
    for (const Plane& plane : planes)
        for (const float v : plane.data) all.push_back(std::max(v, 0.0f) + 0.0f);
    sortRising(all);
    const std::size_t step = std::max<std::size_t>(all.size() / static_cast<std::size_t>(n), 1);
    std::vector<float> out;
    for (std::size_t i = 0; i < all.size(); i += step) out.push_back(all[i]);
    return out;
}

double CRTScreen::cameraGain(const PaperProfile& paper, const RenderOptions& options)
{
    return gainCache().get(keyOf(paper, options, {}), [&] {
        const Tube shown = tube(paper, options);
        const std::vector<float> s = lightOf(paper, options, {});
        if (clipped(s, 1.0) >= shown.whiteMean) return 1.0;
        double low = 1.0, high = kMostGain;
        for (int step = 0; step < 40; ++step) {
            const double middle = 0.5 * (low + high);
            (clipped(s, middle) >= shown.whiteMean ? high : low) = middle;
        }
        return 0.5 * (low + high);
    });
}

std::vector<float> CRTScreen::toneLUT(const PaperProfile& paper, Structure undrawn,
                                      const RenderOptions& options)
{
    return toneCache().get(keyOf(paper, options, undrawn), [&] {
        const double gain = cameraGain(paper, options);
        std::vector<float> s{1.0f};
        if (undrawn.mask || undrawn.lines) s = lightOf(paper, options, undrawn);
        std::vector<float> lut(kToneEntries);
        for (std::size_t i = 0; i < lut.size(); ++i)
            lut[i] = static_cast<float>(clipped(s, gain * static_cast<double>(i) * kToneRange /
                                                       static_cast<double>(kToneEntries - 1)));
        return lut;
    });
}

} // namespace tamlo
