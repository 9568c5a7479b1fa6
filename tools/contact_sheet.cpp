// Draws photographs before and after: a row each, the picture as it was read on the left, developed on the
// right.
//   contact_sheet SHEET.png PHOTO... [options of tamlo develop]
// --long is the long side of each picture on the sheet, 640 when it is not given.
// Status: 0, 1 when a picture could not be developed, 2 for a wrong command line.
#include "cli/arguments.h"
#include "cli/develop_choices.h"
#include "cli/usage_error.h"
#include "core/film/source_light.h"
#include "core/image/random.h"
#include "core/io/image_loader.h"
#include "core/io/image_writer.h"

#include <algorithm>
#include <iostream>

namespace {

using namespace tamlo;

constexpr std::int64_t kMarginPx = 16;
constexpr std::int64_t kDefaultLongPx = 640;

struct Pair {
    RGBImage before, after;
};

Pair develop(const std::filesystem::path& photo, const cli::DevelopChoices& choices, std::int64_t longPx)
{
    RenderChoices render = choices.render;
    if (!choices.seedIsGiven) render.options.seed = FrameSeed::crc32(photo.filename().string());
    RGBImage before =
        resized(ImageLoader::loadLinear(photo, ImageLoader::decodeWBMode(render.options.wbMode),
                                        SourceExposure::fromKey(render.options.srcExposure), longPx),
                longPx);
    RGBImage after = resized(CPUBackend().process(before, render), longPx);
    return {std::move(before), std::move(after)};
}

void paste(RGBImage& sheet, const RGBImage& picture, std::int64_t left, std::int64_t top)
{
    float* to = sheet.mutableData();
    for (std::int64_t y = 0; y < picture.height; ++y)
        std::copy_n(picture.row(y), picture.width * 3, to + ((top + y) * sheet.width + left) * 3);
}

RGBImage arrange(const std::vector<Pair>& pairs)
{
    std::int64_t columnPx = 0;
    std::int64_t heightPx = kMarginPx;
    for (const Pair& pair : pairs) {
        columnPx = std::max({columnPx, pair.before.width, pair.after.width});
        heightPx += std::max(pair.before.height, pair.after.height) + kMarginPx;
    }
    RGBImage sheet(2 * columnPx + 3 * kMarginPx, heightPx, Vec3f{1.0f, 1.0f, 1.0f});
    std::int64_t top = kMarginPx;
    for (const Pair& pair : pairs) {
        paste(sheet, pair.before, kMarginPx + (columnPx - pair.before.width) / 2, top);
        paste(sheet, pair.after, 2 * kMarginPx + columnPx + (columnPx - pair.after.width) / 2, top);
        top += std::max(pair.before.height, pair.after.height) + kMarginPx;
    }
    return sheet;
}

int run(const std::vector<std::string>& words)
{
    if (words.size() < 2)
        throw cli::UsageError("usage: contact_sheet SHEET.png PHOTO... [options of tamlo develop]");
    std::vector<std::string> line{"develop"};
    line.insert(line.end(), words.begin() + 1, words.end());
    const cli::Command command = cli::parseArguments(line);
    const auto* arguments = std::get_if<cli::DevelopArguments>(&command);
    if (arguments == nullptr)
        throw cli::UsageError("contact_sheet takes pictures and options of tamlo develop");

    const cli::DevelopChoices choices = cli::resolveChoices(*arguments, ProfileStore::shared());
    std::vector<Pair> pairs;
    for (const auto& photo : arguments->inputs) {
        std::cerr << photo.string() << '\n';
        pairs.push_back(develop(photo, choices, arguments->longPx.value_or(kDefaultLongPx)));
    }
    ImageWriter::save(arrange(pairs), words[0], arguments->quality, std::nullopt);
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
