#include "core/profiles/formats/profile_error.h"

namespace tamlo {

ProfileError ProfileError::notFound(const std::string& kind, const std::string& name,
                                    std::vector<std::string> available)
{
    std::string list;
    for (const std::string& one : available) list += (list.empty() ? "" : ", ") + one;
    ProfileError error(Kind::notFound, "No " + kind + " profile '" + name + "'. Available: " + list);
    error.available_ = std::move(available);
    return error;
}

ProfileError ProfileError::invalid(const std::string& text)
{
    return {Kind::invalid, "Invalid profile: " + text};
}

} // namespace tamlo
