#include "platform/shot_properties.h"

#include "platform/exiv2_session.h"
#include "platform/input_file.h"
#include "platform/unicode.h"

#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <cstdint>
#include <initializer_list>

namespace tamlo::platform {
namespace {

/// Text of a field: without the padding of fixed widths and what no markup can hold; bytes that are no UTF-8
/// are taken as Latin-1, as older programs wrote them.
std::optional<std::string> cleaned(std::string text)
{
    std::erase_if(text, [](unsigned char c) { return c < ' ' && c != '\t' && c != '\n' && c != '\r'; });
    text = trimmed(asUtf8(text));
    return text.empty() ? std::nullopt : std::optional(text);
}

/// The first of the keys that has something to say.
std::optional<std::string> textOf(const Exiv2::ExifData& data, std::initializer_list<const char*> keys)
{
    for (const char* key : keys)
        if (const auto entry = data.findKey(Exiv2::ExifKey(key)); entry != data.end())
            if (auto text = cleaned(entry->toString())) return text;
    return std::nullopt;
}

std::optional<double> positiveOf(const Exiv2::ExifData& data, const char* key)
{
    const auto entry = data.findKey(Exiv2::ExifKey(key));
    if (entry == data.end() || entry->count() == 0) return std::nullopt;
    const Exiv2::Rational value = entry->toRational();
    if (value.second == 0) return std::nullopt;
    const double number = static_cast<double>(value.first) / value.second;
    if (!(number > 0)) return std::nullopt;
    return number;
}

std::optional<int> isoOf(const Exiv2::ExifData& data)
{
    const auto entry = data.findKey(Exiv2::ExifKey("Exif.Photo.ISOSpeedRatings"));
    if (entry == data.end() || entry->count() == 0) return std::nullopt;
    const long value = entry->toLong();
    if (value <= 0 || value > 100'000'000) return std::nullopt;
    return static_cast<int>(value);
}

/// A file for the metadata library that reads what it is asked for and no more, and from memory what was
/// read before: through buffers of its own it would read a large PNG for the sake of its chunks' names.
/// Parsers of TIFF and its kin look at the file's pages in place instead.
class SampledFile final : public Exiv2::FileIo {
public:
    SampledFile(const std::filesystem::path& path, std::span<const char> head)
        : Exiv2::FileIo(path.string()), input_(path.string()), head_(head)
    {}

    int open() override
    {
        place_ = 0;
        atEnd_ = false;
        return Exiv2::FileIo::open();
    }
    using Exiv2::FileIo::read;
    long read(Exiv2::byte* bytes, long count) override
    {
        const std::span into(reinterpret_cast<char*>(bytes), static_cast<std::size_t>(std::max(count, 0L)));
        std::size_t got = 0;
        if (place_ < std::ssize(head_)) {
            const auto known = head_.subspan(static_cast<std::size_t>(place_));
            got = std::min(known.size(), into.size());
            std::copy_n(known.begin(), got, into.begin());
        }
        if (got < into.size())
            got += input_.readAt(place_ + static_cast<std::int64_t>(got), into.subspan(got));
        atEnd_ = got < into.size();
        place_ += static_cast<std::int64_t>(got);
        return static_cast<long>(got);
    }
    int getb() override
    {
        Exiv2::byte one = 0;
        return read(&one, 1) == 1 ? one : EOF;
    }
    int seek(long offset, Position from) override
    {
        const std::int64_t base = from == beg ? 0 : from == cur ? place_ : static_cast<std::int64_t>(size());
        if (base + offset < 0) return 1;
        place_ = base + offset;
        atEnd_ = false;
        return 0;
    }
    long tell() const override { return static_cast<long>(place_); }
    bool eof() const override { return atEnd_; }
    int error() const override { return 0; } // a read that fails throws

private:
    InputFile input_;
    std::span<const char> head_;
    std::int64_t place_ = 0;
    bool atEnd_ = false;
};

} // namespace

ShotProperties readShotProperties(const std::filesystem::path& path, std::span<const char> head)
{
    ShotProperties shot;
    try {
        const auto session = exiv2Session();
        const auto image = Exiv2::ImageFactory::open(Exiv2::BasicIo::AutoPtr(new SampledFile(path, head)));
        if (!image.get()) return shot;
        try {
            image->readMetadata();
        } catch (const std::exception&) { // what was read before the damage is there
        }
        const Exiv2::ExifData& data = image->exifData();
        shot.make = textOf(data, {"Exif.Image.Make"});
        shot.camera = textOf(data, {"Exif.Image.Model"});
        shot.lensModel = textOf(data, {"Exif.Photo.LensModel"});
        shot.focalMm = positiveOf(data, "Exif.Photo.FocalLength");
        shot.fNumber = positiveOf(data, "Exif.Photo.FNumber");
        shot.exposureSec = positiveOf(data, "Exif.Photo.ExposureTime");
        shot.iso = isoOf(data);
        shot.dateOriginal = textOf(data, {"Exif.Photo.DateTimeOriginal"});
        shot.timeZone = textOf(data, {"Exif.Photo.OffsetTimeOriginal", "Exif.Photo.OffsetTime"});
        shot.artist = textOf(data, {"Exif.Image.Artist"});
        shot.copyright = textOf(data, {"Exif.Image.Copyright"});
    } catch (const std::exception&) {
        return {}; // a picture with damaged metadata is still a picture
    }
    return shot;
}

} // namespace tamlo::platform
