// tamlo cache: the folder of previews, from the command line.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace tamlo::cli {

/// cache [info|trim|clear|clear-cold] [--cap GB] [--json]
struct CacheArguments {
    std::string verb = "info";
    std::optional<double> capGB; ///< in place of the preference; below 1 for no limit
    bool json = false;
};

void describeCache(CLI::App& command, CacheArguments& into);

/// Returns the exit status.
int runCache(const CacheArguments& arguments, std::ostream& results);

} // namespace tamlo::cli
