#include "platform/content_hash.h"

#define XXH_STATIC_LINKING_ONLY // the state as a plain member
#include <xxhash.h>

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

} // namespace tamlo::platform
