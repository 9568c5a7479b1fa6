#include "app/preview/proxy_cache.h"

#include "app/preview/thumb_cache.h"
#include "core/image/tamlo_error.h"
#include "core/io/encoded_decode.h"
#include "platform/atomic_file.h"
#include "platform/environment.h"
#include "platform/file_info.h"
#include "platform/input_file.h"
#include "platform/platform_error.h"
#include "platform/user_folder.h"

#include <array>
#include <cmath>
#include <set>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kGrowthBytes = std::int64_t{512} << 20;
constexpr double kDefaultCapGB = 16;
constexpr double kShapeTolerance = 0.02;
constexpr std::int64_t kMostProxyBytes =
    static_cast<std::int64_t>(ProxyFile::kHeaderBytes) + ProxyFile::kProxyLong * ProxyFile::kProxyLong * 12;

bool isDead(const std::string& key)
{
    constexpr std::string_view kThumbs = "thumbs/";
    if (key.starts_with(kThumbs)) return !ThumbCache::parse(key.substr(kThumbs.size()));
    const auto parts = ProxyFile::parts(key);
    return !parts || parts->version != ProxyFile::kVersion;
}

bool isThere(const fs::path& path)
{
    std::error_code problem;
    return fs::exists(path, problem);
}

} // namespace

std::optional<std::vector<std::uint8_t>> cacheBytes(const fs::path& file, std::int64_t mostBytes)
{
    try {
        const auto info = platform::fileInfo(file);
        if (!info || info->size > mostBytes) return std::nullopt;
        const platform::InputFile input(file.string());
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(info->size));
        bytes.resize(input.readHead({reinterpret_cast<char*>(bytes.data()), bytes.size()}));
        return bytes;
    } catch (const platform::PlatformError&) {
        return std::nullopt;
    }
}

fs::path ProxyCache::defaultFolder()
{
    const auto given = platform::environmentVariable("TAMLO_PROXY_DIR");
    return given && !given->empty() ? fs::path(*given) : platform::cacheFolder() / "proxies";
}

ProxyCache::ProxyCache(Config config)
    : config_(std::move(config)), sessionStart_(config_.date()), index_(config_.folder, sessionStart_)
{}

ProxyCache::~ProxyCache()
{
    flush();
}

void ProxyCache::setOpenProject(std::optional<std::string> id)
{
    const std::lock_guard lock(mutex_);
    open_ = std::move(id);
}

std::optional<std::string> ProxyCache::openProject() const
{
    const std::lock_guard lock(mutex_);
    return open_;
}

void ProxyCache::store(const FrameSource& source, const std::string& key)
{
    const std::string name = ProxyFile::name(key);
    try {
        std::error_code ignored;
        fs::create_directories(config_.folder, ignored);
        const std::vector<std::uint8_t> bytes = ProxyFile::encode(source);
        platform::writeWhole((config_.folder / name).string(), bytes, platform::Durability::cache);
        noteWritten(name, ProxyFile::kProxyLong, static_cast<std::int64_t>(bytes.size()));
    } catch (const platform::PlatformError&) {
        // The frame is decoded again next time.
    }
}

void ProxyCache::noteWritten(const std::string& key, std::int64_t tier, std::int64_t bytes)
{
    const double now = config_.date();
    ProxyIndex::Entry entry{key, tier, bytes, now, now, {}};
    if (const auto open = openProject()) entry.projects = {*open};
    index_.put(std::move(entry));
    const std::int64_t before = grown_.fetch_add(bytes);
    if (before < kGrowthBytes && before + bytes >= kGrowthBytes && config_.onGrown) config_.onGrown();
}

std::optional<FrameSource> ProxyCache::read(const std::string& key)
{
    const std::string name = ProxyFile::name(key);
    const auto bytes = cacheBytes(config_.folder / name, kMostProxyBytes);
    std::optional<FrameSource> source = bytes ? ProxyFile::decode(*bytes) : std::nullopt;
    if (source) index_.touch(name, config_.date());
    return source;
}

std::optional<SourceShape> ProxyCache::readShape(const std::string& key) const
{
    try {
        std::array<std::uint8_t, ProxyFile::kHeaderBytes> bytes{};
        const fs::path file = config_.folder / ProxyFile::name(key);
        const platform::InputFile input(file.string());
        if (input.readHead({reinterpret_cast<char*>(bytes.data()), bytes.size()}) != bytes.size())
            return std::nullopt;
        const auto header = ProxyFile::header(bytes);
        const auto info = platform::fileInfo(file);
        const bool isWhole = header && info && info->size == header->fileBytes();
        return isWhole ? std::optional(header->shape) : std::nullopt;
    } catch (const platform::PlatformError&) {
        return std::nullopt;
    }
}

bool ProxyCache::shapeMatches(const FrameSource& source, const fs::path& file)
{
    if (source.isRAW) return true;
    if (source.proxy.pixelCount() < 1) return false;
    try {
        const Size size = ImageLoader::encodedSize(file);
        const double own = static_cast<double>(size.width) / static_cast<double>(size.height);
        const double proxys =
            static_cast<double>(source.proxy.width) / static_cast<double>(source.proxy.height);
        // A side of a few pixels rounds by more than any turn changes.
        const double pixel = 1.0 / static_cast<double>(source.proxy.shortSide());
        return std::abs(own - proxys) <= std::max(kShapeTolerance, pixel) * own;
    } catch (const TamloError&) {
        return true; // it doesn't say
    }
}

ProxyCache::Amount ProxyCache::usage() const
{
    Amount amount;
    for (const auto& [key, entry] : cacheFiles(config_.folder)) {
        ++amount.files;
        amount.bytes += entry.bytes;
    }
    return amount;
}

std::int64_t ProxyCache::openProjectBytes()
{
    const auto open = openProject();
    std::int64_t bytes = 0;
    if (open)
        for (const auto& [key, entry] : index_.loaded())
            if (std::ranges::find(entry.projects, *open) != entry.projects.end()) bytes += entry.bytes;
    return bytes;
}

/// The files as they are, with what the index knows of them, and the index brought up to that.
ProxyTrim::Input ProxyCache::reconciled(double now)
{
    ProxyTrim::Input input;
    input.judgesOrphans = !index_.wasRebuilt();
    const ProxyIndex::Entries known = index_.loaded();
    input.entries = cacheFiles(config_.folder);
    std::vector<std::string> gone;
    for (const auto& [key, entry] : known) {
        const auto file = input.entries.find(key);
        if (file == input.entries.end()) {
            gone.push_back(key);
            continue;
        }
        const std::int64_t bytes = file->second.bytes;
        file->second = entry;
        file->second.bytes = bytes;
    }
    for (const auto& [key, entry] : input.entries)
        if (const auto own = known.find(key); own == known.end() || own->second.bytes != entry.bytes)
            index_.put(entry);
    index_.remove(gone);
    for (const auto& [key, entry] : input.entries)
        if (isDead(key)) input.dead.insert(key);
    if (config_.registry) {
        try {
            input.projects = config_.registry->load();
        } catch (const TamloError&) {
            input.judgesOrphans = false;
        }
        input.judgesOrphans = input.judgesOrphans && !config_.registry->metDamage();
    }
    for (const auto& [id, project] : input.projects)
        if (isThere(project.path)) input.live.insert(id);
    input.open = openProject();
    input.now = now;
    input.sessionStart = sessionStart_;
    return input;
}

ProxyCache::Amount ProxyCache::remove(const std::vector<std::string>& keys,
                                      const ProxyIndex::Entries& entries)
{
    Amount amount;
    std::vector<std::string> removed;
    for (const std::string& key : keys) {
        std::error_code problem;
        if (!fs::remove(config_.folder / key, problem) && problem) continue; // it stays, and its entry
        ++amount.files;
        amount.bytes += entries.at(key).bytes;
        removed.push_back(key);
    }
    index_.remove(removed);
    flush();
    return amount;
}

ProxyCache::Amount ProxyCache::trim(std::optional<std::int64_t> capBytes,
                                    std::optional<std::int64_t> freeBytes, double now)
{
    grown_ = 0;
    platform::sweepTemporaries(config_.folder);
    platform::sweepTemporaries(config_.folder / "thumbs");
    ProxyTrim::Input input = reconciled(now);
    input.capBytes = capBytes;
    input.freeBytes = freeBytes;
    return remove(ProxyTrim::plan(input), input.entries);
}

ProxyCache::Amount ProxyCache::clear()
{
    const ProxyTrim::Input input = reconciled(config_.date());
    std::vector<std::string> keys;
    for (const auto& [key, entry] : input.entries)
        if (!input.open || std::ranges::find(entry.projects, *input.open) == entry.projects.end())
            keys.push_back(key);
    return remove(keys, input.entries);
}

ProxyCache::Amount ProxyCache::clearCold(double now)
{
    using enum ProxyTrim::Temperature;
    const ProxyTrim::Input input = reconciled(now);
    return remove(ProxyTrim::keysOf(input, {dead, orphan, cold}), input.entries);
}

std::optional<std::int64_t> ProxyCache::capBytes(std::optional<double> preferenceGB)
{
    constexpr double kMostGB = 1 << 20;
    const double gb = preferenceGB.value_or(kDefaultCapGB);
    if (!(gb >= 1) || gb > kMostGB) return std::nullopt;
    return static_cast<std::int64_t>(gb) << 30;
}

} // namespace tamlo
