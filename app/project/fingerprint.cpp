#include "app/project/fingerprint.h"

#include "platform/content_hash.h"
#include "platform/file_info.h"
#include "platform/input_file.h"
#include "platform/platform_error.h"

#include <vector>

namespace tamlo {

namespace {

constexpr std::size_t kHeadBytes = 1'048'576;
constexpr std::size_t kTailBytes = 65'536;

} // namespace

std::optional<Fingerprint> Fingerprint::read(const std::filesystem::path& file)
{
    try {
        const platform::InputFile input(file.string());
        const std::optional<platform::FileInfo> info = platform::fileInfo(file);
        if (!info) return std::nullopt;
        platform::XXHash64 hash;
        std::vector<char> bytes(kHeadBytes);
        hash.update({bytes.data(), input.readHead(bytes)});
        if (info->size > static_cast<std::int64_t>(kHeadBytes + kTailBytes)) {
            bytes.resize(kTailBytes);
            hash.update({bytes.data(), input.readTail(bytes)});
        }
        return Fingerprint{info->size, info->mtime, hash.finish()};
    } catch (const platform::PlatformError&) {
        return std::nullopt;
    }
}

} // namespace tamlo
