#include "app/shell/application.h"

#include "app/preview/source_decode.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/platform_error.h"
#include "platform/user_folder.h"

#include <filesystem>

namespace tamlo {
namespace {

constexpr const char* kLastProject = "lastProject";

std::optional<Size> sourceSize(const Frame& frame)
{
    return SourceDecode::fullPixelSize(frame.url);
}

} // namespace

std::optional<std::string> SessionPreferences::text(const std::string& key) const
{
    const auto found = changed_.find(key);
    return found == changed_.end() ? platform::preference(key) : found->second;
}

void SessionPreferences::setText(const std::string& key, const std::optional<std::string>& value)
{
    changed_[key] = value;
}

Application::Application(Mode mode, Surroundings around, std::string build)
    : mode_(mode),
      loop_(around.loop),
      preferences_(mode == Mode::service
                       ? std::unique_ptr<platform::Preferences>(std::make_unique<SessionPreferences>())
                       : std::make_unique<platform::FilePreferences>()),
      registry_(mode == Mode::service ? std::nullopt
                                      : std::make_optional<ProjectRegistry>(platform::userFolder())),
      views_({around.loop, around.store, registry_ ? &*registry_ : nullptr, ProxyCache::defaultFolder(),
              std::move(build)}),
      model_({around.loop, around.store, around.questions, views_, around.clipboard, volumes_, *preferences_,
              registry_ ? &*registry_ : nullptr, sourceSize}),
      graphics_(around.loop)
{
    views_.attach(model_);
    model_.exporter.setStats([this](const Frame& frame, WBMode wb, const RGBImage& decoded) {
        return views_.previews().frames.exportStats(frame, wb, decoded);
    });
}

Application::~Application()
{
    views_.screen().cancelPending();
}

void Application::start(bool opensLastProject)
{
    graphics_.startGraphicsProbe();
    if (mode_ == Mode::user)
        model_.stayOpen();
    else
        volumeWatch_ = volumes_.watch(loop_, [this] { model_.linker.recheckLostFrames(); });
    if (mode_ == Mode::user && opensLastProject) openLastProjectIfAny();
}

void Application::openLastProjectIfAny()
{
    const auto last = preferences_->text(kLastProject);
    if (!last || !model_.project().frames.empty()) return;
    std::error_code problem;
    if (std::filesystem::exists(*last, problem) && model_.saver.open(*last)) return;
    try {
        preferences_->setText(kLastProject, std::nullopt);
    } catch (const platform::PlatformError&) {
        // It is looked for again next time.
    }
}

void Application::end()
{
    if (mode_ == Mode::user) {
        model_.saver.autosave();
        model_.recents.registerClosedProject();
    }
    views_.tiles().flush(true);
}

} // namespace tamlo
