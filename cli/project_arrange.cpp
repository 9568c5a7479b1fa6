// tamlo project order, crop, reroll.

#include "cli/messages.h"
#include "cli/project.h"
#include "cli/project_session.h"
#include "cli/usage_error.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/options/option_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <ostream>

namespace tamlo::cli {
namespace {

/// The crop of "x,y,w,h[,angle]".
Crop cropNamed(const std::string& text)
{
    RenderOptions options;
    try {
        setOption(options, "crop", text);
    } catch (const TamloError&) {
        throw UsageError(T("cli.project.badCrop", {{"text", text}}));
    }
    const std::optional<Crop>& crop = options.crop;
    const bool isWithin = crop && crop->x >= 0 && crop->y >= 0 && crop->w > 0 && crop->h > 0 &&
                          crop->x + crop->w <= 1 && crop->y + crop->h <= 1 &&
                          std::abs(crop->angle) <= CropDraft::kMostDegrees;
    if (!isWithin) throw UsageError(T("cli.project.badCrop", {{"text", text}}));
    return *crop;
}

CropAspectKind ratioNamed(const std::string& text)
{
    if (text == "format") return CropAspectKind::format();
    double w = 0, h = 0;
    const char* end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, w);
    const bool hasColon = first.ec == std::errc() && first.ptr != end && *first.ptr == ':';
    const auto second = hasColon ? std::from_chars(first.ptr + 1, end, h) : first;
    if (!hasColon || second.ec != std::errc() || second.ptr != end || !(w > 0 && h > 0) ||
        !(std::max(w / h, h / w) <= 100))
        throw UsageError(T("cli.project.badRatio", {{"text", text}}));
    return CropAspectKind::of(std::max(w, h) / std::min(w, h));
}

/// The crop that ratio and level make of what a frame has.
std::optional<Crop> madeCrop(const RollSession& session, const Frame& frame,
                             const std::optional<CropAspectKind>& ratio, std::optional<double> level)
{
    std::optional<CropDraft> draft = session.model().cropping.draftOf(frame);
    if (!draft) throw std::runtime_error(T("cli.project.noSize", {{"file", frame.url}}));
    if (ratio && !draft->isEnabled(*ratio))
        throw UsageError(T("cli.project.noFormatRatio", {{"label", session.project().label(frame.id)}}));
    if (level) draft->setAngle(*level);
    if (ratio) {
        draft->setAspect(*ratio);
        draft->expandToMax();
    }
    return draft->value();
}

} // namespace

int run(RollSession& session, const ProjectOrderArguments& arguments, std::ostream& results)
{
    const std::map<std::string, SortMode> modes{{"name", SortMode::name}, {"shot", SortMode::shot}};
    const std::string& word = arguments.frames;
    const bool isMove = arguments.before || arguments.after;
    if (!isMove && word != "reverse" && !modes.contains(word)) throw UsageError(T("cli.project.badOrder"));
    Ordering& ordering = session.model().ordering;
    const Project before = session.project();
    if (isMove) {
        const FrameID target = session.frame(arguments.before ? *arguments.before : *arguments.after);
        const auto ids = session.frames(word);
        arguments.before ? ordering.moveBefore(ids, target) : ordering.moveAfter(ids, target);
    } else if (word == "reverse") {
        ordering.reverseFrames();
    } else {
        ordering.setSortMode(modes.at(word));
    }
    std::size_t moved = 0;
    for (std::size_t i = 0; i < before.frames.size(); ++i)
        moved += before.frames[i].id != session.project().frames[i].id;
    if (!(before == session.project())) session.save();
    results << Loc::string("cli.project.changed", static_cast<std::int64_t>(moved)) << std::endl;
    return 0;
}

int run(RollSession& session, const ProjectCropArguments& arguments, std::ostream& results)
{
    const bool isMade = arguments.ratio || arguments.levelDegrees;
    if (isMade != arguments.crop.empty()) throw UsageError(T("cli.project.noCrop"));
    const auto ratio = arguments.ratio ? std::optional(ratioNamed(*arguments.ratio)) : std::nullopt;
    const auto crop =
        isMade || arguments.crop == "none" ? std::nullopt : std::optional(cropNamed(arguments.crop));
    const auto ids = session.frames(arguments.frames);
    const std::size_t changed = session.model().cropping.setCrops(ids, [&](const Frame& frame) {
        return isMade ? madeCrop(session, frame, ratio, arguments.levelDegrees) : crop;
    });
    if (changed > 0) session.save();
    results << Loc::string("cli.project.changed", static_cast<std::int64_t>(changed)) << std::endl;
    return 0;
}

int run(RollSession& session, const ProjectRerollArguments& arguments, std::ostream& results)
{
    const auto& names = Seeds::kSeedStreamTexts;
    const auto stream =
        static_cast<Seeds::SeedStream>(std::ranges::find(names, arguments.stream) - names.begin());
    const std::size_t changed = session.model().rack.reroll(session.frames(arguments.frames), stream);
    if (changed > 0) session.save();
    results << Loc::string("cli.project.changed", static_cast<std::int64_t>(changed)) << std::endl;
    return 0;
}

} // namespace tamlo::cli
