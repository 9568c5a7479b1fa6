// Fast Fourier transforms in single precision, unscaled: real rows to half spectra and back, and blocks of
// complex columns in place. A plan is made at the first use of a length, kept for the life of the process,
// and chosen without timing, so that a transform gives the same bits in every run on the same kind of
// machine. Transforms may run in many threads at a time; plans are made under a lock.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace tamlo::platform {

/// Arrays that are transformed start at a multiple of this many bytes.
inline constexpr std::size_t kFftAlignment = 64;
/// Columns that are transformed together: element (row y, column i) of a block at y × kFftColumns + i.
inline constexpr std::int64_t kFftColumns = 8;

/// A length of at least n whose transform is quick: a product of 2, 3, 5 and 7. n is at least 1.
std::int64_t quickFftLength(std::int64_t n);

/// Zeroed floats at kFftAlignment. Errors: PlatformError when the memory can't be had.
class FftBuffer {
public:
    explicit FftBuffer(std::int64_t floats);
    float* real() const noexcept { return block_.get(); }
    std::complex<float>* complex() const noexcept
    {
        return reinterpret_cast<std::complex<float>*>(block_.get());
    }

private:
    struct Free {
        void operator()(float* block) const noexcept;
    };
    std::unique_ptr<float, Free> block_;
};

/// A real row of `length` samples and its half spectrum of length / 2 + 1. The inverse gives the row times
/// `length`; both leave nothing of use in their input.
/// Errors of the constructor: PlatformError.
class RowFft {
public:
    explicit RowFft(std::int64_t length);
    void forward(float* row, std::complex<float>* spectrum) const noexcept;
    void inverse(std::complex<float>* spectrum, float* row) const noexcept;

private:
    const void* forward_;
    const void* inverse_;
};

/// A block of kFftColumns columns of `length` rows, in place. The inverse gives the block times `length`.
/// Errors of the constructor: PlatformError.
class ColumnFft {
public:
    explicit ColumnFft(std::int64_t length);
    void forward(std::complex<float>* block) const noexcept;
    void inverse(std::complex<float>* block) const noexcept;

private:
    const void* forward_;
    const void* inverse_;
};

} // namespace tamlo::platform
