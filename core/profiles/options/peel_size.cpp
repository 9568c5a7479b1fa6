#include "core/profiles/options/peel_size.h"

#include <algorithm>

namespace tamlo {

const Pipeline::PeelSize& Pipeline::peelSizeCfg(const InstantFrameParams& frame,
                                                const std::optional<std::string>& peelSize)
{
    const TextList offered = frame.sizes.value_or(TextList{});
    const bool isOffered = peelSize && std::find(offered.begin(), offered.end(), *peelSize) != offered.end();
    const std::string key = isOffered ? *peelSize : offered.empty() ? "3x4" : offered.front();
    const auto found = std::find_if(peelSizes.begin(), peelSizes.end(),
                                    [&](const PeelSize& size) { return size.key == key; });
    return found == peelSizes.end() ? peelSizes.front() : *found;
}

} // namespace tamlo
