#include "cli/project_session.h"

#include "cli/interrupted.h"
#include "cli/project_frames.h"
#include "cli/usage_error.h"
#include "core/image/tamlo_error.h"
#include "core/io/image_loader.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/text/loc.h"
#include "platform/user_folder.h"

#include <stdexcept>

namespace tamlo::cli {
namespace {

namespace fs = std::filesystem;

bool isThere(const fs::path& path)
{
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

/// The roll as the user gave it, with the extension that he may leave out.
fs::path rollName(const fs::path& named)
{
    const bool isProject = named.extension() == Project::kExtension || isThere(named);
    return isProject ? named : fs::path(named.string() + std::string(Project::kExtension));
}

} // namespace

std::optional<Size> sourceSizeOf(const Frame& frame)
{
    try {
        return ImageLoader::pictureSize(frame.url, 0);
    } catch (const TamloError&) {
        return std::nullopt; // lost, or no picture: its crop stays as it is
    }
}

fs::path rollPath(const fs::path& named)
{
    return fs::absolute(rollName(named)).lexically_normal();
}

ProjectSession::ProjectSession(fs::path roll, Access access)
    : roll_(std::move(roll)),
      registry_(platform::userFolder()),
      model_({loop_, ProfileStore::shared(), questions_, noViews_, clipboard_, volumes_, preferences_,
              access == Access::write ? &registry_ : nullptr, sourceSizeOf})
{}

std::unique_ptr<ProjectSession> ProjectSession::open(const fs::path& named, Access access)
{
    const fs::path roll = rollPath(named);
    if (!isThere(roll)) throw UsageError(T("cli.noFile", {{"file", rollName(named).string()}}));
    std::unique_ptr<ProjectSession> session(new ProjectSession(roll, access));
    if (!session->model_.saver.open(roll, access)) throw std::runtime_error(session->model_.status());
    return session;
}

std::unique_ptr<ProjectSession> ProjectSession::fresh(const fs::path& named)
{
    const fs::path roll = rollPath(named);
    if (isThere(roll)) throw UsageError(T("cli.project.exists", {{"file", rollName(named).string()}}));
    return std::unique_ptr<ProjectSession>(new ProjectSession(roll, Access::write));
}

std::vector<FrameID> RollSession::frames(const std::string& text) const
{
    return framesMeant(text, project(), [this](const Frame& frame) { return stateOf(frame); });
}

FrameID RollSession::frame(const std::string& text) const
{
    return frameMeant(text, project(), [this](const Frame& frame) { return stateOf(frame); });
}

FileState RollSession::stateOf(const Frame& frame) const
{
    return model().linker.state(frame.id);
}

void ProjectSession::waitUntil(const std::function<bool()>& done)
{
    if (!loop_.runUntil(done)) throw Interrupted();
}

void ProjectSession::save()
{
    bool ended = false;
    std::optional<std::string> problem;
    model_.saver.saveProject(roll_, [&](std::optional<std::string> why) {
        problem = std::move(why);
        ended = true;
    });
    waitUntil([&] { return ended; });
    if (problem) throw std::runtime_error(*problem);
    model_.recents.registerClosedProject();
}

} // namespace tamlo::cli
