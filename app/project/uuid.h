// Uuid: the identity of a frame. Random, so that frames of two projects never meet.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tamlo {

struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// A new one, version 4. Errors: PlatformError.
    static Uuid random();
    /// The text form in either case; nothing for any other text.
    static std::optional<Uuid> parse(std::string_view text);
    /// "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
    std::string text() const;

    auto operator<=>(const Uuid&) const = default;
};

} // namespace tamlo

template <>
struct std::hash<tamlo::Uuid> {
    std::size_t operator()(const tamlo::Uuid& id) const noexcept
    {
        std::size_t out;
        std::memcpy(&out, id.bytes.data(), sizeof(out)); // random already
        return out;
    }
};
