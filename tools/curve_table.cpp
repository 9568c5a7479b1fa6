// Prints the curves of a colour film and a paper as the program itself computes them, for plot_curves.py
// and for a spreadsheet: comma-separated columns over decimal log exposure from grey.
//   curve_table [FILM [PAPER]]
// film_*: density of each layer. paper: density of the paper over the log of the light on it. print_*: the
// finished positive (display-linear) of a neutral scene, after couplers, paper and look, without grain and
// halation.
#include "core/film/emulsion/development.h"
#include "core/film/print/color_negative.h"
#include "core/film/print/print.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/options/film_format.h"

#include <cmath>
#include <iostream>

namespace {

using namespace tamlo;

constexpr double kFromLog = -3.0;
constexpr double kToLog = 3.0;
constexpr std::int64_t kSteps = 301;
constexpr double kPxUm = 1e4; // steps so far apart that neither softness nor edge effects reach across

double logExposureAt(std::int64_t step)
{
    return kFromLog + (kToLog - kFromLog) * static_cast<double>(step) / static_cast<double>(kSteps - 1);
}

RGBImage neutralWedge()
{
    RGBImage wedge(kSteps, 1);
    float* to = wedge.mutableData();
    for (std::int64_t i = 0; i < kSteps * 3; ++i)
        to[i] = static_cast<float>(0.18 * std::pow(10.0, logExposureAt(i / 3)));
    return wedge;
}

void printTable(const std::string& filmName, const std::string& paperName)
{
    const FilmProfile film = ProfileStore::shared().film(filmName);
    const PaperProfile paper = ProfileStore::shared().paper(paperName);
    RenderOptions options = optionsForFilm(RenderOptions(), film, {});
    options.grainMult = 0;
    options.halationMult = 0;
    const DevelopedFilm developed = applyFilmStateAndDevelopment(film, options);
    const Film::ColorNegative negative = Film::colorNegativeDb(neutralWedge(), developed, options, kPxUm);
    const RGBImage print = Film::renderColor(neutralWedge(), developed, paper, options, kPxUm);
    const HDCurve paperCurve =
        Print::paperCurve(paper, options.grade, options.printBlack, options.printWhite);

    std::cout << "log_exposure,film_r,film_g,film_b,paper,print_r,print_g,print_b\n";
    for (std::int64_t step = 0; step < kSteps; ++step) {
        const auto x = static_cast<float>(logExposureAt(step));
        std::cout << x;
        for (const HDCurve& curve : negative.curves) std::cout << ',' << curve.density(x);
        std::cout << ',' << paperCurve.density(x);
        for (const float value : print.pixel(step, 0)) std::cout << ',' << value;
        std::cout << '\n';
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 3) {
        std::cerr << "usage: curve_table [FILM [PAPER]]\n";
        return 2;
    }
    try {
        printTable(argc > 1 ? argv[1] : "portra400", argc > 2 ? argv[2] : "color_ra4");
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "curve_table: " << error.what() << '\n';
        return 1;
    }
}
