// tamlo project backups, restore, recent.

#include "app/project/project_backups.h"
#include "cli/columns.h"
#include "cli/messages.h"
#include "cli/project.h"
#include "cli/project_session.h"
#include "cli/usage_error.h"
#include "core/profiles/formats/json_codec.h"
#include "platform/preferences.h"
#include "platform/user_folder.h"

#include <algorithm>
#include <chrono>
#include <ostream>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;

double now()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string stampOf(const ProjectBackups::Item& item)
{
    return item.url.stem().string();
}

std::string framesText(std::size_t n)
{
    return Loc::string("project.frames", static_cast<std::int64_t>(n));
}

/// In megabytes with two digits.
double megabytes(std::int64_t bytes)
{
    return static_cast<double>(bytes) / 1e6;
}

int tellUsage(bool json, std::ostream& results)
{
    const ProjectBackups::Usage usage = ProjectBackups::usage();
    if (json)
        results << prettyJson({{"files", usage.files}, {"bytes", usage.bytes}}) << std::endl;
    else
        results << T("cli.project.backupUsage", {{"files", usage.files}, {"mb", megabytes(usage.bytes)}})
                << std::endl;
    return 0;
}

} // namespace

int run(const ProjectBackupsArguments& arguments, std::ostream& results)
{
    if (arguments.purgeDays) {
        const std::size_t gone = ProjectBackups::purge(*arguments.purgeDays, now());
        results << T("cli.project.purged", {{"n", gone}}) << std::endl;
        return 0;
    }
    if (arguments.usage) return tellUsage(arguments.json, results);
    if (arguments.roll.empty()) throw UsageError(T("cli.project.needsRoll"));
    // The copies outlive their roll.
    const auto items = ProjectBackups::list(ProjectBackups::dir(rollPath(arguments.roll)), true);
    Json list = Json::array();
    for (const ProjectBackups::Item& item : items) {
        list.push_back({{"stamp", stampOf(item)}, {"file", item.url.string()}, {"bytes", item.bytes}});
        list.back()["frames"] = item.frames ? Json(*item.frames) : Json();
    }
    if (arguments.json) {
        results << prettyJson(list) << std::endl;
        return 0;
    }
    for (const ProjectBackups::Item& item : items)
        results << stampOf(item) << "  "
                << (item.frames ? framesText(*item.frames) : T("cli.project.state.unreadable")) << "  "
                << Fmt::number(megabytes(item.bytes), 2) << " MB\n";
    if (items.empty()) tell(T("restore.empty"));
    return 0;
}

int run(const ProjectRestoreArguments& arguments, std::ostream& results)
{
    const fs::path roll = rollPath(arguments.roll);
    const auto items = ProjectBackups::list(ProjectBackups::dir(roll), false);
    const auto item = std::ranges::find(items, arguments.stamp, stampOf);
    if (item == items.end())
        throw UsageError(T("cli.project.noStamp", {{"stamp", arguments.stamp}, {"file", roll.string()}}));
    const auto session = ProjectSession::fresh(arguments.output);
    if (!session->model().saver.restore(*item)) throw std::runtime_error(session->model().status());
    session->save();
    results << T("cli.project.restored", {{"file", session->roll().string()},
                                          {"frames", framesText(session->project().frames.size())}})
            << std::endl;
    return 0;
}

int run(const ProjectRecentArguments& arguments, std::ostream& results)
{
    platform::FilePreferences preferences;
    if (arguments.clear) {
        ProjectRegistry::clearRecent(preferences, now());
        results << T("cli.project.recentCleared") << std::endl;
        return 0;
    }
    const ProjectRegistry registry(platform::userFolder());
    Json list = Json::array();
    for (const auto& item : registry.recentMenu(std::nullopt, preferences)) {
        list.push_back({{"title", item.title}, {"file", item.url}});
        if (!arguments.json) results << item.title << "  " << item.url << "\n";
    }
    if (arguments.json) results << prettyJson(list) << std::endl;
    return 0;
}

} // namespace tamlo::cli
