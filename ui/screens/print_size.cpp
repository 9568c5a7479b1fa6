#include "ui/screens/print_size.h"

#include "app/preview/render_process.h"
#include "core/image/tamlo_error.h"
#include "core/pipeline/output_plan.h"
#include "core/profiles/formats/profile_error.h"
#include "ui/kit/words.h"

namespace tamlo::ui {

QString printSizeText(const Desk& desk, const Frame& frame)
{
    const AppModel& model = desk.model;
    const auto shape = desk.views.loads().shape(frame.id);
    if (!shape || !frame.process) return {};
    try {
        const ProcessSettings process = renderProcess(*frame.process, frame, std::nullopt,
                                                      model.project().cropGate, &model.project().frames);
        const RenderChoices choices = choicesOf(process, model.store());
        const Size size = Pipeline::outputSize({shape->fullWidth, shape->fullHeight}, choices.film,
                                               choices.paper, choices.options, 1.0);
        return qt(Pipeline::sizeLabel(size, T("unit.mp")));
    } catch (const ProfileError&) {
    } catch (const TamloError&) {
        // The render tells what is wrong with it.
    }
    return {};
}

} // namespace tamlo::ui
