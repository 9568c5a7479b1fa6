#include "app/project/file_fields.h"

#include "app/project/file_resolver.h"
#include "core/image/random.h"
#include "platform/file_info.h"

namespace tamlo {

namespace {

std::optional<std::string> relPathOf(const std::string& url, const std::filesystem::path& projectDir)
{
    return projectDir.empty() ? std::nullopt : FileResolver::relativePath(url, projectDir);
}

} // namespace

FileFields FileFields::read(const std::filesystem::path& file, const std::filesystem::path& projectDir)
{
    const std::string url = FileResolver::standardised(file);
    FileFields fields{url, relPathOf(url, projectDir), {}, {}};
    const std::optional<FileSample> sample = FileSample::read(url);
    if (!sample) return fields;
    fields.fingerprint = sample->fingerprint;
    fields.shot = ShotInfo::read(url, sample->head);
    return fields;
}

Frame newFrame(const FileFields& file)
{
    Frame frame;
    frame.id = Uuid::random();
    frame.url = file.url;
    frame.seed = FrameSeed::crc32(frame.fileName());
    frame.relPath = file.relPath;
    frame.fingerprint = file.fingerprint;
    frame.shot = file.shot;
    return frame;
}

void link(Frame& frame, const FileFields& file)
{
    if (frame.fingerprint && file.fingerprint && !frame.fingerprint->sameContent(*file.fingerprint))
        frame.exportedAt.reset();
    frame.url = file.url;
    frame.relPath = file.relPath;
    frame.fingerprint = file.fingerprint;
    if (!frame.shot || !(*frame.shot == file.shot)) frame.shot = file.shot;
    frame.bookmark.reset(); // it leads to the file that was left
}

std::optional<FileFields> missingFileFields(const Frame& frame, const std::filesystem::path& projectDir)
{
    const std::optional<std::string> relPath = relPathOf(frame.url, projectDir);
    const bool isMoved = !projectDir.empty() && relPath != frame.relPath;
    if (frame.fingerprint && frame.shot && !isMoved) return std::nullopt;
    if (!platform::fileInfo(frame.url)) return std::nullopt;
    FileFields fields{frame.url, relPath, frame.fingerprint, frame.shot ? *frame.shot : ShotInfo()};
    std::optional<FileSample> sample;
    if (!frame.fingerprint && (sample = FileSample::read(frame.url)))
        fields.fingerprint = sample->fingerprint;
    if (!frame.shot)
        fields.shot =
            ShotInfo::read(frame.url, sample ? std::span<const char>(sample->head) : std::span<const char>());
    if (!isMoved && frame.shot && !fields.fingerprint) return std::nullopt; // still unreadable
    return fields;
}

void fillFileFields(Frame& frame, const FileFields& fields)
{
    if (frame.url != fields.url) return; // linked or found elsewhere meanwhile
    frame.relPath = fields.relPath;
    if (!frame.fingerprint) frame.fingerprint = fields.fingerprint;
    if (!frame.shot) frame.shot = fields.shot;
}

void renewRelPaths(Roll& roll, const std::filesystem::path& projectDir)
{
    for (std::size_t i = 0; i < roll.size(); ++i)
        if (auto relPath = relPathOf(roll[i].url, projectDir); relPath != roll[i].relPath)
            roll.edit(i).relPath = std::move(relPath);
}

} // namespace tamlo
