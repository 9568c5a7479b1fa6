#include "core/image/resample_passes.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/image/resample_passes.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tamlo::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void resampleRow(const ResampleRow& r, const ResampleCoeffs& coeffs)
{
    using D = hn::CappedTag<double, kResampleLanes>;
    const D d;
    const hn::Rebind<float, D> df;
    const std::int64_t lanes = static_cast<std::int64_t>(hn::Lanes(d));
    const std::int64_t outputs = static_cast<std::int64_t>(coeffs.xmin.size());
    const std::int64_t* first = coeffs.xmin.data();
    const std::int64_t* count = coeffs.n.data();
    for (std::int64_t i = 0; i < outputs; ++i) {
        const float* from = r.row + first[i] * r.stride;
        const double* w = coeffs.k.data() + i * coeffs.ksize;
        for (std::int64_t lane = 0; lane < kResampleLanes; lane += lanes) {
            auto sum = hn::Zero(d);
            for (std::int64_t j = 0; j < count[i]; ++j) {
                const auto v = hn::PromoteTo(d, hn::LoadU(df, from + j * r.stride + lane));
                sum = hn::Add(sum, hn::Mul(v, hn::Set(d, w[j])));
            }
            hn::StoreU(hn::DemoteTo(df, sum), df, r.out + i * r.stride + lane);
        }
    }
}

using D8 = hn::CappedTag<double, 8>;
constexpr std::int64_t kColumnBlock = 32; // samples; four of the widest vectors

// Four vectors of outputs at sample x.
HWY_INLINE void columnBlock(const float* const* rows, const double* weights, std::int64_t taps,
                            std::int64_t x, float* out)
{
    const D8 d;
    const hn::Rebind<float, D8> df;
    const std::int64_t n = static_cast<std::int64_t>(hn::Lanes(d));
    auto a0 = hn::Zero(d), a1 = a0, a2 = a0, a3 = a0;
    for (std::int64_t j = 0; j < taps; ++j) {
        const auto w = hn::Set(d, weights[j]);
        const float* p = rows[j] + x;
        a0 = hn::Add(a0, hn::Mul(hn::PromoteTo(d, hn::LoadU(df, p)), w));
        a1 = hn::Add(a1, hn::Mul(hn::PromoteTo(d, hn::LoadU(df, p + n)), w));
        a2 = hn::Add(a2, hn::Mul(hn::PromoteTo(d, hn::LoadU(df, p + 2 * n)), w));
        a3 = hn::Add(a3, hn::Mul(hn::PromoteTo(d, hn::LoadU(df, p + 3 * n)), w));
    }
    hn::StoreU(hn::DemoteTo(df, a0), df, out);
    hn::StoreU(hn::DemoteTo(df, a1), df, out + n);
    hn::StoreU(hn::DemoteTo(df, a2), df, out + 2 * n);
    hn::StoreU(hn::DemoteTo(df, a3), df, out + 3 * n);
}

void resampleColumn(const ResampleColumn& c)
{
    const std::int64_t step = 4 * static_cast<std::int64_t>(hn::Lanes(D8()));
    std::int64_t x = 0;
    for (; x + step <= c.samples; x += step) columnBlock(c.rows, c.weights, c.taps, x, c.out + x);
    // The rest one sample at a time: the same 64-bit products and sums in the same order.
    for (; x < c.samples; ++x) {
        double sum = 0.0;
        for (std::int64_t j = 0; j < c.taps; ++j) sum += static_cast<double>(c.rows[j][x]) * c.weights[j];
        c.out[x] = static_cast<float>(sum);
    }
}

} // namespace tamlo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(resampleRow);
HWY_EXPORT(resampleColumn);

void resample_row(const ResampleRow& row, const ResampleCoeffs& coeffs) noexcept
{
    HWY_DYNAMIC_DISPATCH(resampleRow)(row, coeffs);
}

void resample_column(const ResampleColumn& column) noexcept
{
    HWY_DYNAMIC_DISPATCH(resampleColumn)(column);
}

} // namespace tamlo
#endif
