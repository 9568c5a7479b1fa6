#include "app/preview/tiers.h"

#include "core/film/grain/growth_geometry.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/render_size.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

constexpr std::int64_t kProxy = ProxyFile::kProxyLong;
/// A tier of so much of the full size is not worth a second pass.
constexpr std::int64_t kNearlyPercent = 75;
constexpr double kUsualSeconds = 2.0;
constexpr double kShortestSeconds = 0.02, kLongestSeconds = 120.0;

std::int64_t steppedUp(std::int64_t value)
{
    return (value + Tiers::kStep - 1) / Tiers::kStep * Tiers::kStep;
}

std::int64_t steppedDown(std::int64_t value)
{
    return value / Tiers::kStep * Tiers::kStep;
}

} // namespace

std::int64_t Tiers::workingTier(std::int64_t needed, std::int64_t full, std::optional<std::int64_t> cap)
{
    if (full < 1) return std::max<std::int64_t>(needed, 0);
    if (needed <= kProxy) return std::min(full, kProxy);
    std::int64_t tier = std::min(full, needed > full ? full : steppedUp(needed));
    if (cap && *cap < tier) tier = full < kProxy ? full : std::max(kProxy, std::min(full, steppedDown(*cap)));
    return tier * 100 >= full * kNearlyPercent ? full : tier;
}

double Tiers::cropDecodeFactor(const std::optional<Crop>& crop, Size source)
{
    if (!crop || std::min(source.width, source.height) < 1) return 1.0;
    const Size cropped = Pipeline::croppedSize(crop, source);
    return static_cast<double>(std::max(source.width, source.height)) /
           static_cast<double>(std::max<std::int64_t>(std::max(cropped.width, cropped.height), 1));
}

std::int64_t Tiers::scaled(std::int64_t length, double factor)
{
    return std::llround(static_cast<double>(length) * factor);
}

Tiers::Caps Tiers::capsOf(const FilmProfile& film, const PaperProfile& paper, const RenderOptions& options,
                          Size source)
{
    Caps caps;
    if (std::min(source.width, source.height) < 1) return caps;
    const Size picture = Pipeline::croppedSize(options.crop, source);
    const Pipeline::FilmLength length = Pipeline::filmLength(film, options, source, picture);
    if (options.masterCap) caps.master = Pipeline::masterLongPx(film, length.capUm);
    if (paper.isScan() && paper.scan) caps.scan = std::max<std::int64_t>(paper.scan->longPx.value_or(0), 0);
    caps.grain = Grain::aggregateLongPx(film, options, length.fmtUm);
    return caps;
}

std::int64_t Tiers::fullLong(Size source, const Caps& caps, double cropFactor)
{
    const std::int64_t own = std::max(source.width, source.height);
    return caps.master > 0 ? std::min(own, scaled(caps.master, cropFactor)) : own;
}

std::int64_t Tiers::neededLong(std::int64_t full, const Caps& caps, double cropFactor, double fitLong)
{
    const auto up = [&](double length) {
        return static_cast<std::int64_t>(std::ceil(std::min(length * cropFactor, 1e9)));
    };
    std::int64_t needed = up(fitLong);
    if (caps.scan > 0) needed = std::min(needed, up(static_cast<double>(caps.scan)));
    std::optional<std::int64_t> grain;
    if (caps.grain) grain = static_cast<std::int64_t>(static_cast<double>(*caps.grain) * cropFactor);
    return workingTier(needed, full, grain);
}

std::int64_t Tiers::proxyLong(Size source)
{
    return std::min(kProxy, std::max(source.width, source.height));
}

Tiers::Badge Tiers::badge(std::int64_t shown, std::int64_t full, std::int64_t cap, bool isFine, bool isComing)
{
    if (shown < 1) return {};
    std::int64_t top = std::max(full, cap);
    if (full > 0 && cap > 0) top = std::min(full, cap);
    const Loc::Args numbers{{"shown", shown}, {"cap", cap}, {"full", full}};
    const std::string coming = isComing ? T("detail.help.coming") : "";
    if (top > 0 && shown >= top)
        return {"F", T(cap > 0 && cap <= full ? "detail.help.master" : "detail.help.full", numbers)};
    const std::string master = isComing && isFine ? T("detail.help.masterComing") : coming;
    return {isFine ? "S" : "P", T(isFine ? "detail.help.screen" : "detail.help.proxy", numbers) + master};
}

double DetailEstimates::estimate(const FrameID& frame, DetailTier tier, std::int64_t longSide) const
{
    if (const auto own = byFrame_.find({frame, tier}); own != byFrame_.end()) return own->second;
    const auto like = byLong_.find({tier, longSide});
    return like == byLong_.end() ? kUsualSeconds : like->second;
}

void DetailEstimates::note(const FrameID& frame, DetailTier tier, std::int64_t longSide, double seconds)
{
    if (!(seconds > kShortestSeconds && seconds < kLongestSeconds)) return;
    byFrame_[{frame, tier}] = seconds;
    byLong_[{tier, longSide}] = seconds;
}

void DetailEstimates::forget(const FrameID& frame)
{
    for (const DetailTier tier : {DetailTier::working, DetailTier::master}) byFrame_.erase({frame, tier});
}

void DetailEstimates::clear()
{
    byFrame_.clear();
    byLong_.clear();
}

} // namespace tamlo
