// Hashes of content. XXH64: the fast 64-bit hash by which files are told apart, not for what an enemy may
// choose. SHA-256: by which what is derived from many choices gets a name of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
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

/// SHA-256 (FIPS 180-4) as 64 lowercase hexadecimal digits. Errors: PlatformError.
std::string sha256(std::string_view bytes);

} // namespace tamlo::platform
