#include "app/export/export_size.h"

#include "app/preview/render_process.h"
#include "app/preview/source_decode.h"
#include "app/preview/tiers.h"
#include "core/image/tamlo_error.h"
#include "core/io/image_loader.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/output_plan.h"
#include "core/profiles/formats/profile_error.h"

#include <utility>

namespace tamlo::ExportSize {
namespace {

constexpr std::int64_t kSocialLong = 2048;

RenderChoices choices(const Frame& frame, const Setting& setting)
{
    return choicesOf(renderProcess(*frame.process, frame, std::nullopt, setting.cropGate, &setting.roll),
                     setting.store);
}

/// Of the source as it is decoded for an export.
Size decodedSize(const Frame& frame, const Setting& setting)
{
    const bool isCapped = ImageLoader::rawDecodeMode() == ImageLoader::RawDecodeMode::master;
    return ImageLoader::pictureSize(frame.url, isCapped ? decodeCap(frame, setting) : 0);
}

template <typename Measure>
std::optional<Size> measured(const Measure& measure)
{
    try {
        return measure();
    } catch (const TamloError&) {
    } catch (const ProfileError&) {}
    return std::nullopt; // the export will tell why
}

} // namespace

std::int64_t decodeCap(const Frame& frame, const Setting& setting)
{
    if (!frame.process || !ImageLoader::isRAW(frame.url)) return 0;
    const Size full = SourceDecode::fullPixelSize(frame.url).value_or(Size());
    const RenderChoices chosen = choices(frame, setting);
    const Tiers::Caps caps = Tiers::capsOf(chosen.film, chosen.paper, chosen.options, full);
    return caps.master > 0 ? Tiers::scaled(caps.master, Tiers::cropDecodeFactor(frame.crop, full)) : 0;
}

void askSocial(RenderOptions& options, std::int64_t socialPx)
{
    options.socialPx = socialPx;
    options.socialBy = socialPx == kSocialLong ? "long" : "width";
}

std::optional<Size> output(const Frame& frame, double scale, const Setting& setting)
{
    return measured([&] {
        const Size source = decodedSize(frame, setting);
        if (frame.process) {
            const RenderChoices chosen = choices(frame, setting);
            return Pipeline::outputPlan(source, chosen.film, chosen.paper, chosen.options, scale).size();
        }
        Size size = Pipeline::croppedSize(frame.crop, source);
        if (frame.orient.rot % 2 != 0) std::swap(size.width, size.height);
        return Pipeline::downscaledSize(size, scale);
    });
}

std::optional<Size> social(const Frame& frame, std::int64_t socialPx, const Setting& setting)
{
    if (!frame.process) return std::nullopt;
    return measured([&] {
        RenderChoices chosen = choices(frame, setting);
        askSocial(chosen.options, socialPx);
        return Pipeline::socialSize(decodedSize(frame, setting), chosen.film, chosen.paper, chosen.options);
    });
}

} // namespace tamlo::ExportSize
