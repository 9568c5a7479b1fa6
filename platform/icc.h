// Colour management on the way into the 8-bit sRGB bitmap: relative colorimetric with black point
// compensation. A space that is sRGB by its numbers, whatever its name, costs nothing.
#pragma once

#include "platform/picture_rows.h"

#include <cstdint>
#include <memory>

namespace tamlo::platform {

class SRGBConverter {
public:
    /// A profile that can't be read, or that is of another colour model than the samples, is left aside.
    SRGBConverter(const RowFormat& format, const ColourTag& tag);
    ~SRGBConverter();

    const RowFormat& format() const noexcept { return format_; }
    /// Whether a pixel of the format has the size of a pixel of the bitmap, so that it may be decoded there.
    bool worksInPlace() const noexcept;
    /// Whether such a pixel is already what the bitmap wants.
    bool isIdentity() const noexcept;

    /// Converts `pixels` pixels; `from` may be `rgba` when worksInPlace. May run on several threads at once.
    void convert(const void* from, std::uint8_t* rgba, std::int64_t pixels) const;

private:
    struct Closer {
        void operator()(void* transform) const noexcept;
    };
    RowFormat format_;
    std::unique_ptr<void, Closer> transform_; // null: the samples are sRGB, or plain CMYK
};

} // namespace tamlo::platform
