#include "app/shell/cropping.h"

#include "app/shell/app_model.h"
#include "app/shell/loaded_profiles.h"
#include "core/pipeline/render_size.h"
#include "core/profiles/options/film_format.h"
#include "core/text/loc.h"

#include <utility>

namespace tamlo {

namespace {

ProcessSettings settingsOf(const Frame& frame)
{
    return frame.process ? *frame.process : ProcessSettings::fresh();
}

} // namespace

void Cropping::leaveCropMode()
{
    draft_.reset();
    model_.observers.note(Concern::crop);
}

bool Cropping::cropKeyEnabled() const
{
    return model_.selection.currentFrame() && !model_.sides.abEnabled();
}

void Cropping::cropKey()
{
    if (!cropKeyEnabled()) return;
    if (cropMode()) return applyCropAndExit();
    if (model_.selection.screen() == Screen::grid) model_.selection.openFrame(*model_.selection.cursor());
    enterCropMode();
}

bool Cropping::enterCropMode()
{
    if (cropMode()) return true;
    if (model_.selection.screen() != Screen::develop || !cropKeyEnabled()) return false;
    model_.endGesture();
    frame_ = *model_.selection.cursor();
    draft_ = draftOf(*model_.selection.currentFrame());
    model_.observers.note(Concern::crop);
    return cropMode();
}

void Cropping::applyCropAndExit()
{
    if (!cropMode()) return;
    model_.observers.note(Concern::crop);
    const std::optional<Crop> crop = std::exchange(draft_, std::nullopt)->value();
    setCrop(frame_, crop);
}

void Cropping::refreshCropSession()
{
    if (!cropMode()) return;
    const FrameRef frame = model_.project().frame(frame_);
    const bool goesOn = frame && model_.selection.cursor() == frame_;
    model_.observers.note(Concern::crop);
    draft_ = goesOn ? draftOf(*frame) : std::nullopt;
}

void Cropping::change(const Change& change)
{
    if (!draft_) return;
    change(*draft_);
    model_.observers.note(Concern::crop);
}

std::optional<CropDraft> Cropping::draftOf(const Frame& frame) const
{
    std::optional<Size> size = model_.seams().sourceSize ? model_.seams().sourceSize(frame) : std::nullopt;
    if (!size || size->width < 1 || size->height < 1) return std::nullopt;
    if (frame.orient.rot % 2 != 0) std::swap(size->width, size->height);
    return CropDraft({*size, frame.orient, cropFormatAspect(frame), cropCardWindowAspect(frame)}, frame.crop);
}

std::size_t Cropping::setCrops(const FrameIDs& ids,
                               const std::function<std::optional<Crop>(const Frame&)>& cropOf)
{
    std::string name = T("undo.crop");
    if (ids.size() > 1) name = T("undo.markMany", {{"name", name}, {"n", ids.size()}});
    return model_.editFrames({name}, ids, [&](Frame& frame) { frame.crop = cropOf(frame); }).size();
}

std::size_t Cropping::setCrop(const FrameID& id, const std::optional<Crop>& crop)
{
    return setCrops({id}, [&](const Frame&) { return crop; });
}

std::size_t Cropping::resetCrops(const FrameIDs& ids)
{
    return model_
        .editFrames({T("undo.resetCrop", {{"n", ids.size()}})}, ids, [](Frame& frame) { frame.crop.reset(); })
        .size();
}

void Cropping::resetCropOfTargets()
{
    resetCrops(model_.selection.actionTargets());
}

bool Cropping::takesPart() const
{
    const std::string rule = model_.project().cropGate.value_or(RenderOptions().cropGate);
    return Formats::cropGateMode(rule) == Formats::CropGate::full;
}

void Cropping::setTakesPart(bool takesPart)
{
    constexpr double kRenderDelaySeconds = 0.25;
    if (takesPart == this->takesPart()) return;
    const bool isChanged = model_.editProject(
        {T("undo.cropGate")}, [&](Project& project) { project.cropGate = takesPart ? "full" : "none"; });
    if (!isChanged) return;
    model_.observers.note(Concern::crop);
    model_.seams().views.renderAllThumbs();
    if (model_.selection.screen() == Screen::develop) model_.seams().views.renderCurrent(kRenderDelaySeconds);
}

std::optional<double> Cropping::cropFormatAspect(const Frame& frame) const
{
    const ProcessSettings settings = settingsOf(frame);
    const std::optional<FilmProfile> film = filmOf(settings, model_.store());
    if (!film || film->isInstant()) return std::nullopt;
    const RenderOptions& options = settings.options;
    const std::string format(rawText(Formats::resolvedFormat(*film, options)));
    OptText size = options.frameSize;
    if (!size) size = Formats::legacyFrameSize(format, Formats::frameCm120(*film, options));
    const Formats::FormatName name = Formats::normalizeFormat(format, size);
    return Formats::formatAspect(name.format, name.size);
}

std::optional<double> Cropping::cropCardWindowAspect(const Frame& frame) const
{
    const ProcessSettings settings = settingsOf(frame);
    const std::optional<FilmProfile> film = filmOf(settings, model_.store());
    return film ? Pipeline::cardAspect(*film, settings.options) : std::nullopt;
}

} // namespace tamlo
