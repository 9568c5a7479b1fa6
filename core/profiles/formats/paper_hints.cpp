#include "core/profiles/formats/paper_hints.h"

#include "core/text/fmt.h"
#include "core/text/loc.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tamlo {
namespace {

constexpr std::array<const char*, 3> kChannels{"r", "g", "b"};

/// Channel that a pigment is densest in; nothing for a pigment as dense in another.
std::optional<std::size_t> densest(const std::vector<double>& pigment)
{
    const auto most = std::ranges::max_element(pigment);
    if (most == pigment.end() || std::ranges::count(pigment, *most) > 1) return std::nullopt;
    return static_cast<std::size_t>(most - pigment.begin());
}

} // namespace

std::vector<std::string> ProfileValidator::hints(const PaperProfile& paper)
{
    constexpr double kPlugs = 0.4;
    std::vector<std::string> hints;
    const std::vector<PaperLayer> layers = paper.layers.value_or(std::vector<PaperLayer>{});
    for (std::size_t i = 0; i < layers.size(); ++i) {
        const auto from = std::ranges::find(kChannels, layers[i].from.value_or("lum"));
        if (from == kChannels.end()) continue;
        const auto most = densest(layers[i].pigment);
        if (!most || *most >= kChannels.size() || kChannels[*most] == *from) continue;
        hints.push_back(T("profiles.hint.layerPigment",
                          {{"n", std::to_string(i + 1)}, {"from", *from}, {"densest", kChannels[*most]}}));
    }
    if (paper.transfer && paper.transfer->pickup.value_or(1.0) < kPlugs)
        hints.push_back(T("profiles.hint.pickup", {{"value", Fmt::significant(*paper.transfer->pickup)}}));
    return hints;
}

} // namespace tamlo
