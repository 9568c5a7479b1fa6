#include "core/io/decode_rules.h"

#include "platform/environment.h"
#include "platform/memory.h"

#include <algorithm>
#include <string>

namespace tamlo::ImageLoader {
namespace {

constexpr double kBytesPerGB = 1024.0 * 1024.0 * 1024.0;
constexpr double kWholeShare = 24.0;    // a whole RGBA float frame may take 1/24 of memory
constexpr double kBytesPerPixel = 16.0; // four 32-bit floats
constexpr std::int64_t kBandedAbove = 4'000'000;

} // namespace

DecodeStrategy decodeStrategyOf(std::string_view text)
{
    if (text == "whole") return DecodeStrategy::whole;
    if (text == "banded") return DecodeStrategy::banded;
    return DecodeStrategy::auto_;
}

RawDecodeMode rawDecodeModeOf(std::string_view text)
{
    return text == "full" ? RawDecodeMode::full : RawDecodeMode::master;
}

DecodeStrategy decodeStrategy()
{
    static const DecodeStrategy value =
        decodeStrategyOf(platform::environmentVariable("TAMLO_DECODE").value_or(""));
    return value;
}

RawDecodeMode rawDecodeMode()
{
    static const RawDecodeMode value =
        rawDecodeModeOf(platform::environmentVariable("TAMLO_RAW_DECODE").value_or(""));
    return value;
}

bool isRAW(const std::filesystem::path& path)
{
    std::string extension = path.extension().string();
    if (extension.empty()) return false;
    extension.erase(0, 1);
    for (char& c : extension)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return std::find(rawExtensions.begin(), rawExtensions.end(), extension) != rawExtensions.end();
}

ExifTurn exifOrient(int value)
{
    switch (value) {
    case 2:
        return {0, true};
    case 3:
        return {2, false};
    case 4:
        return {2, true};
    case 5:
        return {3, true};
    case 6:
        return {1, false};
    case 7:
        return {1, true};
    case 8:
        return {3, false};
    default:
        return {0, false};
    }
}

std::int64_t decodeLong(std::int64_t requested, std::int64_t capLongPx, RawDecodeMode mode)
{
    return capLongPx > 0 && mode == RawDecodeMode::master && capLongPx < requested ? capLongPx : requested;
}

bool decodeInBands(std::int64_t pixels, DecodeStrategy strategy, double memoryGB)
{
    switch (strategy) {
    case DecodeStrategy::whole:
        return false;
    case DecodeStrategy::banded:
        return pixels > kBandedAbove;
    case DecodeStrategy::auto_:
        break;
    }
    return memoryGB * kBytesPerGB / kWholeShare < static_cast<double>(pixels) * kBytesPerPixel;
}

double wholeDecodeLimitMP(double memoryGB)
{
    return memoryGB * kBytesPerGB / kWholeShare / kBytesPerPixel / 1e6;
}

double physicalMemoryGB()
{
    return platform::physicalMemoryGB();
}

} // namespace tamlo::ImageLoader
