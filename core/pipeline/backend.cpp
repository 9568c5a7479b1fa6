#include "core/pipeline/backend.h"

#include "core/image/cancellation.h"
#include "core/image/resample.h"
#include "core/image/rounding.h"
#include "core/pipeline/output_plan.h"
#include "core/pipeline/pipeline.h"
#include "core/process/card/card_relief.h"
#include "core/process/card/instant_card.h"

#include <algorithm>
#include <utility>

namespace tamlo {

RGBImage RenderBackend::process(RGBImage image, const RenderChoices& choices) const
{
    const CancellationScope cancellation(hooks.shouldCancel);
    if (!mayAbort()) return render(std::move(image), choices);
    try {
        return render(image, choices);
    } catch (const TamloError& error) {
        if (error.kind() != TamloError::Kind::gpuAborted) throw;
        RGBImage second = render(std::move(image), choices);
        if (onRecovered) onRecovered(error.abort());
        return second;
    }
}

ReadyImage RenderBackend::processReady(RGBImage image, const RenderChoices& choices) const
{
    const Size picture =
        Pipeline::outputPlan(image.size(), choices.film, choices.paper, choices.options, 1.0).picture;
    RGBImage out = process(std::move(image), choices);
    const auto cutOut = Pipeline::cardCutOut(choices.film, choices.options, picture, out.size());
    if (!cutOut) return ImageWriter::readyImage(out);
    return ImageWriter::readyImage(CardRelief::unmixed(std::move(out), *cutOut), &*cutOut);
}

RGBImage CPUBackend::render(RGBImage image, const RenderChoices& choices) const
{
    return Pipeline::process(std::move(image), choices.film, choices.lens, choices.paper, choices.options,
                             hooks);
}

std::string_view rawText(BackendKind kind)
{
    return kind == BackendKind::metal ? "metal" : "cpu";
}

std::unique_ptr<RenderBackend> makeBackend(BackendKind kind)
{
    if (kind == BackendKind::metal) throw TamloError::unsupported("metal: no GPU context on this system");
    return std::make_unique<CPUBackend>();
}

Size resizedSize(Size size, std::int64_t longSide)
{
    const std::int64_t now = std::max(size.width, size.height);
    if (now <= longSide) return size;
    const double scale = static_cast<double>(longSide) / static_cast<double>(now);
    const auto side = [&](std::int64_t v) {
        return std::max<std::int64_t>(pyRound(scale * static_cast<double>(v)), 1);
    };
    return {side(size.width), side(size.height)};
}

RGBImage resized(RGBImage image, std::int64_t longSide)
{
    const Size to = resizedSize(image.size(), longSide);
    if (to == image.size()) return image;
    return pilResize(std::move(image), to.width, to.height, Resampling::lanczos);
}

RGBImage resized(Size size, std::int64_t longSide, const std::function<void(float*)>& fill)
{
    RGBImage image(size.width, size.height);
    fill(image.mutableData());
    return resized(std::move(image), longSide);
}

} // namespace tamlo
