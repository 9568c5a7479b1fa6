// Exiv2 made ready for many threads. Every use of that library goes through here first.
#pragma once

namespace tamlo::platform {

/// Starts the XMP parser of Exiv2 once, under a lock of ours, and silences its log. Its own start on first
/// use is not safe when two threads meet there. Cheap to call again.
void readyExiv2();

} // namespace tamlo::platform
