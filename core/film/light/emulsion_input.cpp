#include "core/film/light/emulsion_input.h"

#include "core/film/light/source_light_passes.h"
#include "core/image/render_profiler.h"
#include "core/image/zcolor.h"

#include <algorithm>
#include <cmath>

namespace tamlo {

double Film::filmIlluminantK(const FilmProfile& film, double otherwise)
{
    return film.balance ? film.balance->illuminantK.value_or(otherwise) : otherwise;
}

double Film::sceneIlluminantK(const FilmProfile& film, std::string_view wbMode)
{
    return wbMode == "custom" ? filmIlluminantK(film, sceneRefK) : sceneRefK;
}

std::optional<Vec3f> Film::balanceGains(const FilmProfile& film, double sceneK)
{
    const double filmK = filmIlluminantK(film, sceneK);
    if (std::abs(filmK - sceneK) < 1.0) return std::nullopt;
    const Vec3d scene = ZColor::kelvinToLinearSRGBWhite(sceneK);
    const Vec3d own = ZColor::kelvinToLinearSRGBWhite(filmK);
    const Vec3d w{scene[0] / own[0], scene[1] / own[1], scene[2] / own[2]};
    const double y = ZColor::luma[0] * w[0] + ZColor::luma[1] * w[1] + ZColor::luma[2] * w[2];
    return Vec3f{static_cast<float>(w[0] / y), static_cast<float>(w[1] / y), static_cast<float>(w[2] / y)};
}

std::optional<std::array<Vec3f, 3>> Film::sensitizationMatrix(const FilmProfile& film, bool datasheet)
{
    const auto& given = datasheet ? film.sensitizationDs : film.sensitization;
    const auto matrix = given ? asMatrix3(*given) : std::nullopt;
    if (!matrix) return std::nullopt;
    std::array<Vec3f, 3> rows{};
    bool identity = true;
    for (std::size_t i = 0; i < 3; ++i) {
        const Vec3d& row = (*matrix)[i];
        const double sum = std::max(row[0] + row[1] + row[2], 1e-9);
        for (std::size_t j = 0; j < 3; ++j) {
            const double v = row[j] / sum;
            identity = identity && std::abs(v - (i == j ? 1.0 : 0.0)) <= 1e-9;
            rows[i][j] = static_cast<float>(v);
        }
    }
    if (identity) return std::nullopt;
    return rows;
}

Film::IRCoefficients Film::irCoefficients(const IRProxy& ir)
{
    Vec3d w{0.55, 0.45, 0.0};
    if (ir.weights)
        for (std::size_t i = 0; i < std::min<std::size_t>(ir.weights->size(), 3); ++i)
            w[i] = (*ir.weights)[i];
    double sum = w[0] + w[1] + w[2];
    if (std::abs(sum) < 1e-12) sum = 1.0;
    IRCoefficients coefficients;
    for (std::size_t i = 0; i < 3; ++i) coefficients.weights[i] = static_cast<float>(w[i] / sum);
    coefficients.chlorophyll = static_cast<float>(ir.chlorophyll.value_or(1.6));
    return coefficients;
}

RGBImage Film::falseColorIR(RGBImage image, const IRProxy& ir)
{
    const IRCoefficients plan = irCoefficients(ir);
    false_color_ir(image, plan.weights, plan.chlorophyll);
    return image;
}

RGBImage Film::applyEmulsion(RGBImage image, const FilmProfile& film, bool interlayer,
                             std::string_view wbMode)
{
    const RenderProfiler::Scope booked("emulsion input", image.pixelCount());
    if (film.isBW()) return image;
    if (const auto gains = balanceGains(film, sceneIlluminantK(film, wbMode))) cast_clamp(image, *gains);
    if (film.irProxy) image = falseColorIR(std::move(image), *film.irProxy);
    if (const auto matrix = sensitizationMatrix(film, false)) sensitize(image, *matrix);
    if (interlayer)
        if (const auto matrix = sensitizationMatrix(film, true)) sensitize(image, *matrix);
    return image;
}

} // namespace tamlo
