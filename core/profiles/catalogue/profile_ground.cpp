#include "core/profiles/catalogue/profile_ground.h"

#include <array>

namespace tamlo {
namespace {

constexpr std::array<std::string_view, 5> kTexts{"data sheet", "published measurement", "derived",
                                                 "reference value of this catalogue", "estimate"};

} // namespace

std::string_view rawText(Ground ground)
{
    return kTexts[static_cast<std::size_t>(ground)];
}

std::optional<Ground> groundOf(std::string_view note)
{
    const std::string_view kind = note.substr(0, note.find(':'));
    for (std::size_t i = 0; i < kTexts.size(); ++i)
        if (kind == kTexts[i]) return static_cast<Ground>(i);
    return std::nullopt;
}

} // namespace tamlo
