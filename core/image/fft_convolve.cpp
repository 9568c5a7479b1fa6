#include "core/image/fft_convolve.h"

#include "core/image/bands.h"
#include "core/image/tamlo_error.h"
#include "platform/fft.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <complex>
#include <string>

namespace tamlo {
namespace {

using Complex = std::complex<float>;
using platform::ColumnFft;
using platform::FftBuffer;
using platform::kFftColumns;
using platform::RowFft;

/// Length of the circular convolution of an axis. What wraps round falls on the samples before the kernel's
/// centre, which are cut away, so that half a kernel of zeros is enough.
std::int64_t paddedSide(std::int64_t image, std::int64_t kernel)
{
    return platform::quickFftLength(std::max(image + kernel / 2, kernel));
}

/// The samples of a plane, or of one channel of an image.
struct Samples {
    const float* data;
    Size size;
    std::int64_t step; ///< floats from one sample to the next

    void copyRow(std::int64_t y, float* to) const
    {
        const float* from = data + y * size.width * step;
        for (std::int64_t x = 0; x < size.width; ++x) to[x] = from[x * step];
    }
};

/// Half spectra of a plane's rows, as one block of complex rows. Rows of zeros below the plane are not kept.
class RowSpectra {
public:
    RowSpectra(const Samples& samples, std::int64_t length, PageBuffer& memory)
        : rows_(samples.size.height), stride_((length / 2 + kFftColumns) / kFftColumns * kFftColumns)
    {
        const std::size_t bytes = static_cast<std::size_t>(rows_ * stride_) * sizeof(Complex);
        if (!memory.base() || memory.byteCount() < bytes) {
            memory = PageBuffer();
            memory = PageBuffer(bytes);
        }
        block_ = reinterpret_cast<Complex*>(memory.base());
        const RowFft fft(length);
        parallelBands(rows_, length, [&](std::int64_t start, std::int64_t end) {
            const FftBuffer padded(length);
            for (std::int64_t y = start; y < end; ++y) {
                samples.copyRow(y, padded.real());
                std::fill(padded.real() + samples.size.width, padded.real() + length, 0.0f);
                fft.forward(padded.real(), row(y));
            }
        });
    }

    std::int64_t rows() const { return rows_; }
    std::int64_t blocks() const { return stride_ / kFftColumns; }
    Complex* row(std::int64_t y) const { return block_ + y * stride_; }

    /// Block i of columns, with zeros below up to `length` rows.
    void gather(std::int64_t i, std::int64_t length, Complex* to) const
    {
        for (std::int64_t y = 0; y < rows_; ++y)
            std::copy_n(row(y) + i * kFftColumns, kFftColumns, to + y * kFftColumns);
        std::fill(to + rows_ * kFftColumns, to + length * kFftColumns, Complex{});
    }
    /// Writes rows() rows from a block back.
    void scatter(std::int64_t i, const Complex* from) const
    {
        for (std::int64_t y = 0; y < rows_; ++y)
            std::copy_n(from + y * kFftColumns, kFftColumns, row(y) + i * kFftColumns);
    }

private:
    std::int64_t rows_, stride_;
    Complex* block_;
};

/// a × k into a, on interleaved parts: the product of std::complex looks for infinities in every sample.
void multiplyInto(Complex* a, const Complex* k, std::int64_t count)
{
    float* to = reinterpret_cast<float*>(a);
    const float* by = reinterpret_cast<const float*>(k);
    for (std::int64_t i = 0; i < 2 * count; i += 2) {
        const float re = to[i] * by[i] - to[i + 1] * by[i + 1];
        const float im = to[i] * by[i + 1] + to[i + 1] * by[i];
        to[i] = re;
        to[i + 1] = im;
    }
}

/// Columns of both spectra, a block at a time: forward, product, inverse. The kernel's full spectrum never
/// stands in memory. Row y of the image's spectra then belongs to row y of the result.
void convolveColumns(const RowSpectra& image, const RowSpectra& kernel, std::int64_t length)
{
    const ColumnFft fft(length);
    const std::int64_t firstRow = (kernel.rows() - 1) / 2;
    parallelBands(image.blocks(), length * kFftColumns, [&](std::int64_t start, std::int64_t end) {
        const FftBuffer a(2 * length * kFftColumns), k(2 * length * kFftColumns);
        for (std::int64_t i = start; i < end; ++i) {
            image.gather(i, length, a.complex());
            kernel.gather(i, length, k.complex());
            fft.forward(a.complex());
            fft.forward(k.complex());
            multiplyInto(a.complex(), k.complex(), length * kFftColumns);
            fft.inverse(a.complex());
            image.scatter(i, a.complex() + firstRow * kFftColumns);
        }
    });
}

/// The result goes over `out`, laid out as the source, which may lie there too.
void convolve(const Samples& image, float* out, const Plane& kernel, FFTConvolve::Workspace& workspace)
{
    const auto [width, height] = image.size;
    const std::int64_t padW = paddedSide(width, kernel.width);
    const std::int64_t padH = paddedSide(height, kernel.height);
    const RowSpectra spectra(image, padW, workspace.image);
    const RowSpectra kernelSpectra({kernel.data.data(), kernel.size(), 1}, padW, workspace.kernel);
    convolveColumns(spectra, kernelSpectra, padH);

    const std::int64_t firstColumn = (kernel.width - 1) / 2;
    const float scale = static_cast<float>(1.0 / (static_cast<double>(padW) * static_cast<double>(padH)));
    const RowFft fft(padW);
    const std::int64_t step = image.step, columns = width;
    parallelBands(height, padW, [&](std::int64_t start, std::int64_t end) {
        const FftBuffer padded(padW);
        for (std::int64_t y = start; y < end; ++y) {
            fft.inverse(spectra.row(y), padded.real());
            const float* from = padded.real() + firstColumn;
            float* to = out + y * columns * step;
            for (std::int64_t x = 0; x < columns; ++x) to[x * step] = from[x] * scale;
        }
    });
}

/// Refuses what can't be convolved and says the platform's reason with the picture.
void checkedConvolve(const Samples& image, float* out, const Plane& kernel, FFTConvolve::Workspace& workspace)
{
    if (kernel.count() == 0) throw TamloError::invalidArgument("a convolution kernel of no samples");
    if (image.size.width * image.size.height == 0) return;
    try {
        convolve(image, out, kernel, workspace);
    } catch (const platform::PlatformError& error) {
        throw TamloError::io("a picture of " + std::to_string(image.size.width) + " × " +
                             std::to_string(image.size.height) + " could not be convolved: " + error.what());
    }
}

} // namespace

Plane FFTConvolve::same(Plane image, const Plane& kernel)
{
    Workspace workspace;
    const Plane source = image.data.isUnique() ? Plane() : image;
    if (source.count() > 0) image = Plane(image.width, image.height);
    float* out = image.mutableData();
    const float* from = source.count() > 0 ? source.data.data() : out;
    checkedConvolve({from, image.size(), 1}, out, kernel, workspace);
    return image;
}

void FFTConvolve::sameChannel(RGBImage& image, int c, const Plane& kernel, Workspace& workspace)
{
    float* channel = image.mutableData() + c;
    checkedConvolve({channel, image.size(), 3}, channel, kernel, workspace);
}

} // namespace tamlo
