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

} // namespace

fs::path userFolder()
{
    if (const auto given = pathIn("TAMLO_USER_DIR")) return *given;
    if (const auto data = pathIn("XDG_DATA_HOME")) return *data / "Tamlo";
    if (const auto home = pathIn("HOME")) return *home / ".local" / "share" / "Tamlo";
    return "Tamlo";
}

} // namespace tamlo::platform
