#include "core/image/float_buffer.h"

#include "core/image/cancellation.h"
#include "core/image/page_buffer.h"

#include <algorithm>
#include <new>

namespace tamlo {
namespace {

constexpr std::size_t kPageMappedBytes = std::size_t{1} << 20;
constexpr std::size_t kPieceFloats = std::size_t{1} << 22;
constexpr std::align_val_t kAlignment{64}; // a cache line, and the widest vector

std::shared_ptr<float> allocate(std::size_t count)
{
    if (count == 0) return {};
    const std::size_t bytes = count * sizeof(float);
    if (bytes >= kPageMappedBytes) {
        PageBuffer pages(bytes);
        float* base = pages.floats(count).data();
        return {base, [pages](float*) {}};
    }
    auto* base = static_cast<float*>(::operator new(bytes, kAlignment));
    std::fill_n(base, count, 0.0f);
    return {base, [](float* p) { ::operator delete(p, kAlignment); }};
}

} // namespace

FloatBuffer::FloatBuffer(std::size_t count) : block_(allocate(count)), size_(count)
{}

FloatBuffer::FloatBuffer(std::size_t count, float fill) : FloatBuffer(count)
{
    if (fill != 0.0f) std::fill_n(block_.get(), count, fill);
}

FloatBuffer::FloatBuffer(std::span<const float> values) : FloatBuffer(values.size())
{
    std::copy(values.begin(), values.end(), block_.get());
}

float* FloatBuffer::mutableData()
{
    if (!isUnique()) {
        std::shared_ptr<float> copy = allocate(size_);
        for (std::size_t done = 0; done < size_; done += kPieceFloats) {
            cancellationPoint();
            std::copy_n(block_.get() + done, std::min(kPieceFloats, size_ - done), copy.get() + done);
        }
        block_ = std::move(copy);
    }
    return block_.get();
}

} // namespace tamlo
