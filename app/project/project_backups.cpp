#include "app/project/project_backups.h"

#include "app/project/file_resolver.h"
#include "app/project/whole_file.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"
#include "platform/atomic_file.h"
#include "platform/content_hash.h"
#include "platform/file_info.h"
#include "platform/file_name.h"
#include "platform/platform_error.h"
#include "platform/user_folder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <set>

namespace tamlo {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostItems = 103;
constexpr std::int64_t kMostBytes = 104'857'600;
constexpr double kDaySeconds = 86'400;

fs::path backupsFolder()
{
    return platform::userFolder() / "backups";
}

std::string localTime(double date, const char* format)
{
    const auto moment = static_cast<std::time_t>(std::floor(date));
    std::tm parts{};
    char text[64];
    if (!localtime_r(&moment, &parts)) return {};
    return {text, std::strftime(text, sizeof text, format, &parts)};
}

/// The moment that a stamp tells; absent for any other text.
std::optional<double> parsedStamp(const std::string& text)
{
    constexpr std::string_view kForm = "0000-00-00T00-00-00";
    const bool hasForm =
        std::equal(text.begin(), text.end(), kForm.begin(), kForm.end(),
                   [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; });
    std::tm parts{};
    if (!hasForm || std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d-%2d-%2d", &parts.tm_year, &parts.tm_mon,
                                &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec) != 6)
        return std::nullopt;
    const bool isDate = parts.tm_mon >= 1 && parts.tm_mon <= 12 && parts.tm_mday >= 1 &&
                        parts.tm_mday <= 31 && parts.tm_hour <= 23 && parts.tm_min <= 59 &&
                        parts.tm_sec <= 60;
    if (!isDate) return std::nullopt;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    const std::time_t moment = std::mktime(&parts);
    return moment == std::time_t{-1} ? std::nullopt : std::optional(static_cast<double>(moment));
}

std::size_t removeAll(const std::vector<ProjectBackups::Item>& items)
{
    std::size_t removed = 0;
    std::error_code ignored;
    for (const ProjectBackups::Item& item : items) removed += fs::remove(item.url, ignored) ? 1 : 0;
    return removed;
}

/// The folders of all projects.
std::vector<fs::path> allFolders()
{
    std::vector<fs::path> folders;
    std::error_code problem, unknown;
    for (fs::directory_iterator at(backupsFolder(), problem), end; !problem && at != end;
         at.increment(problem))
        if (at->is_directory(unknown)) folders.push_back(at->path());
    return folders;
}

std::optional<std::size_t> frameCount(const fs::path& file)
{
    try {
        return Project::decode(readWhole(file), ProfileStore::shared()).frames.size();
    } catch (const std::exception&) {
        return std::nullopt; // a list shows what it can
    }
}

} // namespace

std::string ProjectBackups::tag(const fs::path& url)
{
    char text[8];
    const std::uint64_t hash = platform::xxHash64(FileResolver::standardised(url));
    std::snprintf(text, sizeof text, "%06x", static_cast<unsigned>(hash & 0xFFFFFF));
    return text;
}

fs::path ProjectBackups::dir(const fs::path& url)
{
    const std::string tail = "-" + tag(url);
    const std::string name = url.stem().string();
    return backupsFolder() /
           (platform::cutToFileName(name, platform::kLongestFileNameBytes - tail.size()) + tail);
}

std::string ProjectBackups::stamp(double date)
{
    return localTime(date, "%Y-%m-%dT%H-%M-%S");
}

std::optional<double> ProjectBackups::date(const fs::path& url)
{
    constexpr double kQuarterHour = 900, kMostZones = 26 * 3'600;
    if (url.extension() != Project::kExtension) return std::nullopt;
    const std::optional<double> told = parsedStamp(url.stem().string());
    const auto info = told ? platform::fileInfo(url) : std::nullopt;
    if (!info) return told;
    const double off = std::floor(info->mtime) - *told;
    const bool isOtherZone = off != 0 && std::fmod(off, kQuarterHour) == 0 && std::abs(off) <= kMostZones;
    return isOtherZone ? std::floor(info->mtime) : *told;
}

std::vector<ProjectBackups::Item> ProjectBackups::list(const fs::path& folder, bool frames)
{
    std::vector<Item> items;
    std::error_code problem;
    for (fs::directory_iterator at(folder, problem), end; !problem && at != end; at.increment(problem)) {
        const std::optional<double> made = date(at->path());
        if (!made) continue;
        const auto info = platform::fileInfo(at->path());
        items.push_back(
            {at->path(), *made, frames ? frameCount(at->path()) : std::nullopt, info ? info->size : 0});
    }
    std::sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
        return std::pair(b.date, b.url) < std::pair(a.date, a.url);
    });
    return items;
}

std::vector<ProjectBackups::Item> ProjectBackups::keepers(std::vector<Item> items, double now)
{
    // Oldest first: of a bucket, the first one that is met stays.
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.date < b.date; });
    std::vector<Item> kept;
    std::set<std::pair<std::size_t, double>> buckets;
    for (Item& item : items) {
        const auto tier = std::find_if(tiers.begin(), tiers.end(),
                                       [&](const Tier& row) { return now - item.date <= row.ageSeconds; });
        if (tier == tiers.end()) continue;
        const auto index = static_cast<std::size_t>(tier - tiers.begin());
        if (tier->bucketSeconds == 0 ||
            buckets.emplace(index, std::floor(item.date / tier->bucketSeconds)).second)
            kept.push_back(std::move(item));
    }
    std::reverse(kept.begin(), kept.end());
    if (kept.size() > kMostItems) kept.resize(kMostItems);
    std::int64_t bytes = 0;
    for (const Item& item : kept) bytes += item.bytes;
    while (bytes > kMostBytes && kept.size() > 1) {
        bytes -= kept.back().bytes;
        kept.pop_back();
    }
    return kept;
}

std::size_t ProjectBackups::prune(const fs::path& url, double now)
{
    const std::vector<Item> items = list(dir(url), false);
    std::set<fs::path> stay;
    for (const Item& item : keepers(items, now)) stay.insert(item.url);
    std::vector<Item> go;
    for (const Item& item : items)
        if (!stay.contains(item.url)) go.push_back(item);
    return removeAll(go);
}

void ProjectBackups::keep(const fs::path& before, double now)
{
    const auto info = platform::fileInfo(before);
    if (!info) return;
    const double made = info->mtime > 0 ? info->mtime : now;
    const fs::path target = dir(before) / (stamp(made) + std::string(Project::kExtension));
    std::error_code problem;
    fs::create_directories(target.parent_path(), problem);
    if (problem || fs::exists(target, problem) || problem) return;
    try {
        platform::AtomicFile file(target.string());
        file.write(bytesOf(readWhole(before)));
        file.setModified(made);
        file.commit();
    } catch (const platform::PlatformError&) {
        return; // no copy; the save goes on
    } catch (const TamloError& error) {
        if (error.kind() == TamloError::Kind::cancelled) throw;
        return;
    }
    prune(before, now);
}

ProjectBackups::Usage ProjectBackups::usage()
{
    Usage all;
    for (const fs::path& folder : allFolders())
        for (const Item& item : list(folder, false)) {
            ++all.files;
            all.bytes += item.bytes;
        }
    return all;
}

std::size_t ProjectBackups::purge(double days, double now)
{
    std::size_t removed = 0;
    for (const fs::path& folder : allFolders()) {
        std::vector<Item> items = list(folder, false);
        std::erase_if(items, [&](const Item& item) { return item.date >= now - days * kDaySeconds; });
        removed += removeAll(items);
    }
    return removed;
}

Project ProjectBackups::restored(const Item& item, const ProfileStore& store)
{
    try {
        Project project = Project::decode(readWhole(item.url), store);
        project.name =
            T("project.copySuffix", {{"name", project.name}, {"date", localTime(item.date, "%H:%M")}});
        return project;
    } catch (const std::exception&) {
        throw TamloError::io(T("project.backupUnreadable", {{"file", item.url.string()}}));
    }
}

} // namespace tamlo
