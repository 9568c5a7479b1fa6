#include "platform/display_transform.h"

#include "platform/icc_profile.h"

#include <cstring>
#include <vector>

namespace tamlo::platform {
namespace {

/// Null for all but profiles of three colours that a screen may have.
ICCProfile displayProfile(std::span<const std::uint8_t> bytes)
{
    if (bytes.empty()) return {};
    ICCProfile profile = openICCProfile(bytes);
    const bool isOfScreen =
        profile && cmsGetColorSpace(profile.get()) == cmsSigRgbData &&
        cmsGetDeviceClass(profile.get()) != cmsSigLinkClass &&
        cmsIsIntentSupported(profile.get(), INTENT_RELATIVE_COLORIMETRIC, LCMS_USED_AS_OUTPUT);
    return isOfScreen ? std::move(profile) : ICCProfile();
}

} // namespace

std::shared_ptr<const DisplayTransform> DisplayTransform::of(std::span<const std::uint8_t> iccProfile)
{
    const ICCProfile to = displayProfile(iccProfile);
    if (!to || isSRGB(to.get())) return nullptr;
    const ICCProfile from(cmsCreate_sRGBProfile());
    // Without its one-pixel cache a transform may be used by several threads.
    const cmsUInt32Number flags = cmsFLAGS_NOCACHE | cmsFLAGS_BLACKPOINTCOMPENSATION;
    cmsHTRANSFORM transform = cmsCreateTransform(from.get(), TYPE_RGBA_8, to.get(), TYPE_BGRA_8,
                                                 INTENT_RELATIVE_COLORIMETRIC, flags);
    if (!transform) return nullptr;
    return std::shared_ptr<const DisplayTransform>(new DisplayTransform(transform));
}

DisplayTransform::~DisplayTransform()
{
    cmsDeleteTransform(transform_);
}

void DisplayTransform::convert(const std::uint8_t* rgba, std::uint8_t* bgra, std::int64_t pixels) const
{
    std::memset(bgra, 0xFF, static_cast<std::size_t>(pixels) * 4); // the engine leaves alpha alone
    cmsDoTransform(transform_, rgba, bgra, static_cast<cmsUInt32Number>(pixels));
}

std::string displayProfileName(std::span<const std::uint8_t> iccProfile)
{
    const ICCProfile profile = displayProfile(iccProfile);
    if (!profile) return {};
    const auto ask = [&](char* to, cmsUInt32Number size) {
        return cmsGetProfileInfoASCII(profile.get(), cmsInfoDescription, "en", "US", to, size);
    };
    std::vector<char> text(ask(nullptr, 0) + 1, '\0');
    ask(text.data(), static_cast<cmsUInt32Number>(text.size()));
    return text.data();
}

} // namespace tamlo::platform
