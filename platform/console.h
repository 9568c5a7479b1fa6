// The terminal and the signals of a command-line run: whether messages go to a screen that can rewrite a
// line, how wide it is, and whether the user asked to stop.
#pragma once

#include <cstddef>

namespace tamlo::platform {

/// Whether standard error is a terminal that understands "rewrite this line".
bool errorIsTerminal();

/// Width of that terminal in characters; 80 when it does not say.
int terminalColumns();

/// Whether standard output is a terminal.
bool outputIsTerminal();

/// Width of the terminal that standard output goes to; 0 where it goes elsewhere or the terminal does not
/// say.
std::size_t outputColumns();

/// From here on an interrupt or a request to end (Ctrl-C, SIGTERM, SIGHUP) no longer kills the process, but
/// is told by stopRequested; a second one does kill it. Signals that the process was started to ignore stay
/// ignored. A write beyond a file size limit fails with an error instead of a signal.
void catchStopSignals();

/// Whether such a request has come.
bool stopRequested();

/// Readable once such a request has come, for who sleeps on files; -1 before catchStopSignals().
int stopDescriptor();

} // namespace tamlo::platform
