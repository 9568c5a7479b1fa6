#include "cli/plan.h"

#include "cli/columns.h"
#include "cli/develop_choices.h"
#include "cli/input_files.h"
#include "cli/messages.h"
#include "cli/picture_choices.h"
#include "core/image/tamlo_error.h"
#include "core/io/image_loader.h"
#include "core/pipeline/output_plan.h"
#include "core/text/error_words.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <utility>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;
using Pipeline::OutputPlan;

OutputPlan planOne(const fs::path& input, const PlanArguments& arguments, const DevelopChoices& choices)
{
    checkInput(input);
    const PictureChoices one = choosePicture(choices, arguments, input);
    for (const std::string& note : one.notes) tellNote(note);
    const RenderChoices& render = one.render;
    OutputPlan plan =
        Pipeline::outputPlan(one.exposed, render.film, render.paper, render.options, arguments.scale);
    if (arguments.longPx) {
        const Size size = resizedSize(plan.size(), *arguments.longPx);
        plan.width = size.width;
        plan.height = size.height;
    }
    return plan;
}

/// Long and short side of the picture in a unit of which its long side has `longSide`, the wider one first.
std::array<double, 2> sides(const OutputPlan& plan, double longSide)
{
    const double w = static_cast<double>(plan.picture.width), h = static_cast<double>(plan.picture.height);
    return {longSide * w / std::max(w, h), longSide * h / std::max(w, h)};
}

double megapixels(const OutputPlan& plan)
{
    return static_cast<double>(plan.width * plan.height) / 1e6;
}

double coatMm(const OutputPlan& plan)
{
    return static_cast<double>(plan.coatPx) * plan.printPxUm / 1000.0;
}

nlohmann::ordered_json asJson(const fs::path& input, const OutputPlan& plan)
{
    return {{"input", input.string()},
            {"width", plan.width},
            {"height", plan.height},
            {"megapixels", megapixels(plan)},
            {"film_mm", sides(plan, plan.fmtUm / 1000.0)},
            {"film_um_per_px", plan.pxUm},
            {"print_cm", sides(plan, plan.printCm)},
            {"print_um_per_px", plan.printPxUm},
            {"mat_px", {plan.matPx, plan.matBottomPx}},
            {"table_px", plan.tablePx},
            {"grow", plan.raster.grow},
            {"cell_px", plan.raster.cell},
            {"coat_px", plan.coatPx},
            {"coat_mm", coatMm(plan)},
            {"supersample", plan.supersample},
            {"dots_drawn", plan.dotsDrawn},
            {"lines_drawn", plan.linesDrawn}};
}

/// With a fixed number of digits after the point.
std::string fixed(double value, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string asText(const fs::path& input, const OutputPlan& plan)
{
    const std::array<double, 2> film = sides(plan, plan.fmtUm / 1000.0);
    const std::array<double, 2> print = sides(plan, plan.printCm);
    std::vector<std::pair<std::string, std::string>> rows{
        {T("cli.plan.output"), Pipeline::sizeLabel(plan.size(), T("unit.mp"))},
        {T("cli.plan.film"),
         T("cli.plan.onFilm",
           {{"width", fixed(film[0], 1)}, {"height", fixed(film[1], 1)}, {"um", fixed(plan.pxUm, 2)}})},
        {T("cli.plan.print"), T("cli.plan.onPrint", {{"width", fixed(print[0], 1)},
                                                     {"height", fixed(print[1], 1)},
                                                     {"um", fixed(plan.printPxUm, 1)}})},
    };
    if (plan.coatPx > 0)
        rows.push_back({T("cli.plan.coat"), T("cli.plan.coatWidth", {{"mm", fixed(coatMm(plan), 1)}})});
    const auto cm = [&](std::int64_t px) { return fixed(static_cast<double>(px) * plan.printPxUm / 1e4, 1); };
    if (plan.matPx > 0)
        rows.push_back({T("cli.plan.mat"),
                        T("cli.plan.board", {{"side", cm(plan.matPx)}, {"bottom", cm(plan.matBottomPx)}})});
    if (plan.tablePx > 0)
        rows.push_back({T("cli.plan.table"), T("cli.plan.around", {{"side", cm(plan.tablePx)}})});
    if (plan.rasterNote) rows.push_back({T("cli.plan.press"), *plan.rasterNote});
    std::size_t width = 0;
    for (const auto& [name, value] : rows) width = std::max(width, columnsOf(name));
    std::string text = input.string() + "\n";
    for (const auto& [name, value] : rows) text += "  " + leftAligned(name, width + 2) + value + "\n";
    return text;
}

} // namespace

int plan(const PlanArguments& arguments, std::ostream& results)
{
    const DevelopChoices choices = resolveChoices(arguments, ProfileStore::shared());
    for (const std::string& note : choices.notes) tellNote(note);
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    std::vector<std::string> failures;
    for (const fs::path& input : expandedInputs(arguments.inputs)) {
        try {
            const OutputPlan one = planOne(input, arguments, choices);
            if (arguments.json)
                list.push_back(asJson(input, one));
            else
                results << asText(input, one);
        } catch (const TamloError& error) {
            failures.push_back(namingInput(input, ErrorWords::of(error)));
        } catch (const fs::filesystem_error& error) {
            failures.push_back(namingInput(input, ErrorWords::of(error)));
        }
    }
    if (arguments.json) results << list.dump(2) << std::endl;
    for (const std::string& failure : failures) tell(failure);
    return failures.empty() ? 0 : 1;
}

} // namespace tamlo::cli
