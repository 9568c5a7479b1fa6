#include "core/process/press/blue_noise.h"

namespace tamlo {
namespace {

std::uint32_t digit(char c)
{
    if (c >= 'A' && c <= 'Z') return static_cast<std::uint32_t>(c - 'A');
    if (c >= 'a' && c <= 'z') return static_cast<std::uint32_t>(c - 'a' + 26);
    if (c >= '0' && c <= '9') return static_cast<std::uint32_t>(c - '0' + 52);
    return c == '+' ? 62u : 63u;
}

/// The bytes of a base64 text without line breaks.
std::vector<std::uint8_t> fromBase64(std::string_view text)
{
    std::vector<std::uint8_t> bytes;
    std::uint32_t group = 0;
    int bits = 0;
    for (const char c : text) {
        if (c == '=') break;
        group = group << 6 | digit(c);
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        bytes.push_back(static_cast<std::uint8_t>(group >> bits & 0xFF));
    }
    return bytes;
}

} // namespace

const ReproPrint::BlueNoise& ReproPrint::blueNoise()
{
    static const BlueNoise kNoise = [] {
        BlueNoise out{256, {}};
        const std::vector<std::uint8_t> bytes = fromBase64(BundledData::blueNoise256());
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            const float rank = static_cast<float>(bytes[i] | bytes[i + 1] << 8);
            out.thresholds.push_back((rank + 0.5f) / 65'536.0f);
        }
        return out;
    }();
    return kNoise;
}

} // namespace tamlo
