#include "core/io/encoded_decode.h"

#include "core/image/bands.h"
#include "core/image/orient.h"
#include "core/image/tamlo_error.h"
#include "core/image/zcolor.h"
#include "core/io/decode_rules.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/platform_error.h"

#include <array>

namespace tamlo::ImageLoader {
namespace {

using LinearTable = std::array<float, 256>;

LinearTable linearTable()
{
    LinearTable table;
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = ZColor::srgbToLinear(static_cast<float>(i) / 255.0f);
    return table;
}

void bytes_to_linear(const std::uint8_t* rgba, const LinearTable& table, float* to, std::int64_t pixels)
{
    for (std::int64_t i = 0; i < pixels; ++i, rgba += 4, to += 3)
        for (int c = 0; c < 3; ++c) to[c] = table[rgba[c]];
}

TamloError cannotDecode(const std::filesystem::path& path, const platform::PlatformError& error)
{
    return TamloError::io(
        T("io.err.decode", {{"file", path.string()}, {"error", ErrorWords::reason(error)}}));
}

std::vector<std::string> notesOf(const std::filesystem::path& path, const platform::EncodedImage& image)
{
    std::vector<std::string> notes;
    const std::string file = path.string();
    if (image.pictures > 1) notes.push_back(T("io.note.pictures", {{"file", file}}));
    if (image.notNumbers > 0)
        notes.push_back(T("io.note.notNumbers", {{"file", file}, {"n", image.notNumbers}}));
    if (!image.damage.empty())
        notes.push_back(T("io.note.damaged", {{"file", file}, {"error", ErrorWords::reason(image.damage)}}));
    return notes;
}

} // namespace

void EncodedDecode::linearize(std::span<float> into) const
{
    if (width < 1 || height < 1 || into.size() < static_cast<std::size_t>(width * height * 3))
        throw TamloError::io(T("io.err.emptyImage"));
    const LinearTable table = linearTable();
    const std::uint8_t* from = rgba.bytes(static_cast<std::size_t>(width * height * 4)).data();
    parallelBands(height, width, [&](std::int64_t start, std::int64_t end) {
        bytes_to_linear(from + start * width * 4, table, into.data() + start * width * 3,
                        (end - start) * width);
    });
}

EncodedDecode decodeEncoded(const std::filesystem::path& path, Damage damage)
{
    EncodedDecode decode;
    const auto memory = [&](std::int64_t width, std::int64_t height) {
        decode.rgba = PageBuffer(static_cast<std::size_t>(width * height * 4));
        return decode.rgba.bytes(decode.rgba.byteCount()).data();
    };
    try {
        const platform::EncodedImage image = platform::drawEncodedImage(path.string(), {memory, damage});
        const ExifTurn turn = exifOrient(image.exifOrientation);
        decode.width = image.width;
        decode.height = image.height;
        decode.rotate = turn.turns * 90;
        decode.mirror = turn.mirror;
        decode.notes = notesOf(path, image);
    } catch (const platform::PlatformError& error) {
        throw cannotDecode(path, error);
    }
    return decode;
}

Size encodedSize(const std::filesystem::path& path)
{
    try {
        const platform::EncodedImage image = platform::readEncodedHead(path.string());
        const bool onItsSide = exifOrient(image.exifOrientation).turns % 2 != 0;
        return onItsSide ? Size{image.height, image.width} : Size{image.width, image.height};
    } catch (const platform::PlatformError& error) {
        throw cannotDecode(path, error);
    }
}

RGBImage loadEncodedAsLinear(const std::filesystem::path& path, const Reading& reading)
{
    EncodedDecode decode = decodeEncoded(path, reading.damage);
    if (reading.onNote)
        for (const std::string& note : decode.notes) reading.onNote(note);
    RGBImage image(decode.width, decode.height);
    decode.linearize({image.mutableData(), image.data.size()});
    decode.rgba = {}; // turning takes a second image
    return Orientation::orientImage(std::move(image), decode.rotate, decode.mirror);
}

} // namespace tamlo::ImageLoader
