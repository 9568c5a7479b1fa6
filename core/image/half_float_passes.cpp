#include "core/image/half_float_passes.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/image/half_float_passes.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>

HWY_BEFORE_NAMESPACE();
namespace tamlo::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// The conversions in integers: the library's own cut the mantissa off on processors without an instruction
// for it, and a preview must have the same bits everywhere.
using D = hn::CappedTag<float, 16>;
using DU = hn::Rebind<std::uint32_t, D>;
using DH = hn::Rebind<std::uint16_t, D>;

/// Bit patterns of 32-bit floats.
constexpr std::uint32_t kSign = 0x8000'0000u;
constexpr std::uint32_t kInfinity = 255u << 23;
constexpr std::uint32_t kMostHalf = 0x477F'E000u;            // 65504
constexpr std::uint32_t kLeastNormal = 113u << 23;           // 2^-14
constexpr std::uint32_t kSubnormalStep = (112u + 14u) << 23; // its last place is a subnormal half's
constexpr std::uint32_t kRebias = (127u - 15u) << 23;

HWY_INLINE auto halvesOf(hn::Vec<D> floats)
{
    const D d;
    const DU du;
    const auto bits = hn::BitCast(du, floats);
    const auto sign = hn::And(bits, hn::Set(du, kSign));
    const auto whole = hn::Xor(bits, sign);
    const auto isNaN = hn::Gt(whole, hn::Set(du, kInfinity));
    const auto magnitude = hn::Min(whole, hn::Set(du, kMostHalf));
    // A normal half: half a step is added, less a bit where the last place is even.
    const auto odd = hn::And(hn::ShiftRight<13>(magnitude), hn::Set(du, 1u));
    const auto rounded = hn::Add(hn::Add(magnitude, hn::Set(du, 0xFFFu - kRebias)), odd);
    const auto normal = hn::ShiftRight<13>(rounded);
    // A subnormal one: an addition that leaves its steps in the last places.
    const auto step = hn::Set(du, kSubnormalStep);
    const auto small =
        hn::Sub(hn::BitCast(du, hn::Add(hn::BitCast(d, magnitude), hn::BitCast(d, step))), step);
    const auto isSmall = hn::Lt(magnitude, hn::Set(du, kLeastNormal));
    auto half = hn::IfThenElse(isSmall, small, normal);
    half = hn::IfThenElse(isNaN, hn::Set(du, 0x7E00u), half);
    return hn::Or(half, hn::ShiftRight<16>(sign));
}

HWY_INLINE auto floatsOf(hn::Vec<DU> halves)
{
    const D d;
    const DU du;
    const auto sign = hn::ShiftLeft<16>(hn::And(halves, hn::Set(du, 0x8000u)));
    const auto moved = hn::ShiftLeft<13>(hn::And(halves, hn::Set(du, 0x7FFFu)));
    const auto exponent = hn::And(moved, hn::Set(du, 0x7C00u << 13));
    const auto normal = hn::Add(moved, hn::Set(du, kRebias));
    const auto endless = hn::Add(normal, hn::Set(du, (128u - 16u) << 23));
    const auto least = hn::Set(du, kLeastNormal);
    const auto small = hn::BitCast(
        du, hn::Sub(hn::BitCast(d, hn::Add(normal, hn::Set(du, 1u << 23))), hn::BitCast(d, least)));
    auto out = hn::IfThenElse(hn::Eq(exponent, hn::Zero(du)), small, normal);
    out = hn::IfThenElse(hn::Eq(exponent, hn::Set(du, 0x7C00u << 13)), endless, out);
    return hn::BitCast(d, hn::Or(out, sign));
}

void halfEncode(const float* floats, std::uint16_t* halves, std::int64_t count)
{
    const D d;
    const DH dh;
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    std::int64_t i = 0;
    const auto one = [&](const float* from, std::uint16_t* to) {
        const auto half = hn::BitCast(hn::RebindToSigned<DU>(), halvesOf(hn::LoadU(d, from)));
        hn::StoreU(hn::DemoteTo(dh, half), dh, to);
    };
    for (; i + lanes <= count; i += lanes) one(floats + i, halves + i);
    if (i == count) return;
    std::array<float, 16> rest{};
    std::array<std::uint16_t, 16> out{};
    std::copy(floats + i, floats + count, rest.begin());
    one(rest.data(), out.data());
    std::copy_n(out.begin(), count - i, halves + i);
}

void halfDecode(const std::uint16_t* halves, float* floats, std::int64_t count)
{
    const D d;
    const DU du;
    const DH dh;
    const auto lanes = static_cast<std::int64_t>(hn::Lanes(d));
    std::int64_t i = 0;
    const auto one = [&](const std::uint16_t* from, float* to) {
        hn::StoreU(floatsOf(hn::PromoteTo(du, hn::LoadU(dh, from))), d, to);
    };
    for (; i + lanes <= count; i += lanes) one(halves + i, floats + i);
    if (i == count) return;
    std::array<std::uint16_t, 16> rest{};
    std::array<float, 16> out{};
    std::copy(halves + i, halves + count, rest.begin());
    one(rest.data(), out.data());
    std::copy_n(out.begin(), count - i, floats + i);
}

} // namespace tamlo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(halfEncode);
HWY_EXPORT(halfDecode);

void half_encode(const float* floats, std::uint16_t* halves, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(halfEncode)(floats, halves, count);
}

void half_decode(const std::uint16_t* halves, float* floats, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(halfDecode)(halves, floats, count);
}

} // namespace tamlo
#endif
