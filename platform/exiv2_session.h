// Exiv2 for many threads. Every use of that library goes through here first.
#pragma once

#include <mutex>

namespace tamlo::platform {

/// The library to oneself for as long as the result lives. It shares tables of its XMP properties between
/// threads: of two that write at a time one may now and then lose a property. At the first call its XMP
/// parser is started, its log silenced, the box formats switched on and our own XMP namespace, "tamlo", told.
/// A thread may hold several.
[[nodiscard]] std::unique_lock<std::recursive_mutex> exiv2Session();

} // namespace tamlo::platform
