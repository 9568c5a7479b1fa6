#include "app/project/uuid.h"

#include "platform/random_bytes.h"

namespace tamlo {

namespace {

constexpr std::size_t kTextLength = 36;

constexpr bool hasDashAt(std::size_t i)
{
    return i == 8 || i == 13 || i == 18 || i == 23;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

} // namespace

Uuid Uuid::random()
{
    Uuid id;
    platform::fillRandom(id.bytes);
    // RFC 4122, section 4.4: version 4 and its variant.
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);
    return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text)
{
    if (text.size() != kTextLength) return std::nullopt;
    Uuid id;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < kTextLength; ++i) {
        if (hasDashAt(i)) {
            if (text[i] != '-') return std::nullopt;
            continue;
        }
        const int digit = hexDigit(text[i]);
        if (digit < 0) return std::nullopt;
        std::uint8_t& byte = id.bytes[digits++ / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | digit);
    }
    return id;
}

std::string Uuid::text() const
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(kTextLength);
    for (const std::uint8_t byte : bytes) {
        if (hasDashAt(out.size())) out += '-';
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
    }
    return out;
}

} // namespace tamlo
