#include "ui/screens/rack_notes.h"

#include "app/preview/render_process.h"
#include "app/shell/app_model.h"
#include "core/pipeline/output_plan.h"
#include "ui/kit/words.h"

#include <cmath>

namespace tamlo::ui::RackNotes {

namespace {

constexpr double kConversionMired = 108; // the amber filter for tungsten film in daylight

QString lines(const QStringList& parts)
{
    QStringList out;
    for (const QString& part : parts)
        if (!part.isEmpty()) out << part;
    return out.join(QStringLiteral("\n"));
}

QString shotLine(const RackTexts::View& view)
{
    const FrameRef frame = view.model.selection.currentFrame();
    return frame && frame->shot ? qt(frame->shot->line()) : QString();
}

/// How large the print comes out, and what of a press or a tube will show on it.
QString printSize(const RackTexts::View& view)
{
    const FrameRef frame = view.model.selection.currentFrame();
    if (!frame || !view.model.seams().sourceSize || !view.rack.paper) return {};
    const std::optional<Size> source = view.model.seams().sourceSize(*frame);
    if (!source) return {};
    const ProcessSettings process =
        renderProcess(view.settings, *frame, std::nullopt, view.model.project().cropGate);
    const Pipeline::OutputPlan plan =
        Pipeline::outputPlan(*source, view.rack.film, *view.rack.paper, process.options, 1.0);
    const QString size = word("rack.output", {{"size", Pipeline::sizeLabel(plan.size(), T("unit.mp"))}});
    return lines({plan.rasterNote ? qt(*plan.rasterNote) : QString(), size});
}

} // namespace

QString above(const RackCard& card, const RackTexts::View& view)
{
    switch (card.block) {
    case PresetBlock::source:
        return shotLine(view);
    case PresetBlock::optics: {
        const auto hint = view.model.lists.apertureHint(view.settings.lens);
        return hint ? qt(*hint) : QString();
    }
    case PresetBlock::develop:
        return lines({qt(card.caption), qt(card.note)});
    default:
        return {};
    }
}

QString below(const RackCard& card, const RackTexts::View& view)
{
    switch (card.block) {
    case PresetBlock::print:
        return lines({qt(card.caption), qt(card.note),
                      view.rack.plateSizeNote() ? word("rack.plateSize") : QString(), printSize(view)});
    case PresetBlock::finish:
        return qt(card.note);
    default:
        return {};
    }
}

QString conversion(PresetBlock block, const RackTexts::View& view)
{
    if (block != PresetBlock::source || !view.model.lists.isTungstenStock(view.settings.stock)) return {};
    const double k = view.rack.film.balance ? view.rack.film.balance->illuminantK.value_or(0) : 0;
    return k > 0 ? word("knob.tungsten", {{"k", std::lround(k)}}) : QString();
}

bool isConverted(const RackTexts::View& view)
{
    return std::abs(view.settings.options.wbTemp - kConversionMired) < 0.5;
}

void convert(ProcessSettings& settings)
{
    settings.options.wbTemp = kConversionMired;
}

std::string discIn(const LensProfile& lens, const RenderOptions& options)
{
    constexpr double kNothing = 1e-6;
    for (const SieveDisc& disc : *lens.discs)
        if (std::abs(disc.glowMult - options.glowMult) < kNothing &&
            std::abs(disc.glowRadiusMult - options.glowRadiusMult) < kNothing)
            return disc.id;
    return {};
}

} // namespace tamlo::ui::RackNotes
