#include "core/process/press/ink_sets.h"

#include <algorithm>
#include <span>
#include <utility>

namespace tamlo {
namespace {

using ReproPrint::InkSet;

template <typename Value>
const Value& named(std::span<const std::pair<std::string_view, Value>> table, std::string_view name,
                   std::string_view fallback)
{
    const Value* found = nullptr;
    for (const auto& [key, value] : table) {
        if (key == name) return value;
        if (key == fallback) found = &value;
    }
    return found ? *found : table.front().second;
}

} // namespace

// Reflectances of unprinted sheets and solid patches, by eye from prints of the material.
const Vec3d& ReproPrint::bases(std::string_view name, std::string_view fallback)
{
    static const std::pair<std::string_view, Vec3d> kBases[] = {
        {"office", {0.86, 0.85, 0.80}}, {"newsprint", {0.60, 0.56, 0.47}}, {"coated", {0.87, 0.87, 0.87}},
        {"photo", {0.89, 0.90, 0.925}}, {"art", {0.895, 0.90, 0.912}},
    };
    return named<Vec3d>(kBases, name, fallback);
}

const ReproPrint::InkSet& ReproPrint::inks(std::string_view name, std::string_view fallback)
{
    static const std::pair<std::string_view, InkSet> kInks[] = {
        {"inkjet_office",
         {{{0.026, 0.427, 0.855}, {0.819, 0.083, 0.384}, {1.0, 0.916, 0.086}, {0.07, 0.072, 0.078}}}},
        {"inkjet_photo", {{{0.02, 0.37, 0.73}, {0.76, 0.02, 0.2}, {1.0, 0.8, 0.01}, {0.012, 0.012, 0.012}}}},
        {"offset_newsprint",
         {{{0.102, 0.543, 0.867}, {0.901, 0.209, 0.443}, {1.0, 0.889, 0.205}, {0.159, 0.148, 0.136}}}},
        {"offset_coated",
         {{{0.023, 0.396, 0.748}, {0.775, 0.023, 0.219}, {1.0, 0.82, 0.011}, {0.024, 0.024, 0.023}}}},
        {"offset_art", {{{0.02, 0.38, 0.74}, {0.77, 0.02, 0.205}, {1.0, 0.81, 0.01}, {0.015, 0.015, 0.014}}}},
    };
    return named<InkSet>(kInks, name, fallback);
}

std::array<Vec3f, ReproPrint::kInkCount> ReproPrint::relativeInks(const InkSet& set)
{
    std::array<Vec3f, kInkCount> out{};
    for (std::size_t ink = 0; ink < kInkCount; ++ink)
        for (std::size_t c = 0; c < 3; ++c)
            out[ink][c] = static_cast<float>(std::clamp(set[ink][c], 0.0001, 0.9999));
    return out;
}

} // namespace tamlo
