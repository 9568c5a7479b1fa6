// The command line of Tamlo. Results go to standard output, everything else to standard error.

#include "cli/arguments.h"
#include "cli/completion.h"
#include "cli/develop.h"
#include "cli/exchange.h"
#include "cli/interrupted.h"
#include "cli/list_profiles.h"
#include "cli/measure.h"
#include "cli/messages.h"
#include "cli/option_help.h"
#include "cli/plan.h"
#include "cli/project.h"
#include "cli/rack.h"
#include "cli/recipe.h"
#include "cli/service.h"
#include "cli/session.h"
#include "cli/usage_error.h"
#include "core/text/error_words.h"

#include <exception>
#include <iostream>

namespace {

using namespace tamlo;
using namespace tamlo::cli;

struct Runner {
    int operator()(const DevelopArguments& arguments) const { return develop(arguments, std::cout); }
    int operator()(const PlanArguments& arguments) const { return plan(arguments, std::cout); }
    int operator()(const MeasureArguments& arguments) const { return measure(arguments, std::cout); }
    int operator()(const ListArguments& arguments) const
    {
        listProfiles(arguments, ProfileStore::shared(), std::cout);
        return 0;
    }
    int operator()(const ShowArguments& arguments) const
    {
        if (arguments.kind == "recipe")
            showRecipe(arguments, ProfileStore::shared(), std::cout);
        else
            showProfile(arguments, ProfileStore::shared(), std::cout);
        return 0;
    }
    int operator()(const CheckArguments& arguments) const
    {
        return checkFiles(arguments, ProfileStore::shared(), std::cout);
    }
    int operator()(const ImportArguments& arguments) const
    {
        return importFiles(arguments, ProfileStore::shared(), std::cout);
    }
    int operator()(const ExportArguments& arguments) const
    {
        exportOne(arguments, ProfileStore::shared(), std::cout);
        return 0;
    }
    int operator()(const ProjectCommand& command) const { return runProject(command, std::cout); }
    int operator()(const CacheArguments& arguments) const { return runCache(arguments, std::cout); }
    int operator()(const RackArguments& arguments) const { return runRack(arguments, std::cout); }
    int operator()(const SessionArguments& arguments) const { return runSession(arguments, std::cout); }
    int operator()(const HelpArguments& arguments) const
    {
        helpOnOption(arguments, std::cout);
        return 0;
    }
    int operator()(const CompletionArguments& arguments) const
    {
        std::cout << completionScript(arguments.shell, ProfileStore::shared());
        return 0;
    }
    int operator()(const cli::Answer& answer) const
    {
        std::cout << answer.text;
        return 0;
    }
};

} // namespace

int main(int argc, char** argv)
{
    try {
        std::vector<std::string> arguments{argv + 1, argv + argc};
        if (const std::optional<int> status = serviceRun(arguments)) return *status;
        const int status = std::visit(Runner{}, parseArguments(arguments));
        if (!std::cout.flush()) {
            tell(T("cli.outputFailed"));
            return 1;
        }
        return status;
    } catch (const Interrupted&) {
        return Interrupted::kStatus;
    } catch (const UsageError& error) {
        tell(error.what());
        return 2;
    } catch (const std::exception& error) {
        tell(ErrorWords::of(error));
        return 1;
    }
}
