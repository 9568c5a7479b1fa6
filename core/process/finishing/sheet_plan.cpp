#include "core/process/finishing/sheet_plan.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace tamlo::Finishing {
namespace {

// The group of stamp and type, millimetres; taste, after the blind stamps of portrait studios.
constexpr float kStampWideMm = 9.0f, kStampHighMm = 6.0f, kGapMm = 3.0f;

constexpr std::array<std::pair<std::string_view, double>, 4> stampTextMm{
    {{"s", 1.8}, {"m", 2.6}, {"l", 3.6}, {"xl", 5.0}}};

bool chosen(const OptText& text)
{
    return text && !text->empty() && *text != "none";
}

/// Margins that the marks live in, and the scale.
struct Bands {
    double ppmm;
    double side, bottom;
    double w, h;

    float px(double mm) const { return static_cast<float>(mm * ppmm); }
};

Bands bandsOf(std::int64_t width, std::int64_t height, const RenderOptions& options)
{
    Bands bands{};
    bands.ppmm = 1000.0 / std::max(options.printPxUm, 1e-6);
    const bool plate = options.plateInsetPx > 0.0;
    bands.side = plate ? options.plateInsetPx : options.borderPx;
    bands.bottom = plate                          ? options.plateInsetPx
                   : options.borderPxBottom > 0.0 ? options.borderPxBottom
                                                  : options.borderPx;
    bands.w = static_cast<double>(width);
    bands.h = static_cast<double>(height);
    return bands;
}

/// Stamp and type side by side in the bottom band.
struct Group {
    float x0 = 0.0f; ///< left edge
    float cy = 0.0f;
    float stampTop = 0.0f;
    std::int64_t textX = 0, textY = 0, textW = 0, textH = 0;
};

Group groupOf(const Bands& bands, bool hasStamp, const std::optional<SheetPlan::Text>& text)
{
    Group group;
    float wide = hasStamp ? bands.px(kStampWideMm) : 0.0f;
    if (text) {
        group.textW = text->tile.w - 2 * text->tile.pad;
        group.textH = text->tile.h - 2 * text->tile.pad;
        wide = static_cast<float>(group.textW) + (hasStamp ? bands.px(kStampWideMm + kGapMm) : 0.0f);
    }
    constexpr double kRoomyMm =
        8.0; // a lower band carries the group at a fixed height above the sheet's edge
    const bool roomy = bands.bottom >= kRoomyMm * bands.ppmm;
    const double above = roomy ? bands.bottom / 2.0 : (5.0 + 3.0) * bands.ppmm;
    group.cy = static_cast<float>(bands.h - 1.0 - above);
    group.x0 = (static_cast<float>(bands.w) - wide) / 2.0f;
    group.stampTop = group.cy - bands.px(kStampHighMm / 2.0f);
    const auto cut = [](float v) { return std::max<std::int64_t>(static_cast<std::int64_t>(v), 0); };
    group.textX = cut(group.x0 + (hasStamp ? bands.px(kStampWideMm + kGapMm) : 0.0f));
    group.textY = cut(group.cy - static_cast<float>(group.textH) / 2.0f);
    return group;
}

/// The rectangle cut to the sheet and kept if something is left of it.
void reserveRect(SheetPlan& plan, std::array<float, 4> sides)
{
    const auto whole = [](float v) { return static_cast<std::int64_t>(v); };
    const SheetRect rect{std::max<std::int64_t>(whole(sides[0]), 0),
                         std::max<std::int64_t>(whole(sides[1]), 0), std::min(plan.w, whole(sides[2])),
                         std::min(plan.h, whole(sides[3]))};
    if (!rect.isEmpty()) plan.reserve.push_back(rect);
}

void placeReserve(SheetPlan& plan, const Bands& bands, const Group& group, bool hasStamp)
{
    const float m = bands.px(1.6);
    plan.reserveSigma = std::max(0.4 * bands.ppmm, 0.8);
    if (hasStamp)
        reserveRect(plan, {group.x0 - m, group.stampTop - m, group.x0 + bands.px(kStampWideMm) + m,
                           group.stampTop + bands.px(kStampHighMm) + m});
    if (plan.text) {
        const auto x = static_cast<float>(group.textX), y = static_cast<float>(group.textY);
        reserveRect(plan, {x - m, y - m, x + static_cast<float>(group.textW) + m,
                           y + static_cast<float>(group.textH) + m});
    }
}

SheetPlan::LineStep stepOf(const Bands& bands, float offset, float lw)
{
    SheetPlan::LineStep step{};
    const auto w = static_cast<float>(bands.w), h = static_cast<float>(bands.h);
    step.top = static_cast<float>(bands.side) / 2.0f + offset;
    step.bot = (h - 1.0f) - (static_cast<float>(bands.bottom) / 2.0f + offset);
    const float left = step.top, right = (w - 1.0f) - left;
    step.cx = (left + right) / 2.0f;
    step.half = (right - left) / 2.0f;
    step.cy = (step.top + step.bot) / 2.0f;
    step.r = std::max(bands.px(1.5) - offset, lw);
    step.bx = step.half - step.r;
    step.by = (step.bot - step.top) / 2.0f - step.r;
    return step;
}

std::optional<SheetPlan::Line> lineOf(const Bands& bands, const OptText& style)
{
    constexpr double kNarrowestMm = 6.0; // a narrower margin carries no line
    // The slack: a band of 6 mm comes through divisions by the scale.
    if (!chosen(style) || bands.side < kNarrowestMm * bands.ppmm * (1.0 - 1e-9)) return std::nullopt;
    SheetPlan::Line line;
    line.lw = std::max(bands.px(0.5), 1.5f);
    line.tb = style->ends_with("_tb");
    line.steps = {0.0f};
    if (!style->starts_with("single")) line.steps = {-bands.px(0.8), bands.px(0.8)};
    for (const float offset : line.steps) line.geo.push_back(stepOf(bands, offset, line.lw));
    return line;
}

SheetPlan::Stamp stampOf(const Bands& bands, const Group& group)
{
    SheetPlan::Stamp stamp{};
    stamp.lw = std::max(bands.px(0.42), 0.9f);
    stamp.cx = group.x0 + bands.px(4.5);
    stamp.cy = group.stampTop + bands.px(3.0);
    stamp.hx = bands.px(3.5);
    stamp.hy = bands.px(2.0);
    stamp.r = bands.px(1.0);
    stamp.gx = group.x0 + 0.655f * bands.px(kStampWideMm);
    stamp.gy0 = group.stampTop + 0.34f * bands.px(kStampHighMm);
    stamp.gr = bands.px(0.85);
    return stamp;
}

SheetPlan::Text textOf(const Bands& bands, const RenderOptions& options)
{
    // Of the type's size, so that its capitals are as high as asked (0.73 of it) and a hair more.
    constexpr double kSizePerCap = 1.42;
    constexpr double kLargestPx = 1e9;
    const double capMm = stampTextCapMm(options, bands.bottom / bands.ppmm);
    const double capPx = std::clamp(std::trunc(capMm * bands.ppmm * kSizePerCap), 8.0, kLargestPx);
    const double soft = std::max(0.3 * bands.ppmm, 0.6);
    SheetPlan::Text text;
    text.tile = rasterize(*options.stampText, static_cast<std::int64_t>(capPx), soft,
                          {static_cast<std::int64_t>(bands.w), static_cast<std::int64_t>(bands.h)});
    text.feature = static_cast<float>(soft);
    return text;
}

} // namespace

bool wantsEmboss(const RenderOptions& options)
{
    return chosen(options.embossLine) || options.blindStamp.value_or(false) ||
           (options.stampText && !options.stampText->empty());
}

double stampTextCapMm(const RenderOptions& options, double bandMm)
{
    const auto size = std::find_if(stampTextMm.begin(), stampTextMm.end(),
                                   [&](const auto& row) { return row.first == options.stampSize; });
    const double mm = (size == stampTextMm.end() ? stampTextMm[1] : *size).second;
    return bandMm > 0.0 ? std::min(mm, bandMm * stampTextBandFrac) : mm;
}

SheetPlan sheetPlan(std::int64_t width, std::int64_t height, const RenderOptions& options)
{
    const Bands bands = bandsOf(width, height, options);
    const bool hasStamp = options.blindStamp.value_or(false);
    SheetPlan plan;
    plan.w = width;
    plan.h = height;
    if (options.stampText && !options.stampText->empty()) plan.text = textOf(bands, options);
    const Group group = groupOf(bands, hasStamp, plan.text);
    placeReserve(plan, bands, group, hasStamp);
    plan.line = lineOf(bands, options.embossLine);
    if (hasStamp) plan.stamp = stampOf(bands, group);
    if (plan.text) {
        plan.text->x0 = group.textX - plan.text->tile.pad;
        plan.text->y0 = group.textY - plan.text->tile.pad;
    }
    return plan;
}

} // namespace tamlo::Finishing
