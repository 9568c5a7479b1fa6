#include "core/film/grain/growth_lattice.h"

#include "core/image/cancellation.h"
#include "core/image/gaussian.h"
#include "platform/worker_pool.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

std::int64_t radiusOf(const std::vector<float>& kernel)
{
    return std::max<std::int64_t>(static_cast<std::int64_t>(kernel.size()) - 1, 0);
}

/// Rows of the lattice in a ring: row y lies in slot y modulo the capacity.
class RowRing {
public:
    RowRing(std::int64_t capacity, std::int64_t length)
        : capacity_(capacity), length_(length), values_(static_cast<std::size_t>(capacity * length))
    {}
    float* row(std::int64_t y) { return values_.data() + y % capacity_ * length_; }

private:
    std::int64_t capacity_, length_;
    std::vector<float> values_;
};

/// A place between two pixels of a row or a column.
struct Between {
    std::int64_t first, second;
    float weight;
};

Between siteBetween(std::int64_t site, std::int64_t scale, std::int64_t pixels)
{
    const double at = (static_cast<double>(site) + 0.5) / static_cast<double>(scale) - 0.5;
    const double whole = std::floor(at);
    const auto i = static_cast<std::int64_t>(whole);
    return {std::clamp<std::int64_t>(i, 0, pixels - 1), std::clamp<std::int64_t>(i + 1, 0, pixels - 1),
            static_cast<float>(at - whole)};
}

/// The columns a strip works on. Its clump field and dye reach further than its pixels, and the noise further
/// still; a column off the lattice stands for its mirror image.
struct StripColumns {
    std::int64_t sites = 0;      ///< of the strip's own pixels
    std::int64_t fieldCount = 0; ///< of the clump field, padded
    std::int64_t noiseCount = 0; ///< of the noise, padded
    std::int64_t pixelStart = 0, pixelCount = 0;
    std::vector<std::uint32_t> hash;         ///< of the noise columns
    std::vector<std::int32_t> first, second; ///< of the field columns, from pixelStart
    std::vector<float> weight;

    StripColumns(const GrowthLatticePlan& plan, Size frame, std::int64_t x0, std::int64_t x1)
    {
        const std::int64_t cloudR = radiusOf(plan.cloud), clumpR = radiusOf(plan.clumpX);
        const std::int64_t lattice = frame.width * plan.scale;
        sites = (x1 - x0) * plan.scale;
        fieldCount = growthPadded(growthPadded(sites) + 2 * cloudR);
        noiseCount = growthPadded(fieldCount + 2 * clumpR);
        const std::int64_t fieldStart = x0 * plan.scale - cloudR, noiseStart = fieldStart - clumpR;
        for (std::int64_t i = 0; i < noiseCount; ++i)
            hash.push_back(static_cast<std::uint32_t>(reflectIndex(noiseStart + i, lattice)) *
                           kGrowthColumnPrime);

        std::vector<Between> places;
        for (std::int64_t i = 0; i < fieldCount; ++i)
            places.push_back(siteBetween(reflectIndex(fieldStart + i, lattice), plan.scale, frame.width));
        pixelStart = frame.width;
        std::int64_t pixelEnd = 0;
        for (const Between& place : places) {
            pixelStart = std::min(pixelStart, place.first);
            pixelEnd = std::max(pixelEnd, place.second + 1);
        }
        pixelCount = pixelEnd - pixelStart;
        for (const Between& place : places) {
            first.push_back(static_cast<std::int32_t>(place.first - pixelStart));
            second.push_back(static_cast<std::int32_t>(place.second - pixelStart));
            weight.push_back(place.weight);
        }
    }
};

struct PixelRect {
    std::int64_t x0, x1, y0, y1;
};

/// A strip of columns on its way down a band. Rows of sites are made in blocks of kGrowthRows: noise, blurred
/// along x, waits in one ring for the blur along y; dye density, blurred along x, in a second one.
class Strip {
public:
    Strip(const GrowthChannel& density, const GrowthLatticePlan& plan, const PixelRect& rect, float* light)
        : density_(density),
          plan_(plan),
          rect_(rect),
          latticeH_(density.size.height * plan.scale),
          clumpR_(radiusOf(plan.clumpX)),
          cloudR_(radiusOf(plan.cloud)),
          columns_(plan, density.size, rect.x0, rect.x1),
          nextDye_(std::max<std::int64_t>(rect.y0 * plan.scale - cloudR_, 0)),
          nextNoise_(std::max<std::int64_t>(nextDye_ - clumpR_, 0)),
          noiseRing_(2 * clumpR_ + kGrowthRows, columns_.fieldCount),
          dyeRing_(plan.cloud.empty() ? 0 : 2 * (cloudR_ + kGrowthRows), growthPadded(columns_.sites)),
          stretched_(2, columns_.fieldCount),
          block_(kGrowthRows, columns_.fieldCount),
          noise_(static_cast<std::size_t>(columns_.noiseCount)),
          pixels_(static_cast<std::size_t>(growthPadded(columns_.pixelCount))),
          sums_(static_cast<std::size_t>(columns_.fieldCount)),
          kernelRows_(static_cast<std::size_t>(2 * std::max(clumpR_, cloudR_) + kGrowthRows)),
          light_(light)
    {}

    void run()
    {
        const std::int64_t end = rect_.y1 * plan_.scale;
        for (std::int64_t y = rect_.y0 * plan_.scale; y < end; y += kGrowthRows) {
            cancellationPoint();
            const bool soft = !plan_.cloud.empty();
            if (soft) {
                makeDye(y + kGrowthRows - 1 + cloudR_);
                blurDown(dyeRing_, plan_.cloud, y, growthPadded(columns_.sites));
            } else {
                makeClumps(y);
            }
            for (std::int64_t row = y; row < std::min(y + kGrowthRows, end); ++row) finishRow(row, soft);
        }
    }

private:
    /// The kernel over rows of a ring, into block_.
    void blurDown(RowRing& ring, const std::vector<float>& kernel, std::int64_t y, std::int64_t count)
    {
        const std::int64_t radius = radiusOf(kernel);
        for (std::int64_t i = -radius; i < kGrowthRows + radius; ++i)
            kernelRows_[static_cast<std::size_t>(i + radius)] = ring.row(reflectIndex(y + i, latticeH_));
        const std::array<float*, kGrowthRows> out{block_.row(y), block_.row(y + 1), block_.row(y + 2),
                                                  block_.row(y + 3)};
        growth_blur_v(kernelRows_.data() + radius, kernel, count, out);
    }

    void makeNoise(std::int64_t last, std::uint32_t seed)
    {
        for (; nextNoise_ <= std::min(last, latticeH_ - 1); ++nextNoise_) {
            const GrowthRun run{columns_.hash.data(), static_cast<std::int32_t>(nextNoise_),
                                columns_.noiseCount};
            growth_noise(run, seed, noise_.data());
            growth_blur_h(noise_.data() + clumpR_, plan_.clumpX, columns_.fieldCount,
                          noiseRing_.row(nextNoise_));
        }
    }

    /// The clump field of kGrowthRows rows, into block_.
    void makeClumps(std::int64_t y)
    {
        const auto seed = std::visit([](const auto& layer) { return layer.seed; }, plan_.layer);
        makeNoise(y + kGrowthRows - 1 + clumpR_, seed);
        blurDown(noiseRing_, plan_.clumpY, y, columns_.fieldCount);
    }

    void makeDye(std::int64_t last)
    {
        const auto& layer = std::get<GrowthDyeParams>(plan_.layer);
        while (nextDye_ <= std::min(last, latticeH_ - 1)) {
            makeClumps(nextDye_);
            for (std::int64_t i = 0; i < kGrowthRows && nextDye_ < latticeH_; ++i, ++nextDye_) {
                float* row = block_.row(nextDye_);
                growth_dye(siteRun(nextDye_), groundOf(nextDye_, row), layer, row);
                growth_blur_h(row + cloudR_, plan_.cloud, growthPadded(columns_.sites),
                              dyeRing_.row(nextDye_));
            }
        }
    }

    /// The light of a row of sites, from block_, joins its pixels' sums; a pixel row's last one closes it.
    void finishRow(std::int64_t y, bool soft)
    {
        float* row = block_.row(y);
        if (const auto* silver = std::get_if<GrowthSilverParams>(&plan_.layer)) {
            growth_sites(siteRun(y), groundOf(y, row), *silver, sums_.data());
        } else {
            if (!soft) growth_dye(siteRun(y), groundOf(y, row), std::get<GrowthDyeParams>(plan_.layer), row);
            growth_dye_reduce(row, growthPadded(columns_.sites), sums_.data());
        }
        if ((y + 1) % plan_.scale != 0) return;
        growth_pixel_means(sums_.data(), plan_.scale, rect_.x1 - rect_.x0,
                           light_ + y / plan_.scale * density_.size.width + rect_.x0);
        std::fill(sums_.begin(), sums_.end(), 0.0f);
    }

    GrowthRun siteRun(std::int64_t y) const
    {
        return {columns_.hash.data() + clumpR_, static_cast<std::int32_t>(y), columns_.fieldCount};
    }

    GrowthGround groundOf(std::int64_t y, const float* clump)
    {
        const Between place = siteBetween(y, plan_.scale, density_.size.height);
        return {stretchedRow(place.first), stretchedRow(place.second), place.weight, clump};
    }

    /// A row of pixels over the strip's sites; the two last ones are kept.
    const float* stretchedRow(std::int64_t y)
    {
        float* out = stretched_.row(y);
        std::int64_t& held = stretchedIs_[static_cast<std::size_t>(y % 2)];
        if (held == y) return out;
        held = y;
        const float* from =
            density_.first + (y * density_.size.width + columns_.pixelStart) * density_.stride;
        for (std::int64_t i = 0; i < columns_.pixelCount; ++i)
            pixels_[static_cast<std::size_t>(i)] = from[i * density_.stride];
        if (const auto* silver = std::get_if<GrowthSilverParams>(&plan_.layer))
            growth_mu(silver->mu, pixels_.data(), static_cast<std::int64_t>(pixels_.size()));
        growth_stretch(pixels_.data(),
                       {columns_.first.data(), columns_.second.data(), columns_.weight.data()},
                       columns_.fieldCount, out);
        return out;
    }

    const GrowthChannel& density_;
    const GrowthLatticePlan& plan_;
    PixelRect rect_;
    std::int64_t latticeH_, clumpR_, cloudR_;
    StripColumns columns_;
    std::int64_t nextDye_, nextNoise_;
    RowRing noiseRing_, dyeRing_, stretched_, block_;
    std::vector<float> noise_, pixels_, sums_;
    std::vector<const float*> kernelRows_;
    std::array<std::int64_t, 2> stretchedIs_{-1, -1};
    float* light_;
};

/// 0...count in the fewest even parts of at most `most`.
std::vector<std::pair<std::int64_t, std::int64_t>> evenParts(std::int64_t count, std::int64_t most)
{
    const std::int64_t number = (count + most - 1) / most, part = (count + number - 1) / number;
    std::vector<std::pair<std::int64_t, std::int64_t>> parts;
    for (std::int64_t at = 0; at < count; at += part) parts.emplace_back(at, std::min(at + part, count));
    return parts;
}

/// Rows of pixels of a band: as the tiling says, or fewer where a small frame would leave workers idle.
std::int64_t bandRows(const GrowthTiling& tiling, std::int64_t stripPx, std::int64_t strips,
                      const GrowthLatticePlan& plan, std::int64_t height)
{
    constexpr std::int64_t kJobsPerWorker = 4;
    constexpr std::int64_t kLeastSiteRows = 256; // below it the rows made ahead of a band weigh too much
    const std::int64_t whole = tiling.bandSites / (stripPx * plan.scale * plan.scale);
    const std::int64_t shared = height * strips / (kJobsPerWorker * platform::activeWorkers());
    return std::max<std::int64_t>(std::min(whole, std::max(shared, kLeastSiteRows / plan.scale)), 1);
}

} // namespace

std::vector<float> growthKernel(double sigmaSites)
{
    const std::vector<double> half = gaussianHalfKernel(sigmaSites);
    return {half.begin(), half.end()};
}

void planClumps(GrowthLatticePlan& plan, double clumpSites)
{
    const double squares = kernelPower(gaussianHalfKernel(clumpSites));
    plan.clumpX = growthKernel(clumpSites);
    plan.clumpY = plan.clumpX;
    for (float& w : plan.clumpY) w = static_cast<float>(static_cast<double>(w) / std::max(squares, 1e-12));
}

void growthTransmission(const GrowthChannel& density, const GrowthLatticePlan& plan,
                        const GrowthTiling& tiling, Plane& light)
{
    const Size size = density.size;
    float* out = light.mutableData();
    const std::int64_t stripPx = std::clamp<std::int64_t>(tiling.stripSites / plan.scale, 1, size.width);
    const auto strips = evenParts(size.width, stripPx);
    const auto bands = evenParts(
        size.height, bandRows(tiling, stripPx, static_cast<std::int64_t>(strips.size()), plan, size.height));
    platform::runConcurrently(static_cast<int>(strips.size() * bands.size()), [&](int job) {
        const auto [x0, x1] = strips[static_cast<std::size_t>(job) % strips.size()];
        const auto [y0, y1] = bands[static_cast<std::size_t>(job) / strips.size()];
        Strip(density, plan, {x0, x1, y0, y1}, out).run();
    });
}

} // namespace tamlo
