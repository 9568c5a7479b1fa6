#include "platform/icc.h"

#include "platform/icc_profile.h"
#include "platform/platform_error.h"

#include <array>
#include <cmath>
#include <cstring>

namespace tamlo::platform {
namespace {

using Profile = ICCProfile;
using Curve = ICCCurve;

cmsColorSpaceSignature signatureOf(ColourModel model)
{
    switch (model) {
    case ColourModel::grey:
        return cmsSigGrayData;
    case ColourModel::rgb:
        return cmsSigRgbData;
    case ColourModel::cmyk:
        break;
    }
    return cmsSigCmykData;
}

// SMPTE ST 2084: signal to light, reference white of 203 cd/m2 (ITU-R BT.2408) at 1.
double pqToLight(double v)
{
    constexpr double m1 = 2610.0 / 16384.0, m2 = 2523.0 / 32.0;
    constexpr double c1 = 3424.0 / 4096.0, c2 = 2413.0 / 128.0, c3 = 2392.0 / 128.0;
    const double p = std::pow(v, 1.0 / m2);
    const double light = 10000.0 * std::pow(std::max(p - c1, 0.0) / (c2 - c3 * p), 1.0 / m1);
    return std::min(light / 203.0, 1.0);
}

// ITU-R BT.2100 HLG: signal to scene light, reference white (75% signal) at 1.
double hlgToLight(double v)
{
    constexpr double a = 0.17883277, b = 0.28466892, c = 0.55991073, white = 0.26496;
    const double light = v <= 0.5 ? v * v / 3.0 : (std::exp((v - c) / a) + b) / 12.0;
    return std::min(light / white, 1.0);
}

template <typename F>
Curve tabulated(F&& toLight)
{
    std::array<cmsUInt16Number, 4096> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<cmsUInt16Number>(
            std::lround(65535.0 * toLight(static_cast<double>(i) / (table.size() - 1))));
    return Curve(cmsBuildTabulatedToneCurve16(nullptr, table.size(), table.data()));
}

// As kSRGBCurve.
constexpr cmsFloat64Number kBT709Curve[5] = {1 / 0.45, 1 / 1.099, 0.099 / 1.099, 1 / 4.5, 0.081};

Curve curveOf(const NamedSpace& space)
{
    switch (space.transfer) {
    case Transfer::sRGB:
        return Curve(cmsBuildParametricToneCurve(nullptr, 4, kSRGBCurve));
    case Transfer::bt709:
        return Curve(cmsBuildParametricToneCurve(nullptr, 4, kBT709Curve));
    case Transfer::linear:
        return Curve(cmsBuildGamma(nullptr, 1.0));
    case Transfer::gamma:
        return Curve(cmsBuildGamma(nullptr, space.gamma));
    case Transfer::pq:
        return tabulated(pqToLight);
    case Transfer::hlg:
        break;
    }
    return tabulated(hlgToLight);
}

Profile profileOf(const NamedSpace& space, ColourModel model)
{
    const Primaries& p = space.primaries;
    const cmsCIExyY white{p.whiteX, p.whiteY, 1.0};
    const Curve curve = curveOf(space);
    if (!curve) return {};
    if (model == ColourModel::grey) return Profile(cmsCreateGrayProfile(&white, curve.get()));
    const cmsCIExyYTRIPLE primaries{
        {p.redX, p.redY, 1.0}, {p.greenX, p.greenY, 1.0}, {p.blueX, p.blueY, 1.0}};
    cmsToneCurve* curves[3] = {curve.get(), curve.get(), curve.get()};
    return Profile(cmsCreateRGBProfile(&white, &primaries, curves));
}

Profile sourceProfile(const RowFormat& format, const ColourTag& tag)
{
    if (!tag.iccProfile.empty()) {
        Profile profile = openICCProfile(tag.iccProfile);
        if (profile && cmsGetColorSpace(profile.get()) == signatureOf(format.model)) return profile;
    }
    if (format.model == ColourModel::cmyk) return {};
    if (tag.space) return profileOf(*tag.space, format.model);
    // Floating-point pictures are linear by custom; 8 and 16 bits are sRGB.
    if (format.sample == SampleType::f32)
        return profileOf({kSRGBPrimaries, Transfer::linear, 1.0}, format.model);
    return {};
}

cmsUInt32Number lcmsFormat(const RowFormat& format)
{
    const auto colours = static_cast<cmsUInt32Number>(format.colours());
    const auto extra = static_cast<cmsUInt32Number>(format.channels) - colours;
    const cmsUInt32Number space = format.model == ColourModel::grey  ? COLORSPACE_SH(PT_GRAY)
                                  : format.model == ColourModel::rgb ? COLORSPACE_SH(PT_RGB)
                                                                     : COLORSPACE_SH(PT_CMYK);
    cmsUInt32Number value = space | CHANNELS_SH(colours) | EXTRA_SH(extra);
    if (format.alpha == Alpha::premultiplied && extra == 1) value |= PREMUL_SH(1);
    switch (format.sample) {
    case SampleType::u8:
        return value | BYTES_SH(1);
    case SampleType::u16:
        return value | BYTES_SH(2);
    case SampleType::f32:
        break;
    }
    return value | BYTES_SH(4) | FLOAT_SH(1);
}

// Sample to 0...255.
std::uint8_t toByte(std::uint8_t v)
{
    return v;
}
std::uint8_t toByte(std::uint16_t v)
{
    return static_cast<std::uint8_t>((v * 255u + 32767u) / 65535u);
}
std::uint8_t toByte(float v)
{
    return v > 0.0f ? static_cast<std::uint8_t>(std::lround(std::min(v, 1.0f) * 255.0f)) : std::uint8_t{0};
}

std::uint8_t times(std::uint8_t a, std::uint8_t b)
{
    return static_cast<std::uint8_t>((a * b + 127) / 255);
}

template <typename T>
void plainConvert(const RowFormat& format, const T* from, std::uint8_t* rgba, std::int64_t pixels)
{
    for (std::int64_t i = 0; i < pixels; ++i, from += format.channels, rgba += 4) {
        std::uint8_t rgb[3];
        if (format.model == ColourModel::cmyk) {
            const auto light = static_cast<std::uint8_t>(255 - toByte(from[3]));
            for (int c = 0; c < 3; ++c)
                rgb[c] = times(static_cast<std::uint8_t>(255 - toByte(from[c])), light);
        } else {
            for (int c = 0; c < 3; ++c) rgb[c] = toByte(from[format.model == ColourModel::rgb ? c : 0]);
        }
        const std::uint8_t alpha =
            format.alpha == Alpha::straight ? toByte(from[format.colours()]) : std::uint8_t{255};
        for (int c = 0; c < 3; ++c) rgba[c] = times(rgb[c], alpha);
        rgba[3] = 255;
    }
}

template <typename T>
void coverByAlpha(const RowFormat& format, const T* from, std::uint8_t* rgba, std::int64_t pixels)
{
    from += format.colours();
    for (std::int64_t i = 0; i < pixels; ++i, from += format.channels, rgba += 4)
        for (int c = 0; c < 3; ++c) rgba[c] = times(rgba[c], toByte(*from));
}

template <typename F>
void withSamples(SampleType sample, const void* from, F&& f)
{
    switch (sample) {
    case SampleType::u8:
        return f(static_cast<const std::uint8_t*>(from));
    case SampleType::u16:
        return f(static_cast<const std::uint16_t*>(from));
    case SampleType::f32:
        return f(static_cast<const float*>(from));
    }
}

} // namespace

void SRGBConverter::Closer::operator()(void* transform) const noexcept
{
    cmsDeleteTransform(transform);
}

SRGBConverter::SRGBConverter(const RowFormat& format, const ColourTag& tag) : format_(format)
{
    const Profile from = sourceProfile(format, tag);
    if (!from || (format.sample != SampleType::f32 && isSRGB(from.get()))) return;
    const Profile to(cmsCreate_sRGBProfile());
    // Without its one-pixel cache a transform may be used by several threads.
    const cmsUInt32Number flags = cmsFLAGS_NOCACHE | cmsFLAGS_BLACKPOINTCOMPENSATION;
    transform_.reset(cmsCreateTransform(from.get(), lcmsFormat(format), to.get(), TYPE_RGBA_8,
                                        INTENT_RELATIVE_COLORIMETRIC, flags));
}

SRGBConverter::~SRGBConverter() = default;

bool SRGBConverter::worksInPlace() const noexcept
{
    return format_.sample == SampleType::u8 && format_.channels == 4;
}

bool SRGBConverter::isIdentity() const noexcept
{
    return worksInPlace() && !transform_ && format_.model == ColourModel::rgb &&
           format_.alpha != Alpha::straight;
}

void SRGBConverter::convert(const void* from, std::uint8_t* rgba, std::int64_t pixels) const
{
    withSamples(format_.sample, from, [&](const auto* samples) {
        if (!transform_) return plainConvert(format_, samples, rgba, pixels);
        cmsDoTransform(transform_.get(), samples, rgba, static_cast<cmsUInt32Number>(pixels));
        // Premultiplied colours came out at full strength and want their cover back as well.
        if (format_.alpha != Alpha::none) coverByAlpha(format_, samples, rgba, pixels);
    });
}

} // namespace tamlo::platform
