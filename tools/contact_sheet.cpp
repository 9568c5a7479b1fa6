// Draws photographs before and after: a row each, the picture as it was read on the left, developed beside
// it.
//   contact_sheet SHEET.png PHOTO... [options of tamlo develop] [+ options]...
// Each + adds a column with its options on top of the first ones.
// --long is the long side of each picture on the sheet, 640 when it is not given.
// Status: 0, 1 when a picture could not be developed, 2 for a wrong command line.
#include "app/preview/source_decode.h"
#include "cli/arguments.h"
#include "cli/develop_choices.h"
#include "cli/usage_error.h"
#include "core/image/random.h"
#include "core/image/source_exposure.h"
#include "core/io/image_loader.h"
#include "core/io/image_writer.h"
#include "core/pipeline/auto_print.h"

#include <algorithm>
#include <iostream>

namespace {

using namespace tamlo;

constexpr std::int64_t kMarginPx = 16;
constexpr std::int64_t kDefaultLongPx = 640;

using Row = std::vector<RGBImage>;

struct Column {
    cli::DevelopChoices choices;
    bool autoPrint = false;
};

struct Source {
    RGBImage shown; ///< as it was read
    DisplayLights::Map lights;
};

Source source(const std::filesystem::path& photo, const cli::DevelopChoices& choices, std::int64_t longPx)
{
    const RenderOptions& options = choices.render.options;
    RGBImage image = ImageLoader::loadLinear(photo, ImageLoader::decodeWBMode(options.wbMode),
                                             SourceExposure::fromKey(options.srcExposure), longPx);
    DisplayLights::Map lights;
    if (!ImageLoader::isRAW(photo)) lights = SourceDecode::lights(image);
    return {resized(std::move(image), longPx), std::move(lights)};
}

RGBImage develop(const Source& source, const std::filesystem::path& photo, const Column& column,
                 std::int64_t longPx)
{
    const cli::DevelopChoices& choices = column.choices;
    RenderChoices render = choices.render;
    if (!choices.seedIsGiven) render.options.seed = FrameSeed::crc32(photo.filename().string());
    RGBImage lit = DisplayLights::restore(source.shown, source.lights, render.options.srcLights);
    if (column.autoPrint) {
        const Pipeline::AutoPrint print = Pipeline::autoPrint(lit, render, choices.asked);
        render.options.printEv = print.printEv;
        render.options.grade = print.grade;
        std::cerr << "  print_ev " << print.printEv << ", grade " << print.grade << ": black "
                  << print.before.black << " to " << print.after.black << ", median " << print.before.median
                  << " to " << print.after.median << ", white " << print.before.white << " to "
                  << print.after.white << ", clipped " << print.before.clipped << " to "
                  << print.after.clipped << '\n';
    }
    return resized(CPUBackend().process(std::move(lit), render), longPx);
}

void paste(RGBImage& sheet, const RGBImage& picture, std::int64_t left, std::int64_t top)
{
    float* to = sheet.mutableData();
    for (std::int64_t y = 0; y < picture.height; ++y)
        std::copy_n(picture.row(y), picture.width * 3, to + ((top + y) * sheet.width + left) * 3);
}

std::int64_t heightOf(const Row& row)
{
    std::int64_t heightPx = 0;
    for (const RGBImage& picture : row) heightPx = std::max(heightPx, picture.height);
    return heightPx;
}

RGBImage arrange(const std::vector<Row>& rows)
{
    std::int64_t columnPx = 0, heightPx = kMarginPx;
    for (const Row& row : rows) {
        for (const RGBImage& picture : row) columnPx = std::max(columnPx, picture.width);
        heightPx += heightOf(row) + kMarginPx;
    }
    const auto columns = static_cast<std::int64_t>(rows.front().size());
    RGBImage sheet(columns * (columnPx + kMarginPx) + kMarginPx, heightPx, Vec3f{1.0f, 1.0f, 1.0f});
    std::int64_t top = kMarginPx;
    for (const Row& row : rows) {
        std::int64_t left = kMarginPx;
        for (const RGBImage& picture : row) {
            paste(sheet, picture, left + (columnPx - picture.width) / 2, top);
            left += columnPx + kMarginPx;
        }
        top += heightOf(row) + kMarginPx;
    }
    return sheet;
}

/// The command line of each column: the first one's words, then those behind its +.
std::vector<cli::DevelopArguments> columnsOf(const std::vector<std::string>& words)
{
    std::vector<std::vector<std::string>> lines{{"develop"}};
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "+")
            lines.push_back(lines.front());
        else
            lines.back().push_back(words[i]);
    }
    std::vector<cli::DevelopArguments> columns;
    for (const auto& line : lines) {
        const cli::Command command = cli::parseArguments(line);
        const auto* arguments = std::get_if<cli::DevelopArguments>(&command);
        if (arguments == nullptr)
            throw cli::UsageError("contact_sheet takes pictures and options of tamlo develop");
        columns.push_back(*arguments);
    }
    return columns;
}

int run(const std::vector<std::string>& words)
{
    if (words.size() < 2)
        throw cli::UsageError(
            "usage: contact_sheet SHEET.png PHOTO... [options of tamlo develop] [+ options]...");
    const std::vector<cli::DevelopArguments> columns = columnsOf(words);
    std::vector<Column> choices;
    for (const auto& column : columns)
        choices.push_back({cli::resolveChoices(column, ProfileStore::shared()), column.autoPrint});
    const std::int64_t longPx = columns.front().longPx.value_or(kDefaultLongPx);
    std::vector<Row> rows;
    for (const auto& photo : columns.front().inputs) {
        std::cerr << photo.string() << '\n';
        const Source before = source(photo, choices.front().choices, longPx);
        Row row{before.shown};
        for (const Column& choice : choices) row.push_back(develop(before, photo, choice, longPx));
        rows.push_back(std::move(row));
    }
    ImageWriter::save(arrange(rows), words[0], columns.front().quality, std::nullopt);
    std::cout << words[0] << '\n';
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run({argv + 1, argv + argc});
    } catch (const cli::UsageError& error) {
        std::cerr << "contact_sheet: " << error.what() << '\n';
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "contact_sheet: " << error.what() << '\n';
        return 1;
    }
}
