#include "platform/quiet_stderr.h"

#include <cstdio>
#include <mutex>

namespace tamlo::platform {
namespace {

std::mutex gate;
int living = 0;
std::FILE* loud = nullptr;

std::FILE* nowhere()
{
    static std::FILE* const file = std::fopen("/dev/null", "we");
    return file;
}

} // namespace

QuietStderr::QuietStderr()
{
    const std::lock_guard lock(gate);
    if (living++ > 0 || !nowhere()) return;
    loud = stderr;
    stderr = nowhere(); // the stream of the C library is a variable here, apart from the descriptor
}

QuietStderr::~QuietStderr()
{
    const std::lock_guard lock(gate);
    if (--living > 0 || !loud) return;
    stderr = loud;
    loud = nullptr;
}

} // namespace tamlo::platform
