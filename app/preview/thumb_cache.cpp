#include "app/preview/thumb_cache.h"

#include "app/preview/view_key.h"
#include "core/image/tamlo_error.h"
#include "core/io/jpeg_encoder.h"
#include "platform/atomic_file.h"
#include "platform/encoded_image.h"
#include "platform/file_info.h"
#include "platform/platform_error.h"
#include "platform/srgb_profile.h"

#include <algorithm>
#include <tuple>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr int kQuality = 92;
constexpr std::string_view kFolder = "thumbs";
/// A tile is 1,024 pixels a side; the print of a panorama on a long table is a few times that.
constexpr std::int64_t kLongestSide = 16'384;

char letterOf(ThumbCache::Raster raster)
{
    return raster == ThumbCache::Raster::p ? 'p' : 't';
}

ThumbCache::Raster other(ThumbCache::Raster raster)
{
    return raster == ThumbCache::Raster::p ? ThumbCache::Raster::t : ThumbCache::Raster::p;
}

} // namespace

std::string ThumbCache::name(const std::string& viewKey, Raster raster)
{
    return viewKey + "-" + letterOf(raster) + ".jpg";
}

std::string ThumbCache::path(const std::string& viewKey, Raster raster)
{
    return std::string(kFolder) + "/" + name(viewKey, raster);
}

std::optional<ThumbCache::Parts> ThumbCache::parse(std::string_view name)
{
    constexpr std::string_view kExtension = ".jpg";
    constexpr std::size_t kHashDigits = 64, kRasterPart = 2;
    if (!name.ends_with(kExtension)) return std::nullopt;
    name.remove_suffix(kExtension.size());
    if (name.size() < kHashDigits + 2 + kRasterPart || name[kHashDigits] != '-') return std::nullopt;
    const std::string_view tail = name.substr(name.size() - kRasterPart);
    if (tail != "-p" && tail != "-t") return std::nullopt;
    const std::string_view hash = name.substr(0, kHashDigits);
    const std::string_view build = name.substr(kHashDigits + 1, name.size() - kHashDigits - 1 - kRasterPart);
    if (hash.find_first_not_of("0123456789abcdef") != hash.npos || ViewKey::cleanBuild(build) != build)
        return std::nullopt;
    return Parts{std::string(hash), std::string(build), tail == "-p" ? Raster::p : Raster::t};
}

void ThumbCache::store(const std::string& viewKey, const ReadyImage& image, Raster raster)
{
    const fs::path file = cache_.directory() / path(viewKey, raster);
    std::error_code problem;
    if (fs::exists(file, problem)) return;
    try {
        fs::create_directories(file.parent_path(), problem);
        const std::vector<std::uint8_t> rgb = ImageWriter::rgbBytes(image);
        const std::vector<std::uint8_t> bytes =
            JPEGEncoder::encode({rgb, image.width, image.height}, kQuality, platform::srgbProfile());
        platform::writeWhole(file.string(), bytes, platform::Durability::cache);
        cache_.noteWritten(path(viewKey, raster), 0, static_cast<std::int64_t>(bytes.size()));
        noteStored(viewKey, raster);
    } catch (const platform::PlatformError&) {
    } catch (const TamloError&) {
        // No tile on disk; it is made again next time.
    }
}

std::optional<ReadyImage> ThumbCache::readFile(const std::string& name)
{
    const fs::path file = cache_.directory() / kFolder / name;
    if (!platform::fileInfo(file)) return std::nullopt;
    ReadyImage image;
    try {
        platform::drawEncodedImage(file.string(), {[&](std::int64_t width, std::int64_t height) {
                                       if (std::max(width, height) > kLongestSide)
                                           throw platform::PlatformError("it is no tile");
                                       image.width = width;
                                       image.height = height;
                                       image.rgba.resize(static_cast<std::size_t>(width * height * 4));
                                       return image.rgba.data();
                                   }});
        return image;
    } catch (const platform::PlatformError&) {
        std::error_code ignored;
        fs::remove(file, ignored);
        forget(name);
        return std::nullopt;
    }
}

bool ThumbCache::has(const std::string& viewKey) const
{
    for (const Raster raster : {Raster::p, Raster::t})
        if (platform::fileInfo(cache_.directory() / path(viewKey, raster))) return true;
    return false;
}

std::optional<ThumbCache::Tile> ThumbCache::read(const std::string& viewKey, Raster raster)
{
    for (const Raster wanted : {raster, other(raster)})
        if (auto image = readFile(name(viewKey, wanted))) {
            cache_.touch(path(viewKey, wanted));
            return Tile{std::move(*image), wanted};
        }
    return std::nullopt;
}

bool ThumbCache::holds(const std::string& viewKey) const
{
    const fs::path folder = cache_.directory() / kFolder;
    return platform::fileInfo(folder / name(viewKey, Raster::p)) ||
           platform::fileInfo(folder / name(viewKey, Raster::t));
}

std::optional<ReadyImage> ThumbCache::readStale(const std::string& viewKey)
{
    using Rank = std::tuple<bool, double, std::string>; // the largest goes first
    std::vector<Rank> ranked;
    for (const std::string& name : namesOf(ViewKey::hashOf(viewKey))) {
        const auto parts = parse(name);
        const auto info = platform::fileInfo(cache_.directory() / kFolder / name);
        if (parts && info && parts->hash + "-" + parts->build != viewKey)
            ranked.emplace_back(parts->raster == Raster::p, info->mtime, name);
    }
    std::sort(ranked.rbegin(), ranked.rend());
    for (const Rank& rank : ranked)
        if (auto image = readFile(std::get<std::string>(rank))) return image;
    return std::nullopt;
}

void ThumbCache::removeFile(const std::string& viewKey, Raster raster)
{
    const std::string name = ThumbCache::name(viewKey, raster);
    std::error_code ignored;
    if (fs::remove(cache_.directory() / kFolder / name, ignored))
        cache_.index().remove({path(viewKey, raster)});
    forget(name);
}

void ThumbCache::ensureIndexed()
{
    {
        const std::lock_guard lock(mutex_);
        if (isIndexed_) return;
    }
    Names found;
    std::error_code problem;
    for (fs::directory_iterator at(cache_.directory() / kFolder, problem), end; !problem && at != end;
         at.increment(problem)) {
        const std::string name = at->path().filename().string();
        if (const auto parts = parse(name)) found[parts->hash].push_back(name);
    }
    const std::lock_guard lock(mutex_);
    if (!isIndexed_) names_.merge(found);
    isIndexed_ = true;
}

std::vector<std::string> ThumbCache::namesOf(const std::string& hash)
{
    ensureIndexed();
    const std::lock_guard lock(mutex_);
    const auto found = names_.find(hash);
    return found == names_.end() ? std::vector<std::string>() : found->second;
}

void ThumbCache::noteStored(const std::string& viewKey, Raster raster)
{
    const std::string hash = ViewKey::hashOf(viewKey);
    const std::string own = name(viewKey, raster);
    std::vector<std::string> gone;
    for (const std::string& name : namesOf(hash)) {
        const auto parts = parse(name);
        if (!parts || parts->hash + "-" + parts->build == viewKey) continue;
        std::error_code ignored;
        fs::remove(cache_.directory() / kFolder / name, ignored);
        gone.push_back(std::string(kFolder) + "/" + name);
        forget(name);
    }
    cache_.index().remove(gone);
    const std::lock_guard lock(mutex_);
    std::vector<std::string>& names = names_[hash];
    if (std::ranges::find(names, own) == names.end()) names.push_back(own);
}

void ThumbCache::forget(const std::string& name)
{
    const auto parts = parse(name);
    if (!parts) return;
    const std::lock_guard lock(mutex_);
    if (const auto found = names_.find(parts->hash); found != names_.end()) std::erase(found->second, name);
}

} // namespace tamlo
