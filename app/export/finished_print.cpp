#include "app/export/finished_print.h"

#include "core/io/image_writer.h"
#include "core/process/card/card_relief.h"
#include "core/process/card/instant_card.h"
#include "platform/unicode.h"

#include <filesystem>

namespace tamlo::FinishedPrint {
namespace {

std::optional<Plane> outlineOf(const RGBImage& image, const Made& made)
{
    return Pipeline::cardCutOut(made.choices.film, made.choices.options, made.picture, image.size());
}

} // namespace

void save(RGBImage image, const Made& made, const std::string& path, int quality,
          const std::optional<OutputMetadata>& metadata)
{
    const auto outline = outlineOf(image, made);
    if (!outline) return ImageWriter::save(image, path, quality, metadata);
    if (platform::lowerCased(std::filesystem::path(path).extension().string()) != ".png")
        return ImageWriter::save(CardRelief::flatten(std::move(image), *outline), path, quality, metadata);
    image = CardRelief::unmixed(std::move(image), *outline);
    ImageWriter::save(ImageWriter::readyImage(image, &*outline), path, quality, metadata);
}

RGBImage opaque(RGBImage image, const Made& made)
{
    const auto outline = outlineOf(image, made);
    return outline ? CardRelief::flatten(std::move(image), *outline) : image;
}

} // namespace tamlo::FinishedPrint
