#include "app/export/print_metadata.h"

#include "core/text/loc.h"
#include "platform/preferences.h"
#include "platform/shot_properties.h"
#include "platform/unicode.h"

namespace tamlo::PrintMetadata {
namespace {

template <typename Profile>
void addTitle(std::vector<std::string>& keywords, const Profile& profile)
{
    const std::string title = Loc::pick(profile.name.value_or(""), profile.nameEn);
    if (!title.empty()) keywords.push_back(title);
}

/// The first that is not blank: the option, the preference, the source's own.
std::optional<std::string> firstOf(const std::optional<std::string>& option, const char* preference,
                                   const std::optional<std::string>& source)
{
    for (const auto& text : {option, platform::preference(preference), source})
        if (text && !platform::trimmed(*text).empty()) return text;
    return std::nullopt;
}

} // namespace

OutputMetadata ofOriginal(const std::filesystem::path& source, const Signature& signature)
{
    const platform::ShotProperties shot = platform::readShotProperties(source);
    OutputMetadata metadata = OutputMetadata::plain(signature.software);
    metadata.make = shot.make;
    metadata.camera = shot.camera;
    metadata.lensModel = shot.lensModel;
    metadata.focalMm = shot.focalMm;
    metadata.fNumber = shot.fNumber;
    metadata.exposureSec = shot.exposureSec;
    metadata.iso = shot.iso;
    metadata.dateOriginal = shot.dateOriginal;
    metadata.timeZone = shot.timeZone;
    metadata.author = firstOf(signature.author, "exportAuthor", shot.artist);
    metadata.copyright = firstOf(signature.copyright, "exportCopyright", shot.copyright);
    metadata.keywords.emplace_back("Tamlo");
    return metadata;
}

OutputMetadata of(const std::filesystem::path& source, const RenderChoices& choices, double printPxUm,
                  const Signature& signature)
{
    constexpr double kInchUm = 25'400.0;
    OutputMetadata metadata = ofOriginal(source, signature);
    addTitle(metadata.keywords, choices.film);
    addTitle(metadata.keywords, choices.paper);
    if (printPxUm > 0) metadata.pixelsPerInch = kInchUm / printPxUm;
    return metadata;
}

} // namespace tamlo::PrintMetadata
