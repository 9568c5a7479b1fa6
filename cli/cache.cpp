#include "cli/cache.h"

#include "app/preview/proxy_cache.h"
#include "core/profiles/formats/json_codec.h"
#include "core/text/loc.h"
#include "platform/memory.h"
#include "platform/preferences.h"
#include "platform/user_folder.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <cstdio>
#include <ostream>

namespace tamlo::cli {
namespace {

double now()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string gigabytes(std::int64_t bytes)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", static_cast<double>(bytes) / (std::int64_t{1} << 30));
    return text;
}

Loc::Args amountOf(const ProxyCache::Amount& amount)
{
    return {{"files", Loc::string("cache.files", amount.files)}, {"gb", gigabytes(amount.bytes)}};
}

int tellInfo(const ProxyCache& cache, std::optional<std::int64_t> cap, bool json, std::ostream& results)
{
    const ProxyCache::Amount amount = cache.usage();
    if (json) {
        results << prettyJson({{"folder", cache.directory().string()},
                               {"files", amount.files},
                               {"bytes", amount.bytes},
                               {"cap", cap ? Json(*cap) : Json()}})
                << std::endl;
        return 0;
    }
    Loc::Args args = amountOf(amount);
    args.emplace_back("folder", cache.directory().string());
    args.emplace_back("cap", cap ? gigabytes(*cap) : "");
    results << T(cap ? "cli.cache.info" : "cli.cache.infoNoCap", args) << std::endl;
    return 0;
}

} // namespace

void describeCache(CLI::App& command, CacheArguments& into)
{
    command.add_option("ACTION", into.verb, T("cli.help.cache.action"))
        ->check(CLI::IsMember({"info", "trim", "clear", "clear-cold"}))
        ->type_name("info|trim|clear|clear-cold")
        ->option_text("info|trim|clear|clear-cold");
    command.add_option("--cap", into.capGB, T("cli.help.cache.cap"))
        ->check(CLI::Range(0.0, 1e6))
        ->type_name("GB")
        ->option_text("GB");
    command.add_flag("--json", into.json, T("cli.help.jsonObject"));
}

int runCache(const CacheArguments& arguments, std::ostream& results)
{
    const ProjectRegistry registry(platform::userFolder());
    ProxyCache cache({ProxyCache::defaultFolder(), now, &registry});
    const platform::FilePreferences preferences;
    const auto cap =
        ProxyCache::capBytes(arguments.capGB ? arguments.capGB : preferences.number("proxyCacheCapGB"));
    if (arguments.verb == "info") return tellInfo(cache, cap, arguments.json, results);
    ProxyCache::Amount gone;
    const char* text = "cli.cache.trimmed";
    if (arguments.verb == "trim") {
        gone = cache.trim(cap, platform::freeBytes(cache.directory()), now());
    } else if (arguments.verb == "clear") {
        gone = cache.clear();
        text = gone.files > 0 ? "cache.cleared" : "cli.cache.empty";
    } else {
        gone = cache.clearCold(now());
        text = gone.files > 0 ? "cache.coldCleared" : "cache.noCold";
    }
    if (arguments.json)
        results << prettyJson({{"files", gone.files}, {"bytes", gone.bytes}}) << std::endl;
    else
        results << T(text, amountOf(gone)) << std::endl;
    return 0;
}

} // namespace tamlo::cli
