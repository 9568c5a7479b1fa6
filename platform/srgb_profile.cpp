#include "platform/srgb_profile.h"

#include "platform/platform_error.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <lcms2.h>

namespace tamlo::platform {
namespace {

std::vector<std::uint8_t> makeProfile()
{
    const std::unique_ptr<void, decltype(&cmsCloseProfile)> profile(cmsCreate_sRGBProfile(),
                                                                    &cmsCloseProfile);
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        throw PlatformError("cannot make the sRGB profile");
    std::vector<std::uint8_t> bytes(size);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size))
        throw PlatformError("cannot make the sRGB profile");
    // Bytes 24 to 35 of the header are the time of making (ICC.1:2010, 7.2.8). A fixed one, the day of that
    // standard: the same picture must give the same file tomorrow.
    constexpr std::uint8_t kDate[12] = {0x07, 0xDA, 0, 12, 0, 1, 0, 0, 0, 0, 0, 0};
    std::copy(std::begin(kDate), std::end(kDate), bytes.begin() + 24);
    return bytes;
}

} // namespace

std::span<const std::uint8_t> srgbProfile()
{
    static const std::vector<std::uint8_t> bytes = makeProfile();
    return bytes;
}

} // namespace tamlo::platform
