#include "cli/service.h"

#include "app/preview/program_build.h"
#include "app/shell/headless_run.h"
#include "cli/interrupted.h"
#include "core/profiles/catalogue/profile_store.h"
#include "platform/console.h"
#include "platform/environment.h"

#include <algorithm>
#include <iostream>

namespace tamlo::cli {
namespace {

/// Before "--", which ends the options.
bool takeServiceArgument(std::vector<std::string>& arguments)
{
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    const auto kept = std::remove(arguments.begin(), end, "--service");
    const bool found = kept != end;
    arguments.erase(kept, end);
    return found;
}

int headlessRun(const std::string& input, const std::string& output)
{
    platform::catchStopSignals();
    platform::HeadlessLoop loop;
    std::optional<HeadlessRun::Result> result;
    {
        HeadlessQuestions questions;
        questions.pairChoice = FolderScan::PairChoice::both;
        platform::SessionClipboard clipboard;
        Application application(Application::Mode::service,
                                {loop, ProfileStore::shared(), questions, clipboard}, programBuild());
        application.start(false);
        HeadlessRun run(application, loop, [&](HeadlessRun::Result ended) { result = std::move(ended); });
        run.runSmokeTest(input, output, platform::environmentVariable("TAMLO_SMOKE_SHEET"));
        if (!loop.runUntil([&] { return result.has_value(); })) return Interrupted::kStatus;
        application.end();
    }
    std::cerr << result->line << std::endl;
    return result->status;
}

} // namespace

std::optional<int> serviceRun(std::vector<std::string>& arguments)
{
    const bool asked = takeServiceArgument(arguments);
    const bool isService = asked || platform::environmentVariable("TAMLO_SERVICE") == "1";
    const auto input = platform::environmentVariable("TAMLO_SMOKE_IN");
    const auto output = platform::environmentVariable("TAMLO_SMOKE_OUT");
    if (!input || !output) return std::nullopt;
    if (!isService) {
        std::cerr << "smoke: service mode only (TAMLO_SERVICE=1)" << std::endl;
        return 2;
    }
    return headlessRun(*input, *output);
}

} // namespace tamlo::cli
