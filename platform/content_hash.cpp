#include "platform/content_hash.h"

#include "platform/platform_error.h"

#include <openssl/evp.h>
#define XXH_STATIC_LINKING_ONLY // the state as a plain member
#include <xxhash.h>

#include <array>

namespace tamlo::platform {

struct XXHash64::State {
    XXH64_state_t inner;
};

XXHash64::XXHash64() : state_(std::make_unique<State>())
{
    XXH64_reset(&state_->inner, 0);
}

XXHash64::~XXHash64() = default;
XXHash64::XXHash64(XXHash64&&) noexcept = default;
XXHash64& XXHash64::operator=(XXHash64&&) noexcept = default;

void XXHash64::update(std::span<const std::uint8_t> bytes)
{
    XXH64_update(&state_->inner, bytes.data(), bytes.size());
}

void XXHash64::update(std::string_view bytes)
{
    XXH64_update(&state_->inner, bytes.data(), bytes.size());
}

std::uint64_t XXHash64::finish() const
{
    return XXH64_digest(&state_->inner);
}

std::uint64_t xxHash64(std::string_view bytes)
{
    return XXH64(bytes.data(), bytes.size(), 0);
}

std::string sha256(std::string_view bytes)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    std::size_t length = 0;
    if (!EVP_Q_digest(nullptr, "SHA256", nullptr, bytes.data(), bytes.size(), digest.data(), &length))
        throw PlatformError("SHA-256 is not to be had");
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < length; ++i) {
        text += kDigits[digest[i] >> 4];
        text += kDigits[digest[i] & 15];
    }
    return text;
}

} // namespace tamlo::platform
