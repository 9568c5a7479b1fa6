#include "app/shell/recents.h"

#include "app/shell/app_model.h"
#include "platform/file_lock.h"
#include "platform/platform_error.h"

#include <algorithm>

namespace tamlo {

namespace {

constexpr const char* kLastProject = "lastProject";

} // namespace

void Recents::registerOpenedProject()
{
    const AppSeams& seams = model_.seams();
    if (!seams.registry || !model_.projectURL()) return;
    try {
        seams.preferences.setText(kLastProject, model_.projectURL()->string());
    } catch (const platform::PlatformError&) {
        // It is not opened by itself next time; nothing else depends on it.
    }
    const auto frames = static_cast<std::int64_t>(model_.project().frames.size());
    seams.registry->opened(*model_.projectURL(), frames, seams.loop.date());
    seams.views.openedProject();
}

void Recents::registerClosedProject()
{
    const AppSeams& seams = model_.seams();
    if (!seams.registry || !model_.projectURL()) return;
    seams.views.closingProject();
    const auto frames = static_cast<std::int64_t>(model_.project().frames.size());
    seams.registry->closed(*model_.projectURL(), frames, projectIsSettled(), seams.loop.date());
}

void Recents::update()
{
    const AppSeams& seams = model_.seams();
    if (seams.registry && model_.projectURL())
        seams.registry->update(*model_.projectURL(), seams.loop.date());
}

bool Recents::openLastProject()
{
    const AppSeams& seams = model_.seams();
    const auto last = seams.registry ? seams.preferences.text(kLastProject) : std::nullopt;
    if (!last) return false;
    std::error_code ignored;
    const bool isThere = std::filesystem::exists(*last, ignored);
    if (isThere && model_.saver.open(*last)) return true;
    const bool isElsewhere = isThere && !platform::FileLock::tryTake(platform::canonicalPath(*last));
    if (isElsewhere) return false; // another program has it open: nothing is wrong with it
    try {
        seams.preferences.setText(kLastProject, std::nullopt);
    } catch (const platform::PlatformError&) {
        // It is tried once more next time.
    }
    return false;
}

bool Recents::projectIsSettled() const
{
    const Roll& roll = model_.project().frames;
    return std::all_of(roll.begin(), roll.end(),
                       [](const Frame& frame) { return !frame.process || frame.exportedAt; });
}

std::vector<ProjectRegistry::RecentItem> Recents::menu() const
{
    const AppSeams& seams = model_.seams();
    if (!seams.registry) return {};
    const auto& url = model_.projectURL();
    return seams.registry->recentMenu(url ? std::optional(url->string()) : std::nullopt, seams.preferences);
}

void Recents::clearRecentProjects()
{
    ProjectRegistry::clearRecent(model_.seams().preferences, model_.seams().loop.date());
}

} // namespace tamlo
