#include "app/project/shot_info.h"

#include "core/text/loc.h"
#include "platform/shot_properties.h"
#include "platform/unicode.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string_view>

namespace tamlo {

namespace {

constexpr std::string_view kPartOfSecond = "1/";

/// "YYYY:MM:DD HH:MM:SS" by the local clock.
std::optional<Date> parsedDate(const std::string& text)
{
    std::tm parts{};
    int read = 0;
    if (std::sscanf(text.c_str(), "%4d:%2d:%2d %2d:%2d:%2d%n", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                    &parts.tm_hour, &parts.tm_min, &parts.tm_sec, &read) != 6)
        return std::nullopt;
    if (static_cast<std::size_t>(read) != text.size() || parts.tm_mon < 1 || parts.tm_mon > 12 ||
        parts.tm_mday < 1 || parts.tm_mday > 31 || parts.tm_hour > 23 || parts.tm_min > 59 ||
        parts.tm_sec > 60)
        return std::nullopt; // a camera whose clock was never set writes zeros
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    const std::time_t moment = std::mktime(&parts);
    if (moment == std::time_t{-1}) return std::nullopt;
    return Date::since1970(static_cast<double>(moment));
}

std::string shownDate(Date date)
{
    // Dates of a document may be any number.
    constexpr double kFarthest = 1e11;
    if (!(std::abs(date.unixSeconds()) < kFarthest)) return {};
    const auto moment = static_cast<std::time_t>(std::floor(date.unixSeconds()));
    std::tm parts{};
    if (!localtime_r(&moment, &parts)) return {};
    char text[64];
    return {text, std::strftime(text, sizeof(text), "%d.%m.%Y", &parts)};
}

std::optional<double> parsedNumber(std::string_view text)
{
    double number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stop == text.data() || !(number > 0) || !std::isfinite(number))
        return std::nullopt;
    return number;
}

} // namespace

std::string shutterText(double seconds)
{
    if (!(seconds > 0) || !std::isfinite(seconds)) return {};
    if (seconds >= 1) return T("unit.seconds", {{"n", seconds}});
    char text[64];
    std::snprintf(text, sizeof(text), "1/%.0f", std::floor(1 / seconds + 0.5));
    return text;
}

ShotInfo ShotInfo::read(const std::filesystem::path& url, std::span<const char> head)
{
    const platform::ShotProperties properties = platform::readShotProperties(url, head);
    ShotInfo shot;
    shot.camera = properties.camera;
    if (shot.camera && properties.make &&
        !platform::lowerCased(*shot.camera).starts_with(platform::lowerCased(*properties.make)))
        shot.camera = *properties.make + " " + *shot.camera;
    shot.lens = properties.lensModel;
    shot.focalMm = properties.focalMm;
    shot.fNumber = properties.fNumber;
    if (properties.iso) shot.iso = *properties.iso;
    if (properties.exposureSec) shot.shutter = shutterText(*properties.exposureSec);
    if (properties.dateOriginal) shot.dateOriginal = parsedDate(*properties.dateOriginal);
    return shot;
}

std::string ShotInfo::line() const
{
    std::string out;
    const auto add = [&](const std::string& part) {
        if (part.empty()) return;
        if (!out.empty()) out += " · ";
        out += part;
    };
    if (camera) add(*camera);
    if (lens) add(*lens);
    if (focalMm) add(T("unit.mm", {{"n", *focalMm}}));
    if (fNumber) {
        char text[32];
        std::snprintf(text, sizeof(text), "f/%g", *fNumber);
        add(text);
    }
    if (shutter) add(*shutter);
    if (iso) add("ISO " + std::to_string(*iso));
    if (dateOriginal) add(shownDate(*dateOriginal));
    return out;
}

std::optional<double> ShotInfo::exposureSeconds() const
{
    if (!shutter) return std::nullopt;
    std::string text = *shutter;
    for (char& c : text)
        if (c == ',') c = '.';
    if (text.starts_with(kPartOfSecond)) {
        const auto below = parsedNumber(std::string_view(text).substr(kPartOfSecond.size()));
        return below ? std::optional(1 / *below) : std::nullopt;
    }
    return parsedNumber(std::string_view(text).substr(0, text.find_first_not_of("0123456789.")));
}

} // namespace tamlo
