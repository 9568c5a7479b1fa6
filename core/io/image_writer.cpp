#include "core/io/image_writer.h"

#include "core/image/tamlo_error.h"
#include "core/io/jpeg_encoder.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/atomic_file.h"
#include "platform/platform_error.h"
#include "platform/png_writer.h"
#include "platform/srgb_profile.h"
#include "platform/tiff_writer.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <new>

#include <nlohmann/json.hpp>

namespace tamlo::ImageWriter {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
enum class Format { jpeg, png, tiff, unknown };

/// Lowercase, without the dot.
std::string extensionOf(const std::string& path)
{
    std::string extension = fs::path(path).extension().string();
    if (!extension.empty()) extension.erase(0, 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

Format formatOf(const std::string& extension)
{
    if (extension == "jpg" || extension == "jpeg") return Format::jpeg;
    if (extension == "png") return Format::png;
    if (extension == "tif" || extension == "tiff") return Format::tiff;
    return Format::unknown;
}

void makeFolderOf(const std::string& path)
{
    const fs::path folder = fs::path(path).parent_path();
    if (folder.empty()) return;
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed)
        throw TamloError::io(T("io.err.createFolder", {{"folder", folder.string()},
                                                       {"error", ErrorWords::reason(failed.message())}}));
}

void checkSize(std::int64_t width, std::int64_t height, Format format)
{
    if (width < 1 || height < 1) throw TamloError::io(T("io.err.createImage"));
    if (format == Format::jpeg && std::max(width, height) > JPEGEncoder::kMaxSide)
        throw TamloError::unsupported(
            T("io.err.jpegSide", {{"limit", JPEGEncoder::kMaxSide}, {"width", width}, {"height", height}}));
}

/// How a picture is encoded, beside its pixels.
struct Encoding {
    Format format;
    int quality;
    std::optional<double> pixelsPerInch; ///< none that a file could not hold
};

/// The density of our encoder's JFIF segment (JFIF 1.02: units at byte 13, then two 16-bit densities), which
/// is what most programs look at before they look at EXIF.
void tellDensity(Bytes& jpeg, const std::optional<double>& pixelsPerInch)
{
    const double density = std::round(pixelsPerInch.value_or(0));
    if (density < 1 || density > 65'535) return;
    const auto steps = static_cast<unsigned>(density);
    const auto high = static_cast<std::uint8_t>(steps >> 8), low = static_cast<std::uint8_t>(steps & 0xFF);
    const std::uint8_t told[] = {1, high, low, high, low}; // 1: an inch
    std::copy(std::begin(told), std::end(told), jpeg.begin() + 13);
}

Bytes encodeJpeg(std::span<const std::uint8_t> rgb, std::int64_t width, std::int64_t height,
                 const Encoding& encoding)
{
    Bytes jpeg = JPEGEncoder::encode({rgb, width, height}, encoding.quality, platform::srgbProfile());
    tellDensity(jpeg, encoding.pixelsPerInch);
    return jpeg;
}

Bytes encodePicture(const RGBImage& image, const Encoding& encoding)
{
    if (encoding.format == Format::jpeg) {
        const PageBuffer rgb = encodeSRGB8RGB(image);
        return encodeJpeg(rgb.bytes(static_cast<std::size_t>(image.pixelCount() * 3)), image.width,
                          image.height, encoding);
    }
    const platform::PictureLayout layout{image.width, image.height, 3, platform::srgbProfile(),
                                         encoding.pixelsPerInch};
    if (encoding.format == Format::png)
        return platform::encodePng(layout,
                                   [&](std::int64_t start, std::int64_t rows, std::span<std::uint8_t> to) {
                                       encodeSRGB8Rows(image, start, rows, to);
                                   });
    return platform::encodeTiff16(layout,
                                  [&](std::int64_t start, std::int64_t rows, std::span<std::uint16_t> to) {
                                      encodeSRGB16Rows(image, start, rows, to);
                                  });
}

/// Rows of a ready image as a file carries them: R G B, or R G B and straight alpha.
void readyRows(const ReadyImage& image, std::int64_t start, std::int64_t rows, std::span<std::uint8_t> to)
{
    const bool opaque = image.alpha == ReadyImage::Alpha::skip;
    const std::uint8_t* from = image.rgba.data() + start * image.width * 4;
    std::uint8_t* out = to.data();
    for (std::int64_t i = 0; i < rows * image.width; ++i, from += 4) {
        const int alpha = from[3];
        for (int c = 0; c < 3; ++c) {
            const bool carried = image.alpha == ReadyImage::Alpha::premultiplied && alpha > 0;
            *out++ = carried ? static_cast<std::uint8_t>(std::min((from[c] * 255 + alpha / 2) / alpha, 255))
                             : from[c];
        }
        if (!opaque) *out++ = from[3];
    }
}

Bytes encodePicture(const ReadyImage& image, const Encoding& encoding)
{
    if (encoding.format == Format::jpeg) {
        const bool opaque = image.alpha == ReadyImage::Alpha::skip;
        return encodeJpeg(opaque ? rgbBytes(image) : rgbBytes(flattenOnWhite(image)), image.width,
                          image.height, encoding);
    }
    const platform::PictureLayout layout{image.width, image.height,
                                         image.alpha == ReadyImage::Alpha::skip ? 3 : 4,
                                         platform::srgbProfile(), encoding.pixelsPerInch};
    const auto rows = [&](std::int64_t start, std::int64_t count, std::span<std::uint8_t> to) {
        readyRows(image, start, count, to);
    };
    return encoding.format == Format::png ? platform::encodePng(layout, rows)
                                          : platform::encodeTiff8(layout, rows);
}

TamloError cannot(const char* key, const std::string& path, const platform::PlatformError& error)
{
    return TamloError::io(T(key, {{"file", path}, {"error", ErrorWords::reason(error)}}));
}

void writeFile(const std::string& path, std::span<const std::uint8_t> bytes)
{
    std::optional<platform::AtomicFile> file;
    try {
        file.emplace(path);
    } catch (const platform::PlatformError& error) {
        throw cannot("io.err.create", path, error);
    }
    try {
        file->write(bytes);
        file->commit();
    } catch (const platform::PlatformError& error) {
        throw cannot("io.err.write", path, error);
    }
}

template <typename Picture>
void saveAs(const Picture& picture, const std::string& path, int quality,
            const std::optional<OutputMetadata>& metadata, const char* badExtension)
{
    makeFolderOf(path);
    const std::string extension = extensionOf(path);
    const Format format = formatOf(extension);
    if (format == Format::unknown) throw TamloError::invalidArgument(T(badExtension, {{"ext", extension}}));
    checkSize(picture.width, picture.height, format);
    Bytes bytes;
    try {
        bytes = encodePicture(picture, {format, quality, metadata ? metadata->density() : std::nullopt});
    } catch (const platform::PlatformError& error) {
        throw cannot("io.err.write", path, error);
    } catch (const std::bad_alloc&) {
        throw TamloError::io(T("io.err.allocate", {{"n", picture.width * picture.height * 3}}));
    }
    if (metadata) bytes = attach(std::move(bytes), metadata->properties(), metadata->copyOptions());
    writeFile(path, bytes);
}

} // namespace

std::vector<std::uint8_t> attach(std::vector<std::uint8_t> file, const nlohmann::json& properties,
                                 const platform::MetadataCopy& copy)
{
    if (hasGPS(properties)) return file;
    try {
        return platform::withMetadata(file, copy);
    } catch (const platform::PlatformError&) {
        return file; // the picture is worth more than what it says about itself
    }
}

void save(const RGBImage& image, const std::string& path, int quality,
          const std::optional<OutputMetadata>& metadata)
{
    saveAs(image, path, quality, metadata, "io.err.extension");
}

void save(const ReadyImage& image, const std::string& path, int quality,
          const std::optional<OutputMetadata>& metadata)
{
    saveAs(image, path, quality, metadata, "io.err.readyExtension");
}

SocialCopy saveSocial(const RGBImage& image, const std::string& master, int quality,
                      const std::optional<OutputMetadata>& metadata,
                      const std::function<std::string(const std::string&)>& freeName)
{
    const fs::path folder = fs::path(master).parent_path();
    const std::string name = fs::path(master).stem().string() + "_social.jpg";
    SocialCopy copy{(folder / "social" / name).string(), false};
    try {
        save(image, copy.path, quality, metadata);
    } catch (const TamloError& error) {
        if (error.kind() == TamloError::Kind::cancelled) throw;
        const std::string beside = (folder / name).string();
        copy = {freeName ? freeName(beside) : beside, true};
        save(image, copy.path, quality, metadata);
    }
    return copy;
}

} // namespace tamlo::ImageWriter
