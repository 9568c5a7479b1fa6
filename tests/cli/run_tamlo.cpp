#include "tests/cli/run_tamlo.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;

/// In the child: never returns.
[[noreturn]] void become(const std::vector<std::string>& arguments, const RunSettings& settings,
                         const fs::path& out, const fs::path& err)
{
    const auto redirect = [](const fs::path& to, int descriptor) {
        const int file = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (file < 0 || dup2(file, descriptor) < 0) _exit(98);
    };
    redirect(out, STDOUT_FILENO);
    redirect(err, STDERR_FILENO);
    redirect("/dev/null", STDIN_FILENO);
    if (chdir(settings.folder.c_str()) != 0) _exit(98);
    for (const auto& [name, value] : settings.environment) setenv(name.c_str(), value.c_str(), 1);
    if (settings.fileSizeLimit) {
        const rlimit limit{*settings.fileSizeLimit, *settings.fileSizeLimit};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(98);
    }
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(TAMLO_PROGRAM));
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(TAMLO_PROGRAM, argv.data());
    _exit(99);
}

/// Ends when the child does; sends the signals once the text stands in its standard error.
int waitFor(pid_t child, const RunSettings& settings, const fs::path& err)
{
    int state = 0;
    bool sent = !settings.interruptAtPhase.has_value();
    while (!sent) {
        if (waitpid(child, &state, WNOHANG) == child) return state;
        if (readFile(err).find(*settings.interruptAtPhase) != std::string::npos) {
            for (const int signal : settings.signals) kill(child, signal);
            sent = true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    waitpid(child, &state, 0);
    return state;
}

} // namespace

std::vector<std::string> RunResult::messages() const
{
    std::vector<std::string> lines;
    std::istringstream stream(err);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with("tamlo: ")) lines.push_back(line);
    return lines;
}

RunResult runTamlo(const std::vector<std::string>& arguments, const RunSettings& settings)
{
    const ScratchFolder streams;
    const fs::path out = settings.outputTo.empty() ? streams / "out" : fs::path(settings.outputTo);
    const fs::path err = streams / "err";
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child == 0) become(arguments, settings, out, err);
    const int state = waitFor(child, settings, err);

    RunResult result;
    result.status = WIFEXITED(state) ? WEXITSTATUS(state) : -WTERMSIG(state);
    if (settings.outputTo.empty()) result.out = readFile(out);
    result.err = readFile(err);
    return result;
}

} // namespace tamlo::test
