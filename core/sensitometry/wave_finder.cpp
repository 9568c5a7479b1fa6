#include "core/sensitometry/wave_finder.h"

#include "platform/fft.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace tamlo {
namespace {

using Sensitometry::Wave;
using Complex = std::complex<double>;

constexpr double kLeastCycles = 3.0;

/// A picture without its mean under a Hann window, so that a wave that its edges cut does not leak.
struct Windowed {
    std::int64_t width = 0, height = 0;
    std::vector<float> samples;
    double power = 0.0; ///< sum of squares
};

std::vector<double> hann(std::int64_t n)
{
    std::vector<double> out;
    for (std::int64_t i = 0; i < n; ++i)
        out.push_back(0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * (static_cast<double>(i) + 0.5) /
                                           static_cast<double>(n)));
    return out;
}

Windowed windowed(const Plane& picture)
{
    Windowed out{picture.width, picture.height, {}, 0.0};
    const std::vector<double> across = hann(out.width), down = hann(out.height);
    const double mean = picture.mean();
    for (std::int64_t y = 0; y < out.height; ++y)
        for (std::int64_t x = 0; x < out.width; ++x) {
            const double v = (picture.at(x, y) - mean) * across[static_cast<std::size_t>(x)] *
                             down[static_cast<std::size_t>(y)];
            out.samples.push_back(static_cast<float>(v));
            out.power += v * v;
        }
    return out;
}

/// The picture's part at a frequency.
Complex partAt(const Windowed& picture, double fx, double fy)
{
    const auto turns = [](double f, std::int64_t n) {
        std::vector<Complex> out;
        for (std::int64_t i = 0; i < n; ++i)
            out.push_back(std::polar(1.0, -2.0 * std::numbers::pi * f * static_cast<double>(i)));
        return out;
    };
    const std::vector<Complex> across = turns(fx, picture.width), down = turns(fy, picture.height);
    Complex sum{};
    for (std::int64_t y = 0; y < picture.height; ++y) {
        double re = 0.0, im = 0.0;
        const float* row = picture.samples.data() + y * picture.width;
        for (std::int64_t x = 0; x < picture.width; ++x) {
            re += row[x] * across[static_cast<std::size_t>(x)].real();
            im += row[x] * across[static_cast<std::size_t>(x)].imag();
        }
        sum += Complex(re, im) * down[static_cast<std::size_t>(y)];
    }
    return sum;
}

/// The strongest whole-numbered frequency of the half plane fx >= 0, in cycles a picture.
std::optional<std::pair<std::int64_t, std::int64_t>> strongestBin(const Windowed& picture)
{
    const std::int64_t w = picture.width, h = picture.height, bins = w / 2 + 1;
    const std::int64_t blocks = (bins + platform::kFftColumns - 1) / platform::kFftColumns;
    platform::FftBuffer row(w), spectrum(2 * bins), columns(2 * blocks * platform::kFftColumns * h);
    const platform::RowFft alongX(w);
    const platform::ColumnFft alongY(h);
    for (std::int64_t y = 0; y < h; ++y) {
        std::copy_n(picture.samples.data() + y * w, w, row.real());
        alongX.forward(row.real(), spectrum.complex());
        for (std::int64_t i = 0; i < bins; ++i)
            columns.complex()[(i / platform::kFftColumns * h + y) * platform::kFftColumns +
                              i % platform::kFftColumns] = spectrum.complex()[i];
    }
    std::optional<std::pair<std::int64_t, std::int64_t>> found;
    double most = 0.0;
    for (std::int64_t block = 0; block < blocks; ++block) {
        std::complex<float>* at = columns.complex() + block * h * platform::kFftColumns;
        alongY.forward(at);
        for (std::int64_t i = 0; i < h * platform::kFftColumns; ++i) {
            const std::int64_t fx = block * platform::kFftColumns + i % platform::kFftColumns;
            std::int64_t fy = i / platform::kFftColumns;
            if (fy > h / 2) fy -= h;
            const double power = std::norm(Complex(at[i]));
            if (fx >= bins || std::hypot(fx, fy) < kLeastCycles || power <= most) continue;
            most = power;
            found = {fx, fy};
        }
    }
    return found;
}

} // namespace

std::optional<Wave> Sensitometry::strongestWave(const Plane& plane)
{
    const Windowed picture = windowed(plane);
    constexpr double kEven = 1e-12; // a sample's square, of a picture without a wave
    if (picture.power < kEven * static_cast<double>(plane.count())) return std::nullopt;
    const auto bin = strongestBin(picture);
    if (!bin) return std::nullopt;
    const double w = static_cast<double>(plane.width), h = static_cast<double>(plane.height);
    double fx = static_cast<double>(bin->first) / w, fy = static_cast<double>(bin->second) / h;
    double power = std::norm(partAt(picture, fx, fy));
    for (double step = 0.25; step > 0.002;) { // cycles a picture
        bool moved = false;
        for (const auto& [dx, dy] : {std::pair{step, 0.0}, {-step, 0.0}, {0.0, step}, {0.0, -step}}) {
            const double there = std::norm(partAt(picture, fx + dx / w, fy + dy / h));
            if (there <= power) continue;
            power = there;
            fx += dx / w;
            fy += dy / h;
            moved = true;
        }
        if (!moved) step /= 2.0;
    }
    // A windowed wave of amplitude A peaks at A w h / 8 and has the power A² (3/8)² w h / 2.
    const double amplitude = std::sqrt(power) * 8.0 / (w * h);
    return Wave{fx, fy, amplitude * amplitude * (9.0 / 128.0) * w * h / picture.power};
}

} // namespace tamlo
