#include "cli/project.h"

#include "platform/console.h"

namespace tamlo::cli {

int runProject(const ProjectCommand& command, std::ostream& results)
{
    platform::catchStopSignals();
    return std::visit(
        [&](const auto& arguments) {
            if constexpr (std::is_same_v<std::decay_t<decltype(arguments)>, std::monostate>)
                return 0;
            else
                return run(arguments, results);
        },
        command);
}

} // namespace tamlo::cli
