#include "app/shell/cropping.h"

#include "app/shell/app_model.h"
#include "app/shell/loaded_profiles.h"
#include "core/pipeline/render_size.h"
#include "core/text/loc.h"

#include <algorithm>
#include <utility>

namespace tamlo {

namespace {

ProcessSettings settingsOf(const Frame& frame)
{
    return frame.process ? *frame.process : ProcessSettings::fresh();
}

std::string ratioTitle(double ratio, bool portrait)
{
    return CropAspectKind::of(ratio).title(portrait);
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

/// None for instant film, whose card decides, and where the film can't be loaded.
std::optional<Formats::FormatName> Cropping::formatName(const Frame& frame) const
{
    const ProcessSettings settings = settingsOf(frame);
    const std::optional<FilmProfile> film = filmOf(settings, model_.store());
    if (!film || film->isInstant()) return std::nullopt;
    const RenderOptions& options = settings.options;
    const std::string format(rawText(Formats::resolvedFormat(*film, options)));
    OptText size = options.frameSize;
    if (!size) size = Formats::legacyFrameSize(format, Formats::frameCm120(*film, options));
    return Formats::normalizeFormat(format, size);
}

std::optional<double> Cropping::cropFormatAspect(const Frame& frame) const
{
    const auto name = formatName(frame);
    return name ? Formats::formatAspect(name->format, name->size) : std::nullopt;
}

std::optional<double> Cropping::cropCardWindowAspect(const Frame& frame) const
{
    const ProcessSettings settings = settingsOf(frame);
    const std::optional<FilmProfile> film = filmOf(settings, model_.store());
    return film ? Pipeline::cardAspect(*film, settings.options) : std::nullopt;
}

std::string Cropping::frameWindowLabel(const Frame& frame) const
{
    if (const auto card = cropCardWindowAspect(frame))
        return T("crop.cardWindow", {{"film", model_.lists.filmTitle(settingsOf(frame).stock)},
                                     {"ratio", ratioTitle(*card, false)}});
    const auto name = formatName(frame);
    if (!name) return {};
    const auto size = model_.seams().sourceSize ? model_.seams().sourceSize(frame) : std::nullopt;
    const Formats::GateMm gate = Formats::formatGateMm(name->format, name->size, size.value_or(Size{3, 2}));
    return T("crop.window", {{"title", T("frameSize." + name->size.value_or("custom"))},
                             {"long", gate.longMm},
                             {"short", gate.shortMm}});
}

std::string Cropping::windowLabel() const
{
    const FrameRef frame = draft_ ? model_.project().frame(frame_) : nullptr;
    if (!frame) return {};
    const std::string window = frameWindowLabel(*frame);
    if (window.empty() || draft_->value() || cropCardWindowAspect(*frame)) return window;
    const RectPx& rect = draft_->rect();
    const CropAspectKind kind = draft_->matchedAspect(draft_->candidates(), rect);
    double ratio = std::max(rect.w, rect.h) / std::min(rect.w, rect.h);
    if (kind.kind == CropAspectKind::Kind::ratio) ratio = kind.ratio;
    if (kind.kind == CropAspectKind::Kind::format) ratio = draft_->picture().formatAspect.value_or(ratio);
    return T("crop.whole", {{"window", window}, {"ratio", ratioTitle(ratio, draft_->isPortrait())}});
}

std::optional<std::string> Cropping::formatHint(const Frame& frame) const
{
    if (cropFormatAspect(frame) || cropCardWindowAspect(frame)) return std::nullopt;
    return T("crop.customSize");
}

} // namespace tamlo
