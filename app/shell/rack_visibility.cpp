#include "app/shell/rack_visibility.h"

#include "app/shell/loaded_profiles.h"
#include "core/profiles/options/film_format.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

std::optional<RackVisibility> RackVisibility::of(const ProcessSettings& settings, const ProfileStore& store)
{
    std::optional<FilmProfile> film = filmOf(settings, store);
    if (!film) return std::nullopt;
    return RackVisibility{std::move(*film), paperOf(settings, store), lensOf(settings, store), settings.lens,
                          settings.options};
}

bool RackVisibility::paperIsPlate() const
{
    return paper && paper->isPlate();
}

bool RackVisibility::contrast() const
{
    return !paper || !(paper->fixedGrade.value_or(false) || paper->isPlate());
}

bool RackVisibility::gradedNote() const
{
    return paper && paper->fixedGrade.value_or(false) && !paper->fixedExposure.value_or(false) &&
           !paper->isPlate();
}

bool RackVisibility::blackWhite() const
{
    if (!paper) return true;
    if (paper->isPlate()) return false;
    return !paper->fixedGrade.value_or(false) || !paper->isScan();
}

bool RackVisibility::blackField() const
{
    return paper && paper->hasSheet() && !film.isInstant() && !paper->isPlate() && options.border > 0;
}

bool RackVisibility::emboss() const
{
    if (paper && !paper->hasSheet() && !film.isInstant()) return false;
    if (options.mat.value_or("none") != "none") return true;
    return !film.isInstant() && !paperIsPlate();
}

std::vector<std::string> RackVisibility::allowedFormats() const
{
    static const TextList kUsual{"135", "120", "sheet"};
    std::vector<std::string> out;
    for (const std::string& format : film.formats ? *film.formats : kUsual) {
        const std::string name = Formats::normalizeFormat(format, std::nullopt).format;
        if (std::ranges::find(out, name) == out.end()) out.push_back(name);
    }
    return out;
}

std::optional<std::string> RackVisibility::fugitiveFormat() const
{
    if (!options.format) return std::nullopt;
    const std::string format = Formats::normalizeFormat(rawText(*options.format), options.frameSize).format;
    const std::vector<std::string> allowed = allowedFormats();
    if (std::ranges::find(allowed, format) != allowed.end()) return std::nullopt;
    return format;
}

bool RackVisibility::formatPicker() const
{
    return !film.isInstant() && allowedFormats().size() + (fugitiveFormat() ? 1 : 0) > 1;
}

bool RackVisibility::isSoftFocus() const
{
    return lensID == "imagon" || lensID == "verito";
}

std::vector<std::string> wbPositions(bool isRAW, const FilmProfile& film, const std::string& stored)
{
    constexpr double kDaylightK = 5500, kNothingK = 1;
    const double balanceK = film.balance ? film.balance->illuminantK.value_or(kDaylightK) : kDaylightK;
    std::vector<std::string> out;
    if (isRAW) out.push_back("asshot");
    out.push_back("film");
    if (film.type != "bw" && std::abs(balanceK - kDaylightK) > kNothingK) out.push_back("custom");
    if (std::ranges::find(out, stored) == out.end()) out.push_back(stored);
    return out;
}

} // namespace tamlo
