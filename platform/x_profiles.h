// Profiles of screens as an X server tells them: properties _ICC_PROFILE, _ICC_PROFILE_1 ... of its root
// window, one for each head. Source: "ICC Profiles in X", version 0.4, of freedesktop.org.
#pragma once

#include <cstdint>
#include <vector>

namespace tamlo::platform {

class XProfiles {
public:
    /// connection: an xcb_connection_t, which outlives this. Not for a connection with an error.
    explicit XProfiles(void* connection);

    /// Bytes of the profile of a head, counted from 0; none where none is set.
    std::vector<std::uint8_t> read(int head) const;
    /// Whether an event (an xcb_generic_event_t) tells that one of them has changed.
    bool isChange(const void* event) const;

private:
    static constexpr int kMostHeads = 16;

    void* connection_;
    std::uint32_t root_ = 0;
    std::vector<std::uint32_t> atoms_;
};

} // namespace tamlo::platform
