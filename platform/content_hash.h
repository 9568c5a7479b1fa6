// XXH64: the fast 64-bit hash by which files are told apart. Not for what an enemy may choose.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace tamlo::platform {

/// XXH64 with seed 0, fed piece by piece.
class XXHash64 {
public:
    XXHash64();
    ~XXHash64();
    XXHash64(XXHash64&&) noexcept;
    XXHash64& operator=(XXHash64&&) noexcept;

    void update(std::span<const std::uint8_t> bytes);
    void update(std::string_view bytes);
    /// Of all that was fed so far.
    std::uint64_t finish() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Of all bytes at once.
std::uint64_t xxHash64(std::string_view bytes);

} // namespace tamlo::platform
