#include "cli/project.h"

#include "platform/console.h"

namespace tamlo::cli {
namespace {

/// A roll as a verb needs it: to be read, to be changed, or one that is about to be made.
template <typename Arguments>
std::unique_ptr<ProjectSession> sessionFor(const Arguments& arguments)
{
    using Access = ProjectSession::Access;
    constexpr bool kReads = std::is_same_v<Arguments, ProjectShowArguments> ||
                            std::is_same_v<Arguments, ProjectCheckArguments> ||
                            std::is_same_v<Arguments, ProjectCopyArguments>;
    if constexpr (requires { arguments.isNew; })
        if (arguments.isNew) return ProjectSession::fresh(arguments.roll);
    return ProjectSession::open(arguments.roll, kReads ? Access::read : Access::write);
}

} // namespace

int runProject(const ProjectCommand& command, std::ostream& results)
{
    platform::catchStopSignals();
    return std::visit(
        [&]<typename Arguments>(const Arguments& arguments) {
            if constexpr (std::is_same_v<Arguments, std::monostate>)
                return 0;
            else if constexpr (requires { run(arguments, results); })
                return run(arguments, results);
            else
                return run(*sessionFor(arguments), arguments, results);
        },
        command);
}

std::optional<int> runOn(RollSession& session, const ProjectCommand& command, std::ostream& results)
{
    return std::visit(
        [&]<typename Arguments>(const Arguments& arguments) -> std::optional<int> {
            if constexpr (requires { arguments.isNew; })
                if (arguments.isNew) return std::nullopt;
            if constexpr (requires { run(session, arguments, results); })
                return run(session, arguments, results);
            else
                return std::nullopt;
        },
        command);
}

} // namespace tamlo::cli
