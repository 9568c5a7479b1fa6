#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/process/altprint/alt_texture_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/process/altprint/alt_texture_passes.h"

#include "core/image/vector_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

template <class D>
HWY_INLINE hn::Vec<D> mixed(D d, const float* a, const float* b, const FieldMix& mix, std::size_t n)
{
    const auto first = hn::Mul(loadRun(d, a, n), hn::Set(d, mix.gainA));
    return hn::Add(first, hn::Mul(loadRun(d, b, n), hn::Set(d, mix.gainB)));
}

void fibreRow(float* amount, const float* a, const float* b, const FieldMix& mix, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const auto amp = hn::Set(d, mix.amp), one = hn::Set(d, 1.0f);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto v = loadRun(d, amount + i, count - i);
        const auto f = mixed(d, a + i, b + i, mix, count - i);
        const auto env = hn::Sqrt(clamp01(d, hn::Mul(v, hn::Sub(one, v))));
        storeRun(d, clamp01(d, hn::Add(v, hn::Mul(hn::Mul(amp, f), env))), amount + i, count - i);
    }
}

void inkRow(float* amount, const float* a, const float* b, const FieldMix& mix, float row, float specks,
            std::size_t count)
{
    constexpr float kSpeckTone = 0.14f; // taste, as the powers below
    const hn::ScalableTag<float> d;
    const auto amp = hn::Set(d, mix.amp), one = hn::Set(d, 1.0f);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto v = loadRun(d, amount + i, count - i);
        const auto f = hn::Add(mixed(d, a + i, b + i, mix, count - i), hn::Set(d, row));
        const auto c = clamp01(d, v);
        const auto cube = hn::Mul(hn::Mul(c, c), c);
        const auto env = hn::Mul(hn::Mul(pow01(d, c, 0.85f), hn::Sub(one, hn::Mul(hn::Set(d, 0.4f), cube))),
                                 hn::Set(d, 1.0f / 0.62f));
        const auto deep = hn::Mul(v, hn::Set(d, 1.0f / kSpeckTone));
        const auto fade = hn::Exp(d, hn::Neg(hn::Min(hn::Mul(deep, deep), hn::Set(d, 60.0f))));
        const auto speck = hn::Mul(hn::Mul(hn::Max(f, hn::Zero(d)), hn::Set(d, specks)), fade);
        const auto texture = hn::Add(hn::Mul(f, env), speck);
        storeRun(d, clamp01(d, hn::Add(v, hn::Mul(amp, texture))), amount + i, count - i);
    }
}

void reticulationRow(float* amount, const float* a, const FieldMix& mix, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const auto amp = hn::Set(d, mix.amp), gain = hn::Set(d, 1.6f * mix.gainA);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto v = loadRun(d, amount + i, count - i);
        const auto f = hn::Tanh(d, hn::Mul(loadRun(d, a + i, count - i), gain));
        const auto env = clamp01(d, hn::Mul(v, hn::Set(d, 1.0f / 0.06f)));
        storeRun(d, clamp01(d, hn::Add(v, hn::Mul(hn::Mul(amp, f), env))), amount + i, count - i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(fibreRow);
HWY_EXPORT(inkRow);
HWY_EXPORT(reticulationRow);

void texture_fibre(float* amount, const float* a, const float* b, const FieldMix& mix,
                   std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(fibreRow)(amount, a, b, mix, static_cast<std::size_t>(count));
}

void texture_ink(float* amount, const float* a, const float* b, const FieldMix& mix, float row, float specks,
                 std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(inkRow)(amount, a, b, mix, row, specks, static_cast<std::size_t>(count));
}

void texture_reticulation(float* amount, const float* a, const FieldMix& mix, std::int64_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH(reticulationRow)(amount, a, mix, static_cast<std::size_t>(count));
}

} // namespace tamlo
#endif
