// What a tube shows of a picture, a row at a time: the picture at the size shown, less what the frame hides
// of it. Both resamplings are one, since the second reads weighted sums of what the first has summed.
#pragma once

#include "core/image/resample.h"
#include "core/image/rgb_image.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tamlo::CRTScreen {

class ShownRows {
public:
    /// Units: overscan the share of each side that the frame hides, at each end. `image` must outlive this.
    ShownRows(const RGBImage& image, Size shown, double overscan);

    /// Reads rows in rising order.
    class Reader {
    public:
        explicit Reader(const ShownRows& shown);
        /// Interleaved pixels of row y, valid until the next call.
        const float* row(std::int64_t y);

    private:
        const float* wideRow(std::int64_t y);

        const ShownRows& shown_;
        std::int64_t next_ = -1, slots_, stride_;
        std::vector<float> ring_, padded_, out_;
        std::vector<const float*> taps_;
    };

private:
    const RGBImage& image_;
    Size size_;
    std::optional<ResampleCoeffs> x_, y_;
};

} // namespace tamlo::CRTScreen
