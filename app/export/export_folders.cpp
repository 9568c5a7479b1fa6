#include "app/export/export_folders.h"

#include "app/export/export_naming.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace tamlo {
namespace {

using Json = nlohmann::json;

constexpr const char* kFolders = "lastExportFolders";
constexpr const char* kOldFolder = "lastExportFolder";

std::size_t letters(std::string_view text)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::optional<ExportFolder> decoded(const std::string& text)
{
    const Json item = Json::parse(text, nullptr, false);
    if (!item.is_object() || !item.contains("path") || !item["path"].is_string()) return std::nullopt;
    ExportFolder folder = ExportFolder::at(item["path"]);
    if (item.contains("name") && item["name"].is_string()) folder.name = item["name"];
    if (item.contains("bookmark") && item["bookmark"].is_string()) folder.bookmark = item["bookmark"];
    return folder;
}

} // namespace

ExportFolder ExportFolder::at(const std::string& path)
{
    std::filesystem::path folder(path);
    if (!folder.has_filename()) folder = folder.parent_path();
    return {std::nullopt, folder.filename().string(), path};
}

std::vector<ExportFolders::Item> ExportFolders::current(const List& folders, const IsFolder& isDir,
                                                        const platform::Volumes& volumes)
{
    constexpr const char* kBelow = "/."; // a volume's own folder lies on the volume too
    std::vector<Item> items;
    for (const ExportFolder& folder : folders) {
        State state = State::available;
        if (!isDir(folder.path))
            state = volumes.isOffline(folder.path + kBelow) ? State::diskMissing : State::folderMissing;
        items.push_back({folder, state});
    }
    return items;
}

ExportFolders::List ExportFolders::push(const ExportFolder& folder, List onto)
{
    const std::string key = ExportNaming::key(folder.path);
    std::erase_if(onto, [&](const ExportFolder& one) { return ExportNaming::key(one.path) == key; });
    onto.insert(onto.begin(), folder);
    if (onto.size() > kMost) onto.resize(kMost);
    return onto;
}

std::string ExportFolders::shortPath(std::string_view path, std::size_t max, std::string_view home)
{
    std::string shown(path);
    if (!home.empty() && path.starts_with(home) && (path.size() == home.size() || path[home.size()] == '/'))
        shown = "~" + shown.substr(home.size());
    constexpr std::size_t kDots = 2; // "…/"
    if (letters(shown) <= max) return shown;
    std::size_t from = shown.rfind('/');
    while (from != 0 && from != shown.npos) {
        const std::size_t earlier = shown.rfind('/', from - 1);
        if (earlier == shown.npos || letters(std::string_view(shown).substr(earlier + 1)) + kDots > max)
            break;
        from = earlier;
    }
    return from == shown.npos ? shown : "…" + shown.substr(from);
}

ExportFolders::List ExportFolders::load(const platform::Preferences& preferences)
{
    List folders;
    if (const auto items = preferences.list(kFolders)) {
        for (const std::string& item : *items)
            if (auto folder = decoded(item)) folders.push_back(std::move(*folder));
    } else if (const auto old = preferences.text(kOldFolder)) {
        folders.push_back(ExportFolder::at(*old));
    }
    return folders;
}

void ExportFolders::store(const List& folders, platform::Preferences& preferences)
{
    std::vector<std::string> items;
    for (const ExportFolder& folder : folders) {
        Json item{{"name", folder.name}, {"path", folder.path}};
        if (folder.bookmark) item["bookmark"] = *folder.bookmark;
        items.push_back(item.dump(-1, ' ', false, Json::error_handler_t::replace));
    }
    preferences.setList(kFolders, items);
}

} // namespace tamlo
