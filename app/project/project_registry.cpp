#include "app/project/project_registry.h"

#include "app/project/file_resolver.h"
#include "app/project/project_backups.h"
#include "app/project/recent_titles.h"
#include "app/project/whole_file.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/formats/field_table.h"
#include "core/text/error_words.h"
#include "core/text/loc.h"
#include "platform/atomic_file.h"
#include "platform/content_hash.h"
#include "platform/file_lock.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <set>

namespace tamlo {

namespace fs = std::filesystem;
using Entry = ProjectRegistry::Entry;

template <>
struct FieldTable<Entry> {
    static std::span<const Field<Entry>> rows()
    {
        static constexpr Field<Entry> kRows[] = {
            requiredField<&Entry::id>("id", "", "digits of the project's place"),
            requiredField<&Entry::path>("path", "", "the project's file"),
            field<&Entry::name>("name", "", "its name without extension"),
            field<&Entry::lastOpened>("lastOpened", "seconds since 1970", "when it was last opened"),
            field<&Entry::lastClosed>("lastClosed", "seconds since 1970", "when it was last closed"),
            field<&Entry::settledAtClose>("settledAtClose", "", "all that was developed had been exported"),
            field<&Entry::frameCount>("frameCount", "", "frames at the last update"),
        };
        return kRows;
    }
};

namespace {

constexpr const char* kClearedKey = "recentClearedAt";

struct Parsed {
    ProjectRegistry::Entries entries;
    bool damaged = false;
};

/// What can be understood; of two entries of one id the first.
Parsed parsed(const std::string& text)
{
    Parsed out;
    Json json;
    try {
        json = parseJsonText(text);
    } catch (const DecodeError&) {
        return {{}, true};
    }
    if (!json.is_array()) return {{}, true};
    for (const Json& value : json) {
        try {
            Entry entry = readFields<Entry>(value, {});
            std::string id = entry.id;
            out.entries.emplace(std::move(id), std::move(entry));
        } catch (const DecodeError&) {
            out.damaged = true;
        }
    }
    return out;
}

std::vector<Entry> newestFirst(const ProjectRegistry::Entries& entries)
{
    std::vector<Entry> list;
    for (const auto& [id, entry] : entries) list.push_back(entry);
    std::stable_sort(list.begin(), list.end(),
                     [](const Entry& a, const Entry& b) { return a.lastOpened > b.lastOpened; });
    return list;
}

bool isThere(const std::string& path)
{
    std::error_code ignored;
    return fs::exists(path, ignored);
}

} // namespace

ProjectRegistry::ProjectRegistry(fs::path folder) : file_(std::move(folder) / "projects.json")
{}

ProjectRegistry::Entries ProjectRegistry::load() const
{
    const std::optional<std::string> text = readWholeIfThere(file_);
    return text ? parsed(*text).entries : Entries();
}

void ProjectRegistry::save(const Entries& entries)
{
    try {
        std::error_code problem;
        fs::create_directories(file_.parent_path(), problem);
        if (problem) throw platform::PlatformError(problem.message());
        if (const auto text = readWholeIfThere(file_); text && parsed(*text).damaged) {
            metDamage_ = true;
            platform::writeWhole(file_.string() + ".damaged", *text);
        }
        Json list = Json::array();
        for (const Entry& entry : newestFirst(entries)) list.push_back(writeFields(entry));
        platform::writeWhole(file_.string(), prettyJson(list));
    } catch (const platform::PlatformError& error) {
        throw TamloError::io(
            T("io.err.write", {{"file", file_.string()}, {"error", ErrorWords::reason(error)}}));
    }
}

std::string ProjectRegistry::idFor(const Entries& entries, const fs::path& url,
                                   const std::function<bool(const std::string&)>& exists)
{
    const std::string path = FileResolver::standardised(url);
    const std::string tag = ProjectBackups::tag(path);
    char longTag[20];
    std::snprintf(longTag, sizeof longTag, "%016llx",
                  static_cast<unsigned long long>(platform::xxHash64(path)));
    if (const auto own = entries.find(longTag); own != entries.end() && own->second.path == path)
        return longTag;
    const auto taken = entries.find(tag);
    if (taken == entries.end() || taken->second.path == path || !exists(taken->second.path)) return tag;
    return longTag;
}

bool ProjectRegistry::change(const fs::path& url, double now, const std::function<void(Entry&)>& edit)
{
    try {
        const platform::FileLock lock = platform::FileLock::take(file_.string());
        Entries entries = load();
        const std::string path = FileResolver::standardised(url);
        const std::string id = idFor(entries, path, isThere);
        Entry& entry = entries[id];
        if (entry.path != path) { // new, or of a project that is gone
            entry = Entry();
            entry.id = id;
            entry.path = path;
            entry.lastOpened = now;
        }
        entry.name = fs::path(path).stem().string();
        edit(entry);
        save(entries);
        return true;
    } catch (const platform::PlatformError&) {
        return false; // the list of projects is not worth stopping the work for
    } catch (const TamloError&) {
        return false;
    }
}

bool ProjectRegistry::opened(const fs::path& url, std::int64_t frames, double now)
{
    return change(url, now, [&](Entry& entry) {
        entry.lastOpened = now;
        entry.frameCount = frames;
    });
}

bool ProjectRegistry::closed(const fs::path& url, std::int64_t frames, bool settled, double now)
{
    return change(url, now, [&](Entry& entry) {
        entry.lastClosed = now;
        entry.settledAtClose = settled;
        entry.frameCount = frames;
    });
}

bool ProjectRegistry::update(const fs::path& url, double now)
{
    return change(url, now, [](Entry&) {});
}

std::vector<ProjectRegistry::RecentItem>
ProjectRegistry::recent(const Entries& entries, const std::optional<std::string>& current,
                        std::optional<double> clearedAt,
                        const std::function<bool(const std::string&)>& exists, std::size_t limit)
{
    std::vector<std::string> paths;
    std::set<std::string> seen;
    if (current) seen.insert(FileResolver::standardised(*current));
    for (const Entry& entry : newestFirst(entries)) {
        if (paths.size() >= limit) break;
        if (clearedAt && !(entry.lastOpened > *clearedAt)) continue;
        const std::string path = FileResolver::standardised(entry.path);
        if (!entry.path.empty() && seen.insert(path).second && exists(path)) paths.push_back(path);
    }
    std::vector<RecentItem> items;
    const std::vector<std::string> titles = recentTitles(paths);
    for (std::size_t i = 0; i < paths.size(); ++i) items.push_back({titles[i], paths[i]});
    return items;
}

std::vector<ProjectRegistry::RecentItem>
ProjectRegistry::recentMenu(const std::optional<std::string>& current,
                            const platform::Preferences& preferences) const
{
    constexpr std::size_t kMenuItems = 10;
    return recent(load(), current, preferences.number(kClearedKey), isThere, kMenuItems);
}

void ProjectRegistry::clearRecent(platform::Preferences& preferences, double now)
{
    preferences.setNumber(kClearedKey, now);
}

} // namespace tamlo
