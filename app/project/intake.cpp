#include "app/project/intake.h"

#include "app/project/file_fields.h"
#include "app/project/file_resolver.h"
#include "core/text/loc.h"
#include "platform/checkpoint.h"

#include <algorithm>
#include <set>
#include <unordered_set>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

using ContentKey = std::pair<std::int64_t, std::uint64_t>;

std::string choiceName(FolderScan::PairChoice choice)
{
    switch (choice) {
    case FolderScan::PairChoice::raw:
        return "RAW";
    case FolderScan::PairChoice::jpeg:
        return "JPEG";
    case FolderScan::PairChoice::both:
        break;
    }
    return T("folder.pairs.both");
}

} // namespace

Intake::Gathered Intake::gather(const std::vector<std::string>& dropped, std::size_t limit)
{
    Gathered found;
    std::unordered_set<std::string> seen;
    const auto take = [&](const std::string& file) {
        std::string standard = FileResolver::standardised(file);
        if (seen.contains(standard)) return;
        if (found.files.size() >= limit) {
            found.limitHit = true;
            return;
        }
        seen.insert(standard);
        found.files.push_back(std::move(standard));
    };
    for (const std::string& given : dropped) {
        platform::checkpoint();
        std::error_code problem;
        const fs::file_status status = fs::status(given, problem);
        if (!fs::exists(status)) {
            found.missing.push_back(given);
        } else if (fs::is_directory(status)) {
            const FolderScan::Walk walk = FolderScan::walk(given, limit - found.files.size());
            found.refusedInFolders += walk.refused;
            found.limitHit = found.limitHit || walk.limitHit;
            for (const std::string& file : walk.files) take(file);
        } else if (FolderScan::isImage(given)) {
            take(given);
        } else {
            found.refused.push_back(fs::path(given).filename().string());
        }
    }
    return found;
}

Intake::Ingested Intake::ingest(const std::vector<std::string>& files, const Roll& roll,
                                const fs::path& projectDir, const std::function<void(std::size_t)>& progress)
{
    std::unordered_set<std::string> paths;
    std::set<ContentKey> contents;
    const auto isNew = [&](const std::optional<Fingerprint>& print) {
        return !print || contents.emplace(print->size, print->hash).second;
    };
    for (const Frame& frame : roll) {
        paths.insert(FileResolver::standardised(frame.url));
        isNew(frame.fingerprint);
    }
    Ingested out;
    for (std::size_t i = 0; i < files.size(); ++i) {
        platform::checkpoint();
        if (paths.insert(FileResolver::standardised(files[i])).second) {
            const FileFields fields = FileFields::read(files[i], projectDir);
            if (isNew(fields.fingerprint))
                out.frames.push_back(newFrame(fields));
            else
                ++out.already;
        } else {
            ++out.already;
        }
        if (progress) progress(i + 1);
    }
    return out;
}

std::string Intake::reportText(const Report& report)
{
    std::string text = T("folder.added", {{"n", report.added}});
    const auto add = [&](const std::string& part) { text += " · " + part; };
    if (report.already > 0) add(T("folder.already", {{"n", report.already}}));
    if (report.pairs > 0)
        add(T("folder.pairs", {{"n", report.pairs}, {"choice", choiceName(report.choice)}}));
    if (report.refused > 0) add(T("import.refused", {{"n", report.refused}}));
    if (report.limitHit) add(T("folder.overflow", {{"n", kMostFiles}}));
    return text;
}

} // namespace tamlo
