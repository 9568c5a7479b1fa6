#include "platform/fft.h"

#include "platform/platform_error.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include <fftw3.h>

namespace tamlo::platform {
namespace {

enum class Transform { rowForward, rowInverse, columnForward, columnInverse };

fftwf_complex* raw(std::complex<float>* values)
{
    return reinterpret_cast<fftwf_complex*>(values);
}

/// FFTW_ESTIMATE: a measured plan would hang on the machine's load, and the last bits of a picture with it.
fftwf_plan makePlan(Transform transform, int n)
{
    constexpr int kColumns = static_cast<int>(kFftColumns);
    if (transform == Transform::rowForward || transform == Transform::rowInverse) {
        const FftBuffer row(n), spectrum(2 * (n / 2 + 1));
        constexpr unsigned flags = FFTW_ESTIMATE | FFTW_DESTROY_INPUT;
        return transform == Transform::rowForward
                   ? fftwf_plan_dft_r2c_1d(n, row.real(), raw(spectrum.complex()), flags)
                   : fftwf_plan_dft_c2r_1d(n, raw(spectrum.complex()), row.real(), flags);
    }
    const FftBuffer block(2 * kFftColumns * n);
    fftwf_complex* values = raw(block.complex());
    const int sign = transform == Transform::columnForward ? FFTW_FORWARD : FFTW_BACKWARD;
    return fftwf_plan_many_dft(1, &n, kColumns, values, nullptr, kColumns, 1, values, nullptr, kColumns, 1,
                               sign, FFTW_ESTIMATE);
}

using Plans = std::map<std::pair<Transform, std::int64_t>, fftwf_plan>;

/// The kept plan. Lengths are products of small primes, which are few: the map stays small. FFTW makes plans
/// in one thread at a time; this lock is the only road to its planner.
fftwf_plan planFor(Transform transform, std::int64_t length)
{
    static std::mutex lock;
    static Plans& plans = *new Plans; // never freed: a worker may still transform while the process ends
    if (length < 1 || length > std::numeric_limits<int>::max() / (2 * kFftColumns))
        throw PlatformError("no Fourier transform of length " + std::to_string(length));
    const std::lock_guard guard(lock);
    fftwf_plan& plan = plans[{transform, length}];
    if (!plan) plan = makePlan(transform, static_cast<int>(length));
    if (!plan) throw PlatformError("no plan for a Fourier transform of length " + std::to_string(length));
    return plan;
}

fftwf_plan asPlan(const void* plan)
{
    return static_cast<fftwf_plan>(const_cast<void*>(plan));
}

} // namespace

std::int64_t quickFftLength(std::int64_t n)
{
    // Longer rows in whole vectors: a factor of 16 costs a few samples and saves the odd codelets.
    const std::int64_t step = n > 128 ? 16 : 1;
    for (std::int64_t length = (n + step - 1) / step * step;; length += step) {
        std::int64_t rest = length;
        for (const std::int64_t prime : {2, 3, 5, 7})
            while (rest % prime == 0) rest /= prime;
        if (rest == 1) return length;
    }
}

FftBuffer::FftBuffer(std::int64_t floats)
{
    const std::size_t bytes = static_cast<std::size_t>(std::max<std::int64_t>(floats, 1)) * sizeof(float);
    const std::size_t whole = (bytes + kFftAlignment - 1) / kFftAlignment * kFftAlignment;
    block_.reset(static_cast<float*>(std::aligned_alloc(kFftAlignment, whole)));
    if (!block_) throw PlatformError("cannot allocate " + std::to_string(whole) + " bytes");
    std::memset(block_.get(), 0, whole);
}

void FftBuffer::Free::operator()(float* block) const noexcept
{
    std::free(block);
}

RowFft::RowFft(std::int64_t length)
    : forward_(planFor(Transform::rowForward, length)), inverse_(planFor(Transform::rowInverse, length))
{}

void RowFft::forward(float* row, std::complex<float>* spectrum) const noexcept
{
    fftwf_execute_dft_r2c(asPlan(forward_), row, raw(spectrum));
}

void RowFft::inverse(std::complex<float>* spectrum, float* row) const noexcept
{
    fftwf_execute_dft_c2r(asPlan(inverse_), raw(spectrum), row);
}

ColumnFft::ColumnFft(std::int64_t length)
    : forward_(planFor(Transform::columnForward, length)), inverse_(planFor(Transform::columnInverse, length))
{}

void ColumnFft::forward(std::complex<float>* block) const noexcept
{
    fftwf_execute_dft(asPlan(forward_), raw(block), raw(block));
}

void ColumnFft::inverse(std::complex<float>* block) const noexcept
{
    fftwf_execute_dft(asPlan(inverse_), raw(block), raw(block));
}

} // namespace tamlo::platform
