#include "platform/preferences.h"

#include "platform/atomic_file.h"
#include "platform/platform_error.h"
#include "platform/user_folder.h"

#include <algorithm>
#include <fstream>
#include <map>

namespace tamlo::platform {
namespace {

namespace fs = std::filesystem;

fs::path preferencesFile()
{
    return userFolder() / "preferences";
}

std::map<std::string, std::string> readAll()
{
    std::map<std::string, std::string> all;
    std::ifstream file(preferencesFile());
    for (std::string line; std::getline(file, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos) all[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return all;
}

} // namespace

std::optional<std::string> preference(const std::string& key)
{
    const auto all = readAll();
    const auto found = all.find(key);
    return found == all.end() ? std::nullopt : std::optional(found->second);
}

void setPreference(const std::string& key, const std::optional<std::string>& value)
{
    std::map<std::string, std::string> all = readAll();
    all.erase(key);
    if (value) {
        std::string line = *value;
        std::replace(line.begin(), line.end(), '\n', ' ');
        all[key] = line;
    }
    std::string text;
    for (const auto& [name, content] : all) text += name + "=" + content + "\n";

    const fs::path path = preferencesFile();
    std::error_code problem;
    fs::create_directories(path.parent_path(), problem);
    if (problem) throw PlatformError(problem.message());
    AtomicFile file(path.string());
    file.write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    file.commit();
}

} // namespace tamlo::platform
