#include "platform/volumes.h"

#include "platform/wake_event.h"

#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <set>
#include <sstream>
#include <thread>

namespace tamlo::platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* kMountTable = "/proc/self/mountinfo";

/// Blanks, tabs, line feeds and backslashes stand in the table as three octal digits.
std::string unescaped(const std::string& text)
{
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() &&
            std::all_of(text.begin() + static_cast<long>(i) + 1, text.begin() + static_cast<long>(i) + 4,
                        isOctal)) {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::set<std::string> mountsNow()
{
    std::ifstream file(kMountTable);
    std::ostringstream table;
    table << file.rdbuf();
    const std::vector<std::string> points = mountPoints(table.str());
    return {points.begin(), points.end()};
}

bool isUserName(const std::string& name)
{
    std::array<char, 16384> memory{};
    passwd entry{};
    passwd* found = nullptr;
    return ::getpwnam_r(name.c_str(), &entry, memory.data(), memory.size(), &found) == 0 && found;
}

std::optional<VolumePlace> placeOf(const fs::path& path, const std::set<std::string>& mounts)
{
    return volumeOf(
        path, [&](const std::string& root) { return mounts.contains(root); }, isUserName);
}

/// A thread of its own sleeps on the table; the kernel wakes it when a mount comes or goes.
class TableWatch : public VolumeWatch {
public:
    TableWatch(MainLoop& loop, std::function<void()> changed)
        : alive_(std::make_shared<std::atomic<bool>>(true)),
          changed_([alive = alive_, work = std::move(changed)] {
              if (*alive) work();
          }),
          thread_([this, &loop] { sleepOnTable(loop); })
    {}
    ~TableWatch() override
    {
        *alive_ = false;
        end_.set();
    }

private:
    void sleepOnTable(MainLoop& loop)
    {
        const int table = ::open(kMountTable, O_RDONLY | O_CLOEXEC);
        if (table < 0) return;
        std::array<pollfd, 2> waited{pollfd{table, POLLPRI, 0}, pollfd{end_.descriptor(), POLLIN, 0}};
        while (*alive_ && (::poll(waited.data(), waited.size(), -1) >= 0 || errno == EINTR)) {
            if (!*alive_ || (waited[0].revents & (POLLPRI | POLLERR)) == 0) continue;
            loop.post(changed_);
        }
        ::close(table);
    }

    WakeEvent end_;
    std::shared_ptr<std::atomic<bool>> alive_;
    std::function<void()> changed_;
    std::jthread thread_;
};

} // namespace

std::vector<std::string> mountPoints(const std::string& table)
{
    constexpr int kPlaceOfPoint = 4;
    std::vector<std::string> points;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word;
        for (int i = 0; i <= kPlaceOfPoint; ++i) words >> word;
        if (words) points.push_back(unescaped(word));
    }
    return points;
}

std::optional<VolumePlace> volumeOf(const fs::path& path,
                                    const std::function<bool(const std::string&)>& isMounted,
                                    const std::function<bool(const std::string&)>& isUser)
{
    std::vector<std::string> parts;
    for (const fs::path& part : path.lexically_normal()) parts.push_back(part.string());
    if (parts.size() < 2 || parts[0] != "/") return std::nullopt;
    // The first `count` parts, when something stands below them.
    const auto place = [&](std::size_t count) -> std::optional<VolumePlace> {
        if (parts.size() <= count || parts[count].empty()) return std::nullopt;
        std::string root;
        for (std::size_t i = 1; i < count; ++i) root += "/" + parts[i];
        return VolumePlace{root, parts[count - 1]};
    };
    const auto starts = [&](std::initializer_list<const char*> names) {
        return parts.size() > names.size() && std::equal(names.begin(), names.end(), parts.begin() + 1);
    };
    if (starts({"mnt"})) return place(3);
    if (starts({"run", "media"})) return place(5);
    if (starts({"run", "user"}) && parts.size() > 5 && parts[4] == "gvfs") {
        std::optional<VolumePlace> found = place(6);
        if (found) found->isGvfs = true;
        return found;
    }
    if (!starts({"media"})) return std::nullopt;
    const std::optional<VolumePlace> shallow = place(3), deep = place(4);
    if (!deep || isMounted(shallow->root)) return shallow;
    return isMounted(deep->root) || isUser(shallow->name) ? deep : shallow;
}

bool SystemVolumes::isOffline(const fs::path& path) const
{
    const std::set<std::string> mounts = mountsNow();
    const std::optional<VolumePlace> place = placeOf(path, mounts);
    if (!place) return false;
    std::error_code ignored;
    return place->isGvfs ? !fs::exists(place->root, ignored) : !mounts.contains(place->root);
}

std::optional<std::string> SystemVolumes::name(const fs::path& path) const
{
    const std::optional<VolumePlace> place = placeOf(path, mountsNow());
    return place ? std::optional(place->name) : std::nullopt;
}

std::unique_ptr<VolumeWatch> SystemVolumes::watch(MainLoop& loop, std::function<void()> changed)
{
    return std::make_unique<TableWatch>(loop, std::move(changed));
}

} // namespace tamlo::platform
