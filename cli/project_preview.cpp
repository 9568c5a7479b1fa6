// tamlo project preview: a frame as the develop screen shows it.

#include "cli/interrupted.h"
#include "cli/messages.h"
#include "cli/project.h"
#include "cli/project_frames.h"
#include "cli/project_session.h"
#include "cli/roll_look.h"
#include "cli/usage_error.h"
#include "core/io/image_writer.h"

#include <charconv>
#include <ostream>
#include <stdexcept>

namespace tamlo::cli {
namespace {

constexpr Size kUsualFit{1600, 1000};
constexpr std::int64_t kLongestFit = 65'536;

/// "1600x1000".
Size fitOf(const std::string& text)
{
    Size fit;
    const char* const end = text.data() + text.size();
    const auto [cross, first] = std::from_chars(text.data(), end, fit.width);
    const bool hasCross = first == std::errc() && cross != end && *cross == 'x';
    const auto [last, second] = std::from_chars(hasCross ? cross + 1 : end, end, fit.height);
    if (!hasCross || second != std::errc() || last != end || std::min(fit.width, fit.height) < 1 ||
        std::max(fit.width, fit.height) > kLongestFit)
        throw UsageError(T("cli.project.badFit", {{"text", text}}));
    return fit;
}

bool isThere(const FrameScreen& screen, const std::string& tier)
{
    if (!screen.image()) return false;
    if (tier == "proxy") return true;
    const std::int64_t wanted = tier == "screen" ? screen.neededDetailLong() : screen.fullDetailLong();
    return screen.detailLong() >= wanted;
}

} // namespace

int run(const ProjectPreviewArguments& arguments, std::ostream& results)
{
    const Size fit = arguments.fit ? fitOf(*arguments.fit) : kUsualFit;
    if (arguments.output.extension() != ".png") throw UsageError(T("cli.project.needsPng"));
    const std::filesystem::path roll = rollPath(arguments.roll);
    RollLook look(ProfileStore::shared());
    look.views.tiles().setShowsGrid(false);
    look.open(roll);
    const FrameID id = frameMeant(arguments.frames, look.model.project(),
                                  [&](const Frame& frame) { return look.model.linker.state(frame.id); });
    FrameScreen& screen = look.views.screen();
    screen.setFit(fit, 1);
    look.model.selection.openFrame(id);
    const auto done = [&] {
        return look.model.lastActionFailed() || isThere(screen, arguments.tier) || !screen.isBusy();
    };
    if (!look.loop.runUntil(done)) throw Interrupted();
    if (look.model.lastActionFailed()) throw std::runtime_error(look.model.status());
    if (!screen.image())
        throw std::runtime_error(T("cli.project.noSource", {{"file", look.model.project().frame(id)->url}}));
    ImageWriter::save(*screen.image(), arguments.output.string(), 0, std::nullopt);
    const Tiers::Badge badge = screen.badge();
    results << arguments.output.string() << " · " << look.views.loads().sourceInfo(id) << " · "
            << screen.info() << " · " << badge.letter << std::endl;
    if (isThere(screen, arguments.tier)) return 0;
    tellNote(T("cli.project.lesserTier", {{"help", badge.help}})); // its file is away, or the tier failed
    return 1;
}

} // namespace tamlo::cli
