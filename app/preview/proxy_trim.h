// Which files of the cache go when it grows too large: a pure function of what is known of them. The less
// likely a file is to be wanted again, the colder it is; what the session works on never goes.
#pragma once

#include "app/preview/proxy_index.h"
#include "app/project/project_registry.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tamlo::ProxyTrim {

enum class Temperature {
    dead,    ///< of another version, or of nobody
    working, ///< of the open project, or used in this session
    orphan,  ///< no project that is still there uses it
    cold,    ///< its projects were finished, and closed long ago
    warm     ///< everything between
};

struct Input {
    ProxyIndex::Entries entries;
    ProjectRegistry::Entries projects;
    /// Ids of those whose file is there.
    std::set<std::string> live;
    std::optional<std::string> open; ///< id of the open project
    std::set<std::string> dead;      ///< keys
    std::optional<std::int64_t> capBytes;
    std::optional<std::int64_t> freeBytes; ///< of the volume; absent where it is not known
    double now = 0, sessionStart = 0;      ///< seconds since 1970
    /// False where the owners of files are not known as a whole: then no file counts as nobody's.
    bool judgesOrphans = true;
};

/// Free space that the volume should keep.
inline constexpr std::int64_t kFreeBytes = std::int64_t{10} << 30;

Temperature temperature(const ProxyIndex::Entry& entry, const Input& input);
/// Keys to delete, in the order of their going: the dead ones always; above the cap, down to nine tenths of
/// it; and on a volume that is nearly full, as much as it lacks.
std::vector<std::string> plan(const Input& input);
/// The keys of some temperatures, whatever the cap.
std::vector<std::string> keysOf(const Input& input, const std::set<Temperature>& temperatures);

} // namespace tamlo::ProxyTrim
