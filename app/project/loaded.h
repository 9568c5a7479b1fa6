// Profiles that may be gone: what a load gives, or nothing.
#pragma once

#include "core/image/tamlo_error.h"
#include "core/profiles/formats/profile_error.h"

#include <optional>
#include <utility>

namespace tamlo {

/// What `load` gives, or nothing for a profile that does not load.
template <typename Load>
auto loaded(Load&& load) -> std::optional<decltype(load())>
{
    try {
        return load();
    } catch (const ProfileError&) {
        return std::nullopt;
    } catch (const TamloError&) {
        return std::nullopt;
    }
}

} // namespace tamlo
