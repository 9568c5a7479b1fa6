#include "app/preview/render_process.h"

#include "app/project/process_rules.h"
#include "core/profiles/catalogue/profile_store.h"

namespace tamlo {

ProcessSettings renderProcess(const ProcessSettings& base, const Frame& frame,
                              const std::optional<SourceExposure::Stats>& stats,
                              const std::optional<std::string>& cropGate)
{
    ProcessSettings process = base;
    RenderOptions& options = process.options;
    options.seed = frame.effectiveSeed();
    options.sourceGain =
        stats ? SourceExposure::gain(*stats, SourceExposure::fromKey(options.srcExposure)) : 1.0;
    options.rotate = frame.orient.rot * 90;
    options.mirror = frame.orient.mirror;
    options.crop = frame.crop;
    options.cropGate = cropGate.value_or(RenderOptions().cropGate);
    options.socialCrop45 = process.socialCrop45;
    return process;
}

double originalGain(const std::optional<SourceExposure::Stats>& stats)
{
    return stats ? SourceExposure::gain(*stats, SourceExposure::neutral) : 1.0;
}

RenderChoices choicesOf(const ProcessSettings& process, const ProfileStore& store)
{
    return {store.film(process.stock), store.lens(process.lens), store.paper(resolvedPaper(process, store)),
            process.options};
}

} // namespace tamlo
