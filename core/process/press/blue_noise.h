// The thresholds that inkjet drops are laid by: at every share of ink the drops that it places keep apart
// from each other, without the clouds of a random choice and without a screen's pattern. The table is carried
// as data and made by tools/make_blue_noise.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace tamlo::BundledData {

/// 256 × 256 ranks of 16 bits, little-endian in row order, as base64.
std::string_view blueNoise256();

} // namespace tamlo::BundledData

namespace tamlo::ReproPrint {

struct BlueNoise {
    std::int64_t side = 0;
    std::vector<float> thresholds; ///< in row order, each of (v + 0.5) / 65536 once
};
const BlueNoise& blueNoise();

} // namespace tamlo::ReproPrint
