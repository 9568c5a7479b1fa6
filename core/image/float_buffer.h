// Copy-on-write storage of a picture's samples. Copies share one block until one of them writes; blocks of
// a mebibyte or more are page-mapped, smaller ones lie in the heap.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace tamlo {

class FloatBuffer {
public:
    FloatBuffer() = default;
    /// count zeros. Errors: io "cannot map N bytes".
    explicit FloatBuffer(std::size_t count);
    FloatBuffer(std::size_t count, float fill);
    explicit FloatBuffer(std::span<const float> values);

    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }

    const float* data() const noexcept { return block_.get(); }
    /// The samples for writing; copies a shared block first. Call it once before a parallel loop, never
    /// inside.
    float* mutableData();
    /// Whether a write would go to the block in place.
    bool isUnique() const noexcept { return block_.use_count() <= 1; }

    const float* begin() const noexcept { return data(); }
    const float* end() const noexcept { return data() + size_; }
    float operator[](std::size_t i) const noexcept { return block_.get()[i]; }

private:
    std::shared_ptr<float> block_;
    std::size_t size_ = 0;
};

} // namespace tamlo
