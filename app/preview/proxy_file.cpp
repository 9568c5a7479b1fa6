#include "app/preview/proxy_file.h"

#include "core/image/half_float.h"
#include "core/io/decode_rules.h"
#include "core/pipeline/crop_geometry.h"
#include "platform/content_hash.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

namespace tamlo {
namespace {

constexpr std::uint32_t kMagic = 0x5450'5258; // "XRPT"
/// No camera comes near; a damaged header must not ask for the machine's memory.
constexpr std::int64_t kLongestSide = 1 << 20;
constexpr std::string_view kExtension = ".tproxy";
constexpr std::size_t kStatsAt = 40;

static_assert(std::endian::native == std::endian::little, "the file's byte order is copied as it stands");

/// Fields at their places.
class Fields {
public:
    explicit Fields(std::uint8_t* at) : at_(at) {}
    template <typename T>
    void put(std::size_t offset, const T& value)
    {
        std::memcpy(at_ + offset, &value, sizeof value);
    }

private:
    std::uint8_t* at_;
};

template <typename T>
T fieldAt(std::span<const std::uint8_t> bytes, std::size_t offset)
{
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

/// 0 or 1; absent for anything else.
std::optional<bool> flagAt(std::span<const std::uint8_t> bytes, std::size_t offset)
{
    const auto value = fieldAt<std::uint32_t>(bytes, offset);
    return value > 1 ? std::nullopt : std::optional(value == 1);
}

std::uint32_t u32(std::int64_t value)
{
    return static_cast<std::uint32_t>(value);
}

std::optional<SourceExposure::Stats> statsAt(std::span<const std::uint8_t> bytes)
{
    SourceExposure::Stats stats;
    stats.p10 = fieldAt<double>(bytes, kStatsAt);
    stats.p50 = fieldAt<double>(bytes, 48);
    stats.p995 = fieldAt<double>(bytes, 56);
    stats.height = fieldAt<std::uint32_t>(bytes, 64);
    stats.width = fieldAt<std::uint32_t>(bytes, 68);
    const bool isSound = stats.p10 >= 0 && stats.p50 >= stats.p10 && stats.p995 >= stats.p50 &&
                         std::isfinite(stats.p995) && stats.width > 0 && stats.height > 0;
    return isSound ? std::optional(stats) : std::nullopt;
}

/// Two sizes of one picture, whichever way up: a decode may leave out a few pixels at the edges, and a small
/// side rounds.
bool areAlike(Size a, Size b)
{
    constexpr double kTolerance = 0.1;
    const auto ratio = [](Size size) {
        return static_cast<double>(std::max(size.width, size.height)) /
               static_cast<double>(std::min(size.width, size.height));
    };
    const double pixel = 2.0 / static_cast<double>(std::min({a.width, a.height, b.width, b.height}));
    return std::abs(ratio(a) / ratio(b) - 1.0) <= kTolerance + pixel;
}

/// Whether the numbers of a header can be those of one picture. A damaged one mostly can't.
bool isPlausible(const ProxyFile::Header& head)
{
    // Light is measured in a linear picture whose white is 1; what lies above it is a few stops.
    constexpr double kMostLight = 1024;
    const SourceShape& shape = head.shape;
    const Size proxy{head.width, head.height}, full{shape.fullWidth, shape.fullHeight};
    if (shape.isRAW != shape.stats.has_value() || (!shape.isRAW && shape.wb != WBMode::film)) return false;
    constexpr double kLeastShare = 0.9; // a proxy is never larger than its source but for a few edge pixels
    if (static_cast<double>(std::max(full.width, full.height)) <
        kLeastShare * static_cast<double>(std::max(proxy.width, proxy.height)))
        return false;
    if (!areAlike(proxy, full) || (proxy.width > proxy.height && full.width < full.height) ||
        (proxy.width < proxy.height && full.width > full.height))
        return false;
    return !shape.stats ||
           (shape.stats->p995 <= kMostLight && areAlike(full, {shape.stats->width, shape.stats->height}));
}

template <typename Integer>
bool readWhole(std::string_view text, Integer& into)
{
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), into);
    return problem == std::errc() && end == text.data() + text.size();
}

} // namespace

std::string SourceShape::info(std::int64_t rot, const std::optional<Crop>& crop) const
{
    Size size{fullWidth, fullHeight};
    if (crop) {
        const Pipeline::PixelRect rect = Pipeline::cropRectPx(*crop, size);
        size = {rect.width(), rect.height()};
    }
    if (rot % 2 != 0) std::swap(size.width, size.height);
    return std::to_string(size.width) + "×" + std::to_string(size.height) + " · " +
           (isRAW ? "RAW" : "JPEG/HEIF");
}

SourceShape shapeOf(const FrameSource& source)
{
    return {source.fullWidth, source.fullHeight, source.isRAW, source.stats, source.wb};
}

std::string ProxyFile::key(const Fingerprint& fingerprint, WBMode wb)
{
    return platform::sha256(std::to_string(fingerprint.size) + ":" + std::to_string(fingerprint.hash) + "|" +
                            std::to_string(kProxyLong) + "|wb:" + ImageLoader::rawText(wb));
}

WBMode ProxyFile::wbOf(const Frame& frame)
{
    if (!frame.process || !ImageLoader::isRAW(frame.url)) return WBMode::film;
    return ImageLoader::decodeWBMode(frame.process->options.wbMode);
}

std::string ProxyFile::name(std::string_view key, std::int64_t tier, int version)
{
    return std::to_string(version) + "-" + std::to_string(tier) + "-" + std::string(key) +
           std::string(kExtension);
}

std::optional<ProxyFile::Parts> ProxyFile::parts(std::string_view name)
{
    if (!name.ends_with(kExtension)) return std::nullopt;
    name.remove_suffix(kExtension.size());
    const auto first = name.find('-');
    const auto second = first == name.npos ? first : name.find('-', first + 1);
    if (second == name.npos) return std::nullopt;
    Parts parts;
    parts.key = name.substr(second + 1);
    const bool isHex =
        parts.key.size() == 64 && parts.key.find_first_not_of("0123456789abcdef") == parts.key.npos;
    if (!readWhole(name.substr(0, first), parts.version) ||
        !readWhole(name.substr(first + 1, second - first - 1), parts.tier) || !isHex)
        return std::nullopt;
    return parts;
}

std::vector<std::uint8_t> ProxyFile::encode(const FrameSource& source)
{
    const std::size_t samples = source.proxy.data.size();
    const std::size_t each = source.halfPrecision ? 2 : 4;
    std::vector<std::uint8_t> bytes(kHeaderBytes + samples * each);
    Fields fields(bytes.data());
    const SourceExposure::Stats stats = source.stats.value_or(SourceExposure::Stats());
    const std::uint32_t head[] = {kMagic,
                                  u32(kVersion),
                                  u32(source.proxy.width),
                                  u32(source.proxy.height),
                                  u32(source.fullWidth),
                                  u32(source.fullHeight),
                                  source.isRAW,
                                  source.wb == WBMode::asShot,
                                  source.halfPrecision,
                                  source.stats.has_value()};
    fields.put(0, head);
    const double percentiles[] = {stats.p10, stats.p50, stats.p995};
    fields.put(kStatsAt, percentiles);
    fields.put(64, u32(stats.height));
    fields.put(68, u32(stats.width));
    if (source.halfPrecision) {
        std::vector<std::uint16_t> halves(samples);
        HalfFloat::encode({source.proxy.data.data(), samples}, halves);
        std::memcpy(bytes.data() + kHeaderBytes, halves.data(), samples * each);
    } else {
        std::memcpy(bytes.data() + kHeaderBytes, source.proxy.data.data(), samples * each);
    }
    return bytes;
}

std::int64_t ProxyFile::Header::fileBytes() const
{
    return static_cast<std::int64_t>(kHeaderBytes) + width * height * 3 * (halfPrecision ? 2 : 4);
}

std::optional<ProxyFile::Header> ProxyFile::header(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < kHeaderBytes) return std::nullopt;
    const auto at = [&](std::size_t offset) { return fieldAt<std::uint32_t>(bytes, offset); };
    if (at(0) != kMagic || at(4) != u32(kVersion)) return std::nullopt;
    const auto isRAW = flagAt(bytes, 24), asShot = flagAt(bytes, 28), half = flagAt(bytes, 32),
               hasStats = flagAt(bytes, 36);
    if (!isRAW || !asShot || !half || !hasStats) return std::nullopt;
    Header head{at(8), at(12), *half, {}};
    head.shape = {at(16), at(20), *isRAW, {}, *asShot ? WBMode::asShot : WBMode::film};
    if (std::min(head.width, head.height) < 1 || std::max(head.width, head.height) > kProxyLong ||
        std::min(head.shape.fullWidth, head.shape.fullHeight) < 1 ||
        std::max(head.shape.fullWidth, head.shape.fullHeight) > kLongestSide)
        return std::nullopt;
    if (*hasStats) {
        head.shape.stats = statsAt(bytes);
        if (!head.shape.stats) return std::nullopt;
    } else if (std::ranges::any_of(bytes.subspan(kStatsAt, kHeaderBytes - kStatsAt),
                                   [](std::uint8_t byte) { return byte != 0; })) {
        return std::nullopt;
    }
    if (!isPlausible(head)) return std::nullopt;
    return head;
}

std::optional<FrameSource> ProxyFile::decode(std::span<const std::uint8_t> bytes)
{
    const std::optional<Header> head = header(bytes);
    if (!head || head->fileBytes() != static_cast<std::int64_t>(bytes.size())) return std::nullopt;
    FrameSource source{RGBImage(head->width, head->height),
                       head->shape.stats,
                       head->shape.fullWidth,
                       head->shape.fullHeight,
                       head->shape.isRAW,
                       head->shape.wb,
                       head->halfPrecision,
                       {}};
    const std::size_t samples = source.proxy.data.size();
    const std::uint8_t* pixels = bytes.data() + kHeaderBytes;
    if (head->halfPrecision) {
        std::vector<std::uint16_t> halves(samples);
        std::memcpy(halves.data(), pixels, samples * sizeof(std::uint16_t));
        HalfFloat::decode(halves, {source.proxy.mutableData(), samples});
    } else {
        std::memcpy(source.proxy.mutableData(), pixels, samples * sizeof(float));
    }
    if (!source.isRAW) source.lights = DisplayLights::measure(source.proxy);
    return source;
}

} // namespace tamlo
