// The terminal and the signals of a command-line run: whether messages go to a screen that can rewrite a
// line, how wide it is, and whether the user asked to stop.
#pragma once

namespace tamlo::platform {

/// Whether standard error is a terminal that understands "rewrite this line".
bool errorIsTerminal();

/// Width of that terminal in characters; 80 when it does not say.
int terminalColumns();

/// From here on an interrupt or a request to end (Ctrl-C, SIGTERM) no longer kills the process, but is
/// told by stopRequested; and a write beyond a file size limit fails with an error instead of a signal.
void catchStopSignals();

/// Whether such a request has come.
bool stopRequested();

} // namespace tamlo::platform
