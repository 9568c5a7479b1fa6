// Where a user's own files of this program stand.
#pragma once

#include <filesystem>

namespace tamlo::platform {

/// The path of TAMLO_USER_DIR, else "Tamlo" in the folder where the desktop keeps a user's application data
/// (XDG base directories). It need not exist.
std::filesystem::path userFolder();

} // namespace tamlo::platform
