#include "tests/support/icc_reference.h"

#include <lcms2.h>

namespace tamlo::test {
namespace {

cmsHPROFILE wideScreen()
{
    const cmsCIExyY white{0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries{{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, 2.2);
    cmsToneCurve* curves[3] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    return profile;
}

} // namespace

std::vector<std::uint8_t> wideScreenProfile()
{
    cmsHPROFILE profile = wideScreen();
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<std::uint8_t> bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

std::array<double, 3> onWideScreen(const std::array<int, 3>& rgb)
{
    static const cmsHTRANSFORM transform = [] {
        cmsHPROFILE from = cmsCreate_sRGBProfile(), to = wideScreen();
        cmsHTRANSFORM made =
            cmsCreateTransform(from, TYPE_RGB_DBL, to, TYPE_RGB_DBL, INTENT_RELATIVE_COLORIMETRIC,
                               cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE | cmsFLAGS_BLACKPOINTCOMPENSATION);
        cmsCloseProfile(from);
        cmsCloseProfile(to);
        return made;
    }();
    const double in[3] = {rgb[0] / 255.0, rgb[1] / 255.0, rgb[2] / 255.0};
    double out[3] = {};
    cmsDoTransform(transform, in, out, 1);
    return {out[0] * 255, out[1] * 255, out[2] * 255};
}

} // namespace tamlo::test
