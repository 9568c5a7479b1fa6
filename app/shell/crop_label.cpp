#include "app/shell/crop_label.h"

#include "app/shell/app_model.h"
#include "app/shell/loaded_profiles.h"
#include "core/profiles/options/film_format.h"
#include "core/text/fmt.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>

namespace tamlo {
namespace {

std::string ratioOf(const CropDraft& draft)
{
    const RectPx& rect = draft.rect();
    const CropAspectKind kind = draft.matchedAspect(CropAspectKind::ladder(), rect);
    const double longOverShort = std::max(rect.w, rect.h) / std::max(std::min(rect.w, rect.h), 1.0);
    const bool isNamed = kind.kind == CropAspectKind::Kind::ratio;
    return (isNamed ? kind : CropAspectKind::of(longOverShort)).title(draft.isPortrait());
}

std::string windowOf(const AppModel& model, const CropDraft& draft, const FilmProfile& film,
                     RenderOptions options)
{
    constexpr double kUmAMm = 1000;
    options.cropGate = model.project().cropGate.value_or(RenderOptions().cropGate);
    const RectPx& rect = draft.rect();
    const Size picture{std::llround(rect.w), std::llround(rect.h)};
    const double longMm =
        Formats::formatWindow(film, options, {draft.picture().size, picture}).fmtUm / kUmAMm;
    const double shortMm = longMm * std::min(rect.w, rect.h) / std::max(rect.w, rect.h);
    const std::string format(rawText(Formats::resolvedFormat(film, options)));
    const std::string size =
        options.frameSize.value_or(Formats::legacyFrameSize(format, Formats::frameCm120(film, options)));
    return T("crop.window", {{"title", T("frameSize." + *Formats::normalizeFormat(format, size).size)},
                             {"long", Fmt::number(longMm, 1)},
                             {"short", Fmt::number(shortMm, 1)}});
}

} // namespace

std::string cropLabel(const AppModel& model)
{
    const auto& draft = model.cropping.draft();
    if (!draft) return {};
    const ProcessSettings settings = model.selection.currentProcess();
    const std::optional<FilmProfile> film = filmOf(settings, model.store());
    if (!film) return ratioOf(*draft);
    if (draft->picture().cardAspect)
        return T("crop.cardWindow",
                 {{"film", model.lists.filmTitle(settings.stock)}, {"ratio", ratioOf(*draft)}});
    const std::string window = windowOf(model, *draft, *film, settings.options);
    if (draft->value()) return window;
    return T("crop.whole", {{"window", window}, {"ratio", ratioOf(*draft)}});
}

} // namespace tamlo
