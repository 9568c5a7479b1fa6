#include "platform/console.h"

#include <csignal>
#include <cstdlib>
#include <cstring>

#include <sys/ioctl.h>
#include <unistd.h>

namespace tamlo::platform {
namespace {

volatile std::sig_atomic_t stopFlag = 0;

void onStop(int)
{
    stopFlag = 1;
}

} // namespace

bool errorIsTerminal()
{
    const char* term = std::getenv("TERM");
    return isatty(STDERR_FILENO) == 1 && term != nullptr && std::strcmp(term, "dumb") != 0;
}

int terminalColumns()
{
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

void catchStopSignals()
{
    struct sigaction action {};
    action.sa_handler = onStop;
    action.sa_flags = SA_RESTART; // a read or write under way goes on; the render asks stopRequested
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool stopRequested()
{
    return stopFlag != 0;
}

} // namespace tamlo::platform
