// Reference-counted, page-mapped memory for the largest pixel buffers: never in the heap allocator, and
// back with the system as soon as the last reference goes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace tamlo {

class PageBuffer {
public:
    PageBuffer() = default;
    /// Zeroed pages of at least byteCount bytes. Errors: io "cannot map N bytes".
    explicit PageBuffer(std::size_t byteCount);

    std::byte* base() const noexcept { return block_.get(); }
    /// The size that was asked for, at least 1.
    std::size_t byteCount() const noexcept { return byteCount_; }

    /// Typed views of the start of the block; count must fit.
    std::span<float> floats(std::size_t count) const;
    std::span<std::uint8_t> bytes(std::size_t count) const;

private:
    std::shared_ptr<std::byte> block_;
    std::size_t byteCount_ = 0;
};

} // namespace tamlo
