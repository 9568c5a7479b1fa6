#include "platform/metadata_writer.h"

#include "platform/exiv2_session.h"
#include "platform/platform_error.h"

#include <exiv2/exiv2.hpp>

namespace tamlo::platform {
namespace {

void setEntry(Exiv2::Image& image, const MetadataEntry& entry)
{
    if (entry.key.starts_with("Exif.")) {
        image.exifData()[entry.key] = entry.value;
        return;
    }
    if (entry.key.starts_with("Iptc.")) {
        const Exiv2::IptcKey key(entry.key);
        const auto type = Exiv2::IptcDataSets::dataSetType(key.tag(), key.record());
        const Exiv2::Value::AutoPtr value = Exiv2::Value::create(type);
        value->read(entry.value);
        if (image.iptcData().add(key, value.get()) != 0)
            throw PlatformError("metadata field " + entry.key + " cannot be set twice");
        return;
    }
    const Exiv2::XmpKey key(entry.key);
    Exiv2::XmpData& xmp = image.xmpData();
    const auto found = xmp.findKey(key);
    if (found != xmp.end() && found->typeId() != Exiv2::langAlt) {
        found->setValue(entry.value); // a list takes one more
        return;
    }
    const Exiv2::Value::AutoPtr value = Exiv2::Value::create(Exiv2::XmpProperties::propertyType(key));
    value->read(entry.value);
    xmp.add(key, value.get());
}

template <typename Data, typename IsPosition>
void dropPositions(Data& data, IsPosition&& isPosition)
{
    for (auto i = data.begin(); i != data.end();) {
        if (isPosition(i->key()))
            i = data.erase(i);
        else
            ++i;
    }
}

bool namesGps(const std::string& key)
{
    return key.find("GPS") != std::string::npos;
}

} // namespace

std::vector<std::uint8_t> withMetadata(std::span<const std::uint8_t> file, const MetadataCopy& copy)
{
    const auto session = exiv2Session();
    try {
        const Exiv2::Image::AutoPtr image =
            Exiv2::ImageFactory::open(file.data(), static_cast<long>(file.size()));
        image->readMetadata();
        if (!copy.merge) {
            // A TIFF keeps its picture's layout among the same tags, so there only what is replaced goes.
            if (image->imageType() != Exiv2::ImageType::tiff) image->clearExifData();
            image->clearIptcData();
            image->clearXmpData();
        }
        for (const MetadataEntry& entry : copy.entries) setEntry(*image, entry);
        if (copy.excludeGps) {
            dropPositions(image->exifData(), namesGps);
            dropPositions(image->xmpData(), namesGps);
        }
        image->writeMetadata();
        Exiv2::BasicIo& io = image->io();
        if (io.open() != 0) throw PlatformError("the finished file cannot be read back");
        std::vector<std::uint8_t> out(io.size());
        if (io.read(out.data(), static_cast<long>(out.size())) != static_cast<long>(out.size()))
            throw PlatformError("the finished file cannot be read back");
        return out;
    } catch (const Exiv2::AnyError& error) {
        throw PlatformError(error.what());
    }
}

} // namespace tamlo::platform
