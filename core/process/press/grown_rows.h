// A picture at the size that its press prints, row by row, so that no second picture stands in memory: the
// values of pilResize with the bicubic filter, bit for bit.
#pragma once

#include "core/image/resample.h"
#include "core/image/rgb_image.h"

#include <cstdint>
#include <vector>

namespace tamlo {

class GrownRows {
public:
    GrownRows(const RGBImage& image, Size grown);
    Size size() const { return size_; }

    /// Reads rows for one band, in rising order.
    class Reader {
    public:
        explicit Reader(const GrownRows& rows);
        /// Row y, good until the next call.
        const float* row(std::int64_t y);

    private:
        const float* wideRow(std::int64_t y);
        float* slot(std::int64_t y);

        const GrownRows& rows_;
        std::int64_t next_ = -1; // the first row of the picture that is not yet widened
        std::int64_t stride_;
        std::vector<float> ring_, source_, out_;
        std::vector<const float*> taps_;
    };

private:
    const RGBImage& image_;
    Size size_;
    ResampleCoeffs across_, down_;
};

} // namespace tamlo
