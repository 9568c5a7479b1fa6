// Libraries that print to standard error by themselves, kept quiet while they are called.
#pragma once

namespace tamlo::platform {

/// While one lives, what C code prints to `stderr` goes nowhere. Our own messages go through std::cerr, which
/// keeps its way. Any number may live at once, on any threads.
class QuietStderr {
public:
    QuietStderr();
    ~QuietStderr();
    QuietStderr(const QuietStderr&) = delete;
    QuietStderr& operator=(const QuietStderr&) = delete;
};

} // namespace tamlo::platform
