#include "app/preview/proxy_index.h"

#include "app/preview/proxy_file.h"
#include "app/project/whole_file.h"
#include "core/image/tamlo_error.h"
#include "core/profiles/formats/field_table.h"
#include "platform/atomic_file.h"
#include "platform/file_info.h"
#include "platform/file_lock.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <optional>

namespace tamlo {

namespace fs = std::filesystem;
using Entry = ProxyIndex::Entry;

template <>
struct FieldTable<Entry> {
    static std::span<const Field<Entry>> rows()
    {
        static constexpr Field<Entry> kRows[] = {
            requiredField<&Entry::key>("key", "", "path of the file in the cache"),
            requiredField<&Entry::tier>("tier", "pixels", "2048 for a proxy, 0 for a tile"),
            requiredField<&Entry::bytes>("bytes", "bytes", "its size"),
            field<&Entry::created>("created", "seconds since 1970", "when it was made"),
            field<&Entry::lastUsed>("lastUsed", "seconds since 1970", "when it was last of use"),
            field<&Entry::projects>("projects", "", "ids of the projects that use it"),
        };
        return kRows;
    }
};

namespace {

constexpr double kTouchSeconds = 3600;

/// Paths from the cache's folder that could be files of ours, and no way out of it.
bool isKey(const std::string& key)
{
    if (key.starts_with("thumbs/")) return key.size() > 7 && key.find('/', 7) == key.npos;
    return !key.empty() && key.find('/') == key.npos && key != "." && key != "..";
}

/// Absent for what is no index. An entry that can't be read is left out.
std::optional<ProxyIndex::Entries> parsed(const std::string& text)
{
    Json json;
    try {
        json = parseJsonText(text);
    } catch (const DecodeError&) {
        return std::nullopt;
    }
    if (!json.is_array()) return std::nullopt;
    ProxyIndex::Entries out;
    for (const Json& value : json) {
        try {
            Entry entry = readFields<Entry>(value, {});
            std::sort(entry.projects.begin(), entry.projects.end());
            if (isKey(entry.key) && entry.bytes >= 0) out.insert_or_assign(entry.key, std::move(entry));
        } catch (const DecodeError&) {}
    }
    return out;
}

std::optional<ProxyIndex::Entries> readIndex(const fs::path& file)
{
    try {
        const std::optional<std::string> text = readWholeIfThere(file);
        return text && !text->empty() ? parsed(*text) : std::nullopt;
    } catch (const TamloError&) {
        return std::nullopt;
    }
}

void addFiles(const fs::path& folder, const std::string& below, ProxyIndex::Entries& to)
{
    std::error_code problem;
    for (fs::directory_iterator at(folder / below, problem), end; !problem && at != end;
         at.increment(problem)) {
        const std::string name = at->path().filename().string();
        if (below.empty() && at->path().extension() != ".tproxy") continue;
        if (name.starts_with('.')) continue; // another program's temporary
        const auto info = platform::fileInfo(at->path());
        if (!info) continue;
        const std::string key = below.empty() ? name : below + "/" + name;
        to[key] = {key, below.empty() ? ProxyFile::kProxyLong : 0, info->size, info->mtime, info->mtime, {}};
    }
}

void addProjects(Entry& entry, const std::vector<std::string>& projects)
{
    std::vector<std::string> all;
    std::set_union(entry.projects.begin(), entry.projects.end(), projects.begin(), projects.end(),
                   std::back_inserter(all));
    entry.projects = std::move(all);
}

} // namespace

ProxyIndex::Entries cacheFiles(const fs::path& folder)
{
    ProxyIndex::Entries out;
    addFiles(folder, "", out);
    addFiles(folder, "thumbs", out);
    return out;
}

ProxyIndex::ProxyIndex(fs::path folder, double sessionStart)
    : folder_(std::move(folder)), file_(folder_ / "index.json"), sessionStart_(sessionStart)
{}

void ProxyIndex::ensureLoaded()
{
    const std::lock_guard loading(loading_);
    {
        const std::lock_guard lock(mutex_);
        if (isLoaded_) return;
    }
    std::optional<Entries> read = readIndex(file_);
    const bool isNew = !read;
    if (isNew) read = cacheFiles(folder_);
    const std::lock_guard lock(mutex_);
    // What was put before the first look stands; nothing can have been removed yet.
    entries_ = merged(std::move(entries_), *read, removed_);
    isLoaded_ = true;
    wasRebuilt_ = isNew && !read->empty();
}

ProxyIndex::Entries ProxyIndex::merged(Entries ours, const Entries& theirs,
                                       const std::set<std::string>& removed)
{
    for (const auto& [key, entry] : theirs) {
        if (removed.contains(key)) continue;
        const auto [own, isNew] = ours.emplace(key, entry);
        if (isNew) continue;
        own->second.lastUsed = std::max(own->second.lastUsed, entry.lastUsed);
        addProjects(own->second, entry.projects);
    }
    return ours;
}

ProxyIndex::Entries ProxyIndex::loaded()
{
    ensureLoaded();
    const std::lock_guard lock(mutex_);
    return entries_;
}

bool ProxyIndex::wasRebuilt()
{
    ensureLoaded();
    const std::lock_guard lock(mutex_);
    return wasRebuilt_;
}

void ProxyIndex::put(Entry entry)
{
    ensureLoaded();
    const std::lock_guard lock(mutex_);
    std::sort(entry.projects.begin(), entry.projects.end());
    if (const auto known = entries_.find(entry.key); known != entries_.end())
        addProjects(entry, known->second.projects);
    removed_.erase(entry.key);
    hasNews_ = true;
    entries_.insert_or_assign(entry.key, std::move(entry));
}

void ProxyIndex::remove(const std::vector<std::string>& keys)
{
    ensureLoaded();
    const std::lock_guard lock(mutex_);
    for (const std::string& key : keys) {
        entries_.erase(key);
        removed_.insert(key);
    }
    hasNews_ = hasNews_ || !keys.empty();
}

void ProxyIndex::touch(const std::string& key, double now)
{
    ensureLoaded();
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(key);
    if (found == entries_.end()) return;
    Entry& entry = found->second;
    // A use in this session makes it one of this session's files, however fresh the last one was.
    if (now - entry.lastUsed <= kTouchSeconds && entry.lastUsed >= sessionStart_) return;
    entry.lastUsed = now;
    hasNews_ = true;
}

void ProxyIndex::bind(const std::vector<std::string>& keys, const std::string& project)
{
    ensureLoaded();
    const std::lock_guard lock(mutex_);
    for (const std::string& key : keys) {
        const auto found = entries_.find(key);
        if (found == entries_.end()) continue;
        std::vector<std::string>& projects = found->second.projects;
        const auto place = std::lower_bound(projects.begin(), projects.end(), project);
        if (place != projects.end() && *place == project) continue;
        projects.insert(place, project);
        hasNews_ = true;
    }
}

void ProxyIndex::flush(double minIntervalSeconds, double now)
{
    Entries ours;
    std::set<std::string> removed;
    {
        const std::lock_guard lock(mutex_);
        if (!hasNews_ || (minIntervalSeconds > 0 && now - lastFlush_ < minIntervalSeconds)) return;
        ours = entries_;
        removed.swap(removed_);
        hasNews_ = false;
        lastFlush_ = now;
    }
    try {
        std::error_code ignored;
        fs::create_directories(folder_, ignored);
        const platform::FileLock lock = platform::FileLock::take(file_.string());
        if (const std::optional<Entries> theirs = readIndex(file_))
            ours = merged(std::move(ours), *theirs, removed);
        Json list = Json::array();
        for (const auto& [key, entry] : ours) list.push_back(writeFields(entry));
        platform::writeWhole(file_.string(), list.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n",
                             platform::Durability::cache);
    } catch (const platform::PlatformError&) {
        const std::lock_guard lock(mutex_); // the next flush tries again
        hasNews_ = true;
        removed_.merge(removed);
    }
}

} // namespace tamlo
