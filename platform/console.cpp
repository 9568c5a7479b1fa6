#include "platform/console.h"

#include "platform/wake_event.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include <sys/ioctl.h>
#include <unistd.h>

namespace tamlo::platform {
namespace {

volatile std::sig_atomic_t stopFlag = 0;
WakeEvent* stopEvent = nullptr; // made before the handlers are set, and never freed

/// The second request does what the first would have done in any other program.
void onStop(int signal)
{
    if (stopFlag) {
        std::signal(signal, SIG_DFL);
        raise(signal); // is delivered when this handler returns
    }
    stopFlag = 1;
    stopEvent->set();
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

bool outputIsTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

std::size_t outputColumns()
{
    winsize size{};
    if (!outputIsTerminal() || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) return 0;
    return size.ws_col;
}

void catchStopSignals()
{
    if (!stopEvent) stopEvent = new WakeEvent;
    struct sigaction action {};
    action.sa_handler = onStop;
    action.sa_flags = SA_RESTART; // a read or write under way goes on; the render asks stopRequested
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction now {};
        sigaction(signal, nullptr, &now);
        if (now.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr); // "nohup" and "&" stay in force
    }
    std::signal(SIGXFSZ, SIG_IGN);
}

bool stopRequested()
{
    return stopFlag != 0;
}

int stopDescriptor()
{
    return stopEvent ? stopEvent->descriptor() : -1;
}

} // namespace tamlo::platform
