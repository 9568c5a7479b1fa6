// Application: a session with pictures, from its start to its end: the model, what it stands on, and the
// order in which things begin and are put away. Who answers its questions and keeps what is copied stands
// around it: a window, or the stand-ins of a program without one. In service mode it opens, remembers and
// writes no project, registry or preference.
#pragma once

#include "app/shell/app_model.h"
#include "app/shell/graphics_probe.h"
#include "app/shell/live_views.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace tamlo {

/// Those of the user, changed for this session alone.
class SessionPreferences : public platform::Preferences {
public:
    std::optional<std::string> text(const std::string& key) const override;
    void setText(const std::string& key, const std::optional<std::string>& value) override;

private:
    std::map<std::string, std::optional<std::string>> changed_;
};

/// What a program gives its session; all of it outlives the session.
struct Surroundings {
    platform::MainLoop& loop;
    ProfileStore& store;
    Questions& questions;
    platform::Clipboard& clipboard;
};

class Application {
public:
    enum class Mode { service, user };

    Application(Mode mode, Surroundings around, std::string build);
    ~Application();

    AppModel& model() { return model_; }
    const AppModel& model() const { return model_; }
    LiveViews& views() { return views_; }
    GraphicsProbe& graphics() { return graphics_; }

    /// Timers, the probe, volumes that come and go; the last project, where another is not asked for.
    void start(bool opensLastProject);
    /// Saves what has a file, and leaves the project.
    void end();

private:
    void openLastProjectIfAny();

    Mode mode_;
    platform::MainLoop& loop_;
    std::unique_ptr<platform::Preferences> preferences_;
    platform::SystemVolumes volumes_;
    std::optional<ProjectRegistry> registry_;
    LiveViews views_;
    AppModel model_;
    GraphicsProbe graphics_;
    std::unique_ptr<platform::VolumeWatch> volumeWatch_;
};

} // namespace tamlo
