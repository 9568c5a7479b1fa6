#include "app/preview/render_process.h"

#include "app/project/process_rules.h"
#include "core/profiles/catalogue/profile_store.h"

#include <algorithm>

namespace tamlo {

ProcessSettings renderProcess(const ProcessSettings& base, const Frame& frame,
                              const std::optional<SourceExposure::Stats>& stats,
                              const std::optional<std::string>& cropGate, const Roll* roll)
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
    foldFrameNumber(options, frame, roll);
    return process;
}

void foldFrameNumber(RenderOptions& options, const Frame& frame, const Roll* roll)
{
    constexpr std::size_t kHighest = 9999; // that the option takes
    if (!roll || !options.framePrint || options.frameNumber != 0) return;
    if (const auto place = roll->find(frame.id))
        options.frameNumber = static_cast<std::int64_t>(std::min(*place + 1, kHighest));
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
