#include "core/io/raw_colour.h"

#include "core/image/zcolor.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tamlo::ImageLoader {
namespace {

using Matrix3 = std::array<Vec3d, 3>;
using Matrix4x3 = std::array<Vec3d, 4>;
using Vec4d = std::array<double, 4>;

// IEC 61966-2-1, XYZ of D65 white with Y = 1.
constexpr Matrix3 kXYZToSRGB{{{3.2404542, -1.5371385, -0.4985314},
                              {-0.9692660, 1.8760108, 0.0415560},
                              {0.0556434, -0.2040259, 1.0572252}}};
// Bradford cone response (Lam 1985).
constexpr Matrix3 kBradford{
    {{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};

Vec3d times(const Matrix3& m, const Vec3d& v)
{
    Vec3d out{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) out[i] += m[i][j] * v[j];
    return out;
}

Matrix3 product(const Matrix3& a, const Matrix3& b)
{
    Matrix3 out{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k) out[i][j] += a[i][k] * b[k][j];
    return out;
}

std::optional<Matrix3> inverse(const Matrix3& m)
{
    const auto minor = [&](std::size_t r, std::size_t c) {
        const std::size_t r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
        return m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
    };
    const double det = m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
    if (!std::isfinite(det) || std::abs(det) < 1e-12) return std::nullopt;
    Matrix3 out{};
    for (std::size_t r = 0; r < 3; ++r)
        for (std::size_t c = 0; c < 3; ++c) out[r][c] = minor(c, r) / det;
    return out;
}

Matrix3 xyzFromSRGB()
{
    return *inverse(kXYZToSRGB);
}

/// Takes XYZ under `white` to XYZ under D65, both with Y = 1.
Matrix3 adaptToD65(const Vec3d& white)
{
    const Vec3d from = times(kBradford, white);
    const Vec3d to = times(kBradford, times(xyzFromSRGB(), {1.0, 1.0, 1.0}));
    Matrix3 scaled = kBradford;
    for (std::size_t i = 0; i < 3; ++i)
        for (double& v : scaled[i]) v *= to[i] / from[i];
    return product(*inverse(kBradford), scaled);
}

/// The camera's matrix under light of `kelvin`: interpolated over mireds between two illuminants and held
/// outside of them (DNG 1.4, "Mapping Camera Color Space to CIE XYZ").
Matrix4x3 matrixAt(const std::vector<platform::RawMatrix>& matrices, double kelvin)
{
    const platform::RawMatrix& a = matrices.front();
    const platform::RawMatrix& b = matrices.back();
    const double miredA = 1e6 / a.illuminantK, miredB = 1e6 / b.illuminantK;
    if (std::abs(miredA - miredB) < 1e-9) return a.xyzToCamera;
    const double share = std::clamp((1e6 / kelvin - miredA) / (miredB - miredA), 0.0, 1.0);
    Matrix4x3 out{};
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            out[i][j] = a.xyzToCamera[i][j] + share * (b.xyzToCamera[i][j] - a.xyzToCamera[i][j]);
    return out;
}

/// Least-squares inverse of a camera's matrix: XYZ from its channels.
std::optional<std::array<Vec4d, 3>> xyzFromCamera(const Matrix4x3& m, std::size_t channels)
{
    Matrix3 normal{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t c = 0; c < channels; ++c) normal[i][j] += m[c][i] * m[c][j];
    const std::optional<Matrix3> inverted = inverse(normal);
    if (!inverted) return std::nullopt;
    std::array<Vec4d, 3> out{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t c = 0; c < channels; ++c)
            for (std::size_t k = 0; k < 3; ++k) out[i][c] += (*inverted)[i][k] * m[c][k];
    return out;
}

/// Correlated colour temperature (McCamy 1992), good to a few kelvin where cameras balance.
double correlatedKelvin(const Vec3d& xyz)
{
    const double sum = xyz[0] + xyz[1] + xyz[2];
    const double n = (xyz[0] / sum - 0.3320) / (0.1858 - xyz[1] / sum);
    const double kelvin = ((449.0 * n + 3525.0) * n + 6823.3) * n + 5520.33;
    return std::isfinite(kelvin) ? std::clamp(kelvin, 1667.0, 25000.0) : 5000.0;
}

struct White {
    Vec3d xyz{};    // Y = 1
    Vec4d camera{}; // the camera's answer to it
    Matrix4x3 xyzToCamera{};
};

White filmWhite(const platform::RawColour& colour, std::size_t channels)
{
    White white;
    white.xyz = times(xyzFromSRGB(), ZColor::kelvinToLinearSRGBWhite(kFilmWhiteK));
    white.xyzToCamera = matrixAt(colour.matrices, kFilmWhiteK);
    for (std::size_t c = 0; c < channels; ++c)
        for (std::size_t j = 0; j < 3; ++j) white.camera[c] += white.xyzToCamera[c][j] * white.xyz[j];
    return white;
}

/// The matrix depends on the white and the white on the matrix; a few rounds settle them.
std::optional<White> asShotWhite(const platform::RawColour& colour, std::size_t channels)
{
    White white;
    for (std::size_t c = 0; c < channels; ++c) white.camera[c] = 1.0 / colour.asShotGains[c];
    double kelvin = 5000.0;
    for (int round = 0; round < 30; ++round) {
        white.xyzToCamera = matrixAt(colour.matrices, kelvin);
        const auto toXYZ = xyzFromCamera(white.xyzToCamera, channels);
        if (!toXYZ) return std::nullopt;
        white.xyz = {};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t c = 0; c < channels; ++c) white.xyz[i] += (*toXYZ)[i][c] * white.camera[c];
        if (!(white.xyz[1] > 0.0)) return std::nullopt;
        const double luminance = white.xyz[1];
        for (double& v : white.camera) v /= luminance;
        for (double& v : white.xyz) v /= luminance;
        const double next = correlatedKelvin(white.xyz);
        if (std::abs(next - kelvin) < 0.5) break;
        kelvin = next;
    }
    return white;
}

bool usable(const Vec4d& values, std::size_t channels)
{
    return std::all_of(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(channels),
                       [](double v) { return std::isfinite(v) && v > 1e-4 && v < 1e4; });
}

/// Scales the gains so that the smallest is 1 and the matrix so that the engine's level comes out right.
RawColourPlan finished(Vec4d gains, const std::array<Vec4d, 3>& rows, std::size_t channels)
{
    const auto [low, high] =
        std::minmax_element(gains.begin(), gains.begin() + static_cast<std::ptrdiff_t>(channels));
    const double least = *low, ratio = *high / *low;
    RawColourPlan plan;
    for (std::size_t c = 0; c < 4; ++c) plan.gains[c] = (c < channels ? gains[c] : gains[1]) / least;
    for (std::size_t r = 0; r < 3; ++r) {
        double sum = 0.0;
        for (std::size_t c = 0; c < channels; ++c) sum += rows[r][c];
        for (std::size_t c = 0; c < channels; ++c)
            plan.toLinear.matrix[r][c] = static_cast<float>(rows[r][c] / sum * ratio / 65535.0);
    }
    return plan;
}

RawColourPlan planWithoutMatrix(const platform::RawColour& colour, WBMode wbMode, std::size_t channels)
{
    Vec4d gains{1.0, 1.0, 1.0, 1.0};
    const bool ownFirst = wbMode == WBMode::asShot;
    const Vec4d& first = ownFirst ? colour.asShotGains : colour.daylightGains;
    const Vec4d& second = ownFirst ? colour.daylightGains : colour.asShotGains;
    if (usable(first, channels))
        gains = first;
    else if (usable(second, channels))
        gains = second;
    std::array<Vec4d, 3> rows{{{1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 0.0, 0.0}, {0.0, 0.0, 1.0, 0.0}}};
    if (channels == 4) rows[1] = {0.0, 0.5, 0.0, 0.5};
    return finished(gains, rows, channels);
}

} // namespace

RawColourPlan planRawColour(const platform::RawColour& colour, WBMode wbMode)
{
    if (colour.channels < 3) { // a sensor without filters
        const Vec4d grey{1.0, 0.0, 0.0, 0.0};
        return finished({1.0, 1.0, 1.0, 1.0}, {grey, grey, grey}, 1);
    }
    const auto channels = static_cast<std::size_t>(colour.channels);
    if (colour.matrices.empty()) return planWithoutMatrix(colour, wbMode, channels);
    std::optional<White> white;
    if (wbMode == WBMode::asShot && usable(colour.asShotGains, channels))
        white = asShotWhite(colour, channels);
    if (!white) white = filmWhite(colour, channels);
    const auto toXYZ = xyzFromCamera(white->xyzToCamera, channels);
    if (!toXYZ || !usable(white->camera, channels)) return planWithoutMatrix(colour, wbMode, channels);

    const Matrix3 toSRGB = product(kXYZToSRGB, adaptToD65(white->xyz));
    Vec4d gains{};
    std::array<Vec4d, 3> rows{};
    for (std::size_t c = 0; c < channels; ++c) {
        gains[c] = 1.0 / white->camera[c];
        for (std::size_t r = 0; r < 3; ++r)
            for (std::size_t k = 0; k < 3; ++k)
                rows[r][c] += toSRGB[r][k] * (*toXYZ)[k][c] * white->camera[c];
    }
    return finished(gains, rows, channels);
}

Size RawSamples::uprightSize() const
{
    return flip & 4 ? Size{height, width} : Size{width, height};
}

void raw_to_linear(const RawSamples& from, const RawToLinear& params, float* linear, std::int64_t start,
                   std::int64_t end) noexcept
{
    const auto m = params.matrix; // a copy: what `to` points at could be a matrix, for all the compiler knows
    const std::int64_t columns = from.uprightSize().width;
    const bool exchanged = from.flip & 4;
    // Sample of upright (row, column): a start and a step, both in stored pixels.
    const std::int64_t lastRow = from.height - 1, lastColumn = from.width - 1;
    const std::int64_t rowSign = from.flip & 2 ? -1 : 1, columnSign = from.flip & 1 ? -1 : 1;
    const std::int64_t row0 = from.flip & 2 ? lastRow : 0, column0 = from.flip & 1 ? lastColumn : 0;
    const std::int64_t step = exchanged ? rowSign * from.width : columnSign;
    for (std::int64_t y = start; y < end; ++y) {
        const std::int64_t first = exchanged ? row0 * from.width + column0 + columnSign * y
                                             : (row0 + rowSign * y) * from.width + column0;
        float* to = linear + y * columns * 3;
        std::int64_t at = first;
        for (std::int64_t x = 0; x < columns; ++x, at += step, to += 3) {
            const std::uint16_t* s = from.samples + at * 4;
            const float a = s[0], b = s[1], c = s[2], d = s[3];
            const float red = m[0][0] * a + m[0][1] * b + m[0][2] * c + m[0][3] * d;
            const float green = m[1][0] * a + m[1][1] * b + m[1][2] * c + m[1][3] * d;
            const float blue = m[2][0] * a + m[2][1] * b + m[2][2] * c + m[2][3] * d;
            to[0] = red > 0.0f ? red : 0.0f;
            to[1] = green > 0.0f ? green : 0.0f;
            to[2] = blue > 0.0f ? blue : 0.0f;
        }
    }
}

} // namespace tamlo::ImageLoader
