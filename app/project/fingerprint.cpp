#include "app/project/fingerprint.h"

#include "platform/content_hash.h"
#include "platform/file_info.h"
#include "platform/input_file.h"
#include "platform/platform_error.h"

#include <iterator>

namespace tamlo {

namespace {

constexpr std::size_t kHeadBytes = 1'048'576;
constexpr std::size_t kTailBytes = 65'536;

} // namespace

std::optional<FileSample> FileSample::read(const std::filesystem::path& file)
{
    try {
        const platform::InputFile input(file.string());
        const std::optional<platform::FileInfo> info = platform::fileInfo(file);
        if (!info) return std::nullopt;
        FileSample sample;
        sample.head.resize(kHeadBytes);
        sample.head.resize(input.readAt(0, sample.head));
        platform::XXHash64 hash;
        hash.update({sample.head.data(), sample.head.size()});
        if (info->size > static_cast<std::int64_t>(kHeadBytes + kTailBytes)) {
            std::vector<char> tail(kTailBytes);
            hash.update({tail.data(), input.readAt(info->size - std::ssize(tail), tail)});
        }
        sample.fingerprint = {info->size, info->mtime, hash.finish()};
        return sample;
    } catch (const platform::PlatformError&) {
        return std::nullopt;
    }
}

std::optional<Fingerprint> Fingerprint::read(const std::filesystem::path& file)
{
    const std::optional<FileSample> sample = FileSample::read(file);
    return sample ? std::optional(sample->fingerprint) : std::nullopt;
}

} // namespace tamlo
