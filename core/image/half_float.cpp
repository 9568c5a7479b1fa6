#include "core/image/half_float.h"

#include "core/image/bands.h"
#include "core/image/half_float_passes.h"

#include <cassert>

namespace tamlo {

void HalfFloat::encode(std::span<const float> floats, std::span<std::uint16_t> halves)
{
    assert(halves.size() == floats.size());
    parallelBands(static_cast<std::int64_t>(floats.size()), 1, [&](std::int64_t start, std::int64_t end) {
        half_encode(floats.data() + start, halves.data() + start, end - start);
    });
}

void HalfFloat::decode(std::span<const std::uint16_t> halves, std::span<float> floats)
{
    assert(halves.size() == floats.size());
    parallelBands(static_cast<std::int64_t>(floats.size()), 1, [&](std::int64_t start, std::int64_t end) {
        half_decode(halves.data() + start, floats.data() + start, end - start);
    });
}

} // namespace tamlo
