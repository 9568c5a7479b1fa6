#include "platform/user_folder.h"

#include "platform/environment.h"

#include <optional>

namespace tamlo::platform {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> pathIn(const char* variable)
{
    const auto value = environmentVariable(variable);
    if (!value || value->empty()) return std::nullopt;
    return fs::path(*value);
}

/// A relative path in one of these variables is to be ignored, says who defines them.
std::optional<fs::path> absoluteIn(const char* variable)
{
    const auto path = pathIn(variable);
    return path && path->is_absolute() ? path : std::nullopt;
}

} // namespace

fs::path userFolder()
{
    if (const auto given = pathIn("TAMLO_USER_DIR")) return *given;
    if (const auto data = pathIn("XDG_DATA_HOME")) return *data / "Tamlo";
    if (const auto home = pathIn("HOME")) return *home / ".local" / "share" / "Tamlo";
    return "Tamlo";
}

fs::path cacheFolder()
{
    if (const auto cache = absoluteIn("XDG_CACHE_HOME")) return *cache / "Tamlo";
    if (const auto home = absoluteIn("HOME")) return *home / ".cache" / "Tamlo";
    return userFolder() / "caches";
}

fs::path lockFolder()
{
    if (const auto runtime = absoluteIn("XDG_RUNTIME_DIR")) return *runtime / "tamlo";
    return userFolder() / "locks";
}

} // namespace tamlo::platform
