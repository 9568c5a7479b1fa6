// Plane: a one-channel image of 32-bit floats, a value with copy-on-write storage.
#pragma once

#include "core/image/float_buffer.h"

#include <cassert>
#include <cstdint>
#include <span>
#include <utility>

namespace tamlo {

/// Width and height of an image in pixels.
struct Size {
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool operator==(const Size&) const = default;
};

struct Plane {
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Row-major: element (x, y) at y × width + x; always width × height elements.
    FloatBuffer data;

    Plane() = default;
    Plane(std::int64_t w, std::int64_t h, float fill = 0.0f);
    /// Wraps an array of exactly width × height elements.
    Plane(std::int64_t w, std::int64_t h, FloatBuffer values);
    Plane(std::int64_t w, std::int64_t h, std::span<const float> values) : Plane(w, h, FloatBuffer(values)) {}

    Size size() const noexcept { return {width, height}; }
    std::int64_t count() const noexcept { return width * height; }
    float at(std::int64_t x, std::int64_t y) const noexcept { return data.data()[y * width + x]; }
    const float* row(std::int64_t y) const noexcept { return data.data() + y * width; }
    float* mutableData() { return data.mutableData(); }

    /// Arithmetic mean, summed in 64-bit floats in index order; 0 for an empty plane.
    double mean() const;
    /// Population standard deviation, two passes in 64-bit floats; 0 for an empty plane.
    double std() const;

    /// A new plane of f applied to each element, serially.
    template <typename F>
    Plane map(F&& f) const
    {
        Plane out(width, height);
        float* values = out.mutableData();
        for (std::int64_t i = 0; i < count(); ++i) values[i] = f(data[static_cast<std::size_t>(i)]);
        return out;
    }
};

} // namespace tamlo
