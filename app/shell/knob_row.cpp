#include "app/shell/knob_row.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace tamlo {

namespace {

constexpr double kLeastStep = 1e-12;
constexpr double kFine = 0.1; // of a drag
constexpr double kLarge = 10; // steps

void replaceAll(std::string& text, std::string_view from, std::string_view to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
}

} // namespace

double KnobRow::snapped(double v) const
{
    const double s = std::max(step, kLeastStep);
    return std::clamp(low + s * std::round((v - low) / s), low, high);
}

double KnobRow::valueAt(double x, double width) const
{
    return snapped(low + (x - kTrackInset) / std::max(width, 1.0) * (high - low));
}

double KnobRow::fineValue(double anchor, double dx, double width) const
{
    return snapped(anchor + (high - low) * dx / std::max(width, 1.0) * kFine);
}

double KnobRow::stepped(int direction, bool large) const
{
    return snapped(value + direction * step * (large ? kLarge : 1));
}

std::optional<double> KnobRow::entered(std::string_view typed) const
{
    constexpr std::string_view kBlanks = " \t\n\r", kMinus = "\xE2\x88\x92", kCharacters = "0123456789.-";
    std::string text(typed);
    replaceAll(text, ",", ".");
    replaceAll(text, kMinus, "-");
    text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
    if (text.starts_with('+')) text.erase(0, 1); // as the number itself is shown
    text.erase(std::min(text.find_first_not_of(kCharacters), text.size()));
    double number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stop != text.data() + text.size() || text.empty()) return std::nullopt;
    return snapped(number);
}

bool KnobRow::atDefault() const
{
    return snapped(value) == snapped(def);
}

std::string KnobRow::text() const
{
    char number[64];
    std::snprintf(number, sizeof number, "%.2f", value);
    std::string out = number;
    if (out == "-0.00") out = "0.00";
    if (isSigned && value > 0 && out != "0.00") out.insert(0, "+");
    return out + unit;
}

double KnobRow::clickDelay(double doubleClickSeconds)
{
    return std::min(doubleClickSeconds, kMostDoubleClickSeconds);
}

bool KnobRow::isClick(double dx, double dy)
{
    return std::abs(dx) < kClickPoints && std::abs(dy) < kClickPoints;
}

} // namespace tamlo
