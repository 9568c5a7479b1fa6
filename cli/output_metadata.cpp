#include "cli/output_metadata.h"

#include "core/text/loc.h"
#include "platform/preferences.h"
#include "platform/shot_properties.h"
#include "platform/unicode.h"

namespace tamlo::cli {
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

OutputMetadata outputMetadata(const Finished& picture, const DevelopChoices& choices,
                              const DevelopArguments& arguments)
{
    const platform::ShotProperties shot = platform::readShotProperties(picture.source);
    OutputMetadata metadata = OutputMetadata::plain(OutputMetadata::softwareName(TAMLO_VERSION));
    metadata.make = shot.make;
    metadata.camera = shot.camera;
    metadata.lensModel = shot.lensModel;
    metadata.focalMm = shot.focalMm;
    metadata.fNumber = shot.fNumber;
    metadata.exposureSec = shot.exposureSec;
    metadata.iso = shot.iso;
    metadata.dateOriginal = shot.dateOriginal;
    metadata.timeZone = shot.timeZone;
    metadata.author = firstOf(arguments.author, "exportAuthor", shot.artist);
    metadata.copyright = firstOf(arguments.copyright, "exportCopyright", shot.copyright);
    metadata.keywords.emplace_back("Tamlo");
    addTitle(metadata.keywords, picture.render.film);
    addTitle(metadata.keywords, picture.render.paper);
    constexpr double kInchUm = 25'400.0;
    if (picture.printPxUm > 0) metadata.pixelsPerInch = kInchUm / picture.printPxUm;
    if (arguments.recipe) {
        Recipe recipe = choices.recipe;
        recipe.options = picture.render.options;
        recipe.options.crop = choices.render.options.crop; // the frame's own cut belongs to the picture
        metadata.recipe = encodeRecipe(recipe);
    }
    return metadata;
}

} // namespace tamlo::cli
