// Recents: which projects were opened, and how they were left. A session that keeps no such record has no
// registry, and all of this does nothing.
#pragma once

#include "app/project/project_registry.h"

#include <vector>

namespace tamlo {

class AppModel;

class Recents {
public:
    explicit Recents(AppModel& model) : model_(model) {}

    /// The project has got its file: it is the one to open next time, and the first of the recent ones.
    void registerOpenedProject();
    void registerClosedProject();
    /// The project was written.
    void update();
    /// Opens the project that was open last. One that is gone or can't be read is not tried again, and the
    /// present project stays.
    bool openLastProject();
    /// Every frame with a process has been exported since it was last changed.
    bool projectIsSettled() const;

    /// The ten of the menu, without the open one.
    std::vector<ProjectRegistry::RecentItem> menu() const;
    /// Empties the list; what is opened from now on fills it again.
    void clearRecentProjects();

private:
    AppModel& model_;
};

} // namespace tamlo
