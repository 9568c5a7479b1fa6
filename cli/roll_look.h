// The session of one look at a roll: with pictures, without a screen, and without a trace in the list of
// recent rolls.
#pragma once

#include "app/preview/program_build.h"
#include "app/shell/live_views.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/preferences.h"

#include <filesystem>
#include <stdexcept>

namespace tamlo::cli {

struct RollLook {
    explicit RollLook(ProfileStore& store)
        : views({loop, store, nullptr, ProxyCache::defaultFolder(), programBuild()}),
          model({loop, store, questions, views, clipboard, volumes, preferences})
    {
        views.attach(model);
        views.screen().setReadsAhead(false);
    }

    /// Errors: std::runtime_error for a roll that can't be opened.
    void open(const std::filesystem::path& roll)
    {
        if (!model.saver.open(roll, Saver::Access::read)) throw std::runtime_error(model.status());
    }

    platform::HeadlessLoop loop;
    HeadlessQuestions questions;
    platform::SessionClipboard clipboard;
    platform::SystemVolumes volumes;
    platform::FilePreferences preferences;
    LiveViews views;
    AppModel model;
};

} // namespace tamlo::cli
