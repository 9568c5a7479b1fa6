// ThumbCache: the finished pictures of the grid, one JPEG a view, in the folder "thumbs" of the cache. A file
// is named by its view's key and by how it was made. After an update of the program, the tile of the same
// view by another build still serves until the new one is there. From any thread.
#pragma once

#include "app/preview/proxy_cache.h"
#include "core/io/ready_image.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

class ThumbCache {
public:
    /// p: from the print of the develop screen. t: computed at the size of a tile.
    enum class Raster { p, t };

    struct Parts {
        std::string hash, build;
        Raster raster = Raster::t;
    };
    struct Tile {
        ReadyImage image;
        Raster raster = Raster::t;
    };

    explicit ThumbCache(ProxyCache& cache) : cache_(cache) {}

    /// "{hash}-{build}-p.jpg".
    static std::string name(const std::string& viewKey, Raster raster);
    static std::optional<Parts> parse(std::string_view name);
    /// Path from the cache's folder.
    static std::string path(const std::string& viewKey, Raster raster);

    /// Nothing where the file is there. Removes the tiles of this view by other builds.
    void store(const std::string& viewKey, const ReadyImage& image, Raster raster);
    /// A file is there, of whichever raster.
    bool has(const std::string& viewKey) const;
    /// The wanted raster, else the other. A file that is no picture is removed, so that it can be made anew.
    std::optional<Tile> read(const std::string& viewKey, Raster raster);
    /// A file of this view stands there, in either raster; it is not read.
    bool holds(const std::string& viewKey) const;
    /// By another build: a print before a computed one, then the newest.
    std::optional<ReadyImage> readStale(const std::string& viewKey);
    void removeFile(const std::string& viewKey, Raster raster);

private:
    using Names = std::map<std::string, std::vector<std::string>>; ///< by hash

    std::optional<ReadyImage> readFile(const std::string& name);
    void ensureIndexed();
    std::vector<std::string> namesOf(const std::string& hash);
    void noteStored(const std::string& viewKey, Raster raster);
    void forget(const std::string& name);

    ProxyCache& cache_;
    std::mutex mutex_;
    bool isIndexed_ = false;
    Names names_;
};

} // namespace tamlo
