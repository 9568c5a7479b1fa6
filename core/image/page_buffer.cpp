#include "core/image/page_buffer.h"

#include "core/image/tamlo_error.h"
#include "platform/memory.h"

#include <algorithm>
#include <cassert>
#include <string>

namespace tamlo {

PageBuffer::PageBuffer(std::size_t byteCount) : byteCount_(std::max<std::size_t>(byteCount, 1))
{
    void* base = platform::mapPages(byteCount_);
    if (!base) throw TamloError::io("cannot map " + std::to_string(byteCount_) + " bytes");
    block_ = {static_cast<std::byte*>(base), [n = byteCount_](std::byte* p) { platform::unmapPages(p, n); }};
}

std::span<float> PageBuffer::floats(std::size_t count) const
{
    assert(count <= byteCount_ / sizeof(float));
    return {reinterpret_cast<float*>(base()), count};
}

std::span<std::uint8_t> PageBuffer::bytes(std::size_t count) const
{
    assert(count <= byteCount_);
    return {reinterpret_cast<std::uint8_t*>(base()), count};
}

} // namespace tamlo
