#include "platform/icc_profile.h"

#include <cmath>

namespace tamlo::platform {
namespace {

bool isSRGBCurve(const cmsToneCurve* curve)
{
    if (!curve) return false;
    const ICCCurve wanted(cmsBuildParametricToneCurve(nullptr, 4, kSRGBCurve));
    for (int i = 0; i <= 64; ++i) {
        const auto v = static_cast<cmsFloat32Number>(i) / 64.0f;
        // A quarter of an 8-bit step near white, where steps are widest in light.
        if (std::abs(cmsEvalToneCurveFloat(curve, v) - cmsEvalToneCurveFloat(wanted.get(), v)) > 0.001f)
            return false;
    }
    return true;
}

} // namespace

ICCProfile openICCProfile(std::span<const std::uint8_t> bytes)
{
    return ICCProfile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
}

bool isSRGB(cmsHPROFILE profile)
{
    const auto curve = [&](cmsTagSignature tag) {
        return static_cast<const cmsToneCurve*>(cmsReadTag(profile, tag));
    };
    if (cmsGetColorSpace(profile) == cmsSigGrayData) return isSRGBCurve(curve(cmsSigGrayTRCTag));
    if (!cmsIsMatrixShaper(profile) || cmsIsTag(profile, cmsSigAToB0Tag) || cmsIsTag(profile, cmsSigAToB1Tag))
        return false;
    const ICCProfile wanted(cmsCreate_sRGBProfile());
    for (const cmsTagSignature tag : {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag}) {
        const auto* a = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, tag));
        const auto* b = static_cast<const cmsCIEXYZ*>(cmsReadTag(wanted.get(), tag));
        if (!a || !b) return false;
        if (std::abs(a->X - b->X) > 0.002 || std::abs(a->Y - b->Y) > 0.002 || std::abs(a->Z - b->Z) > 0.002)
            return false;
    }
    return isSRGBCurve(curve(cmsSigRedTRCTag)) && isSRGBCurve(curve(cmsSigGreenTRCTag)) &&
           isSRGBCurve(curve(cmsSigBlueTRCTag));
}

} // namespace tamlo::platform
