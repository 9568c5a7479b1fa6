#include "cli/output_metadata.h"

#include "platform/shot_properties.h"

#include <cstdio>
#include <ctime>

namespace tamlo::cli {
namespace {

/// The moment of "YYYY:MM:DD HH:MM:SS" in the time zone of this process, in which it is also written again;
/// nothing for another form or a camera whose clock was never set.
std::optional<std::time_t> momentOf(const std::string& text)
{
    std::tm date{};
    if (std::sscanf(text.c_str(), "%4d:%2d:%2d %2d:%2d:%2d", &date.tm_year, &date.tm_mon, &date.tm_mday,
                    &date.tm_hour, &date.tm_min, &date.tm_sec) != 6)
        return std::nullopt;
    if (date.tm_year < 1800 || date.tm_mon < 1 || date.tm_mon > 12 || date.tm_mday < 1 || date.tm_mday > 31)
        return std::nullopt;
    date.tm_year -= 1900;
    date.tm_mon -= 1;
    date.tm_isdst = -1;
    const std::time_t moment = std::mktime(&date);
    if (moment == -1) return std::nullopt;
    return moment;
}

template <typename Profile>
void addTitle(std::vector<std::string>& keywords, const Profile& profile)
{
    const auto& title = profile.nameEn ? profile.nameEn : profile.name;
    if (title && !title->empty()) keywords.push_back(*title);
}

} // namespace

OutputMetadata outputMetadata(const std::filesystem::path& source, const RenderChoices& choices)
{
    const platform::ShotProperties shot = platform::readShotProperties(source);
    OutputMetadata metadata = OutputMetadata::plain(OutputMetadata::softwareName(TAMLO_VERSION));
    metadata.camera = shot.camera;
    metadata.lensModel = shot.lensModel;
    metadata.focalMm = shot.focalMm;
    metadata.fNumber = shot.fNumber;
    metadata.exposureSec = shot.exposureSec;
    metadata.iso = shot.iso;
    if (shot.dateOriginal) metadata.dateOriginal = momentOf(*shot.dateOriginal);
    metadata.keywords.emplace_back("Tamlo");
    addTitle(metadata.keywords, choices.film);
    addTitle(metadata.keywords, choices.paper);
    return metadata;
}

} // namespace tamlo::cli
