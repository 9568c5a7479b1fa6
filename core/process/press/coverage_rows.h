// Rows of coverage ahead of a press, one for each ink, held as far as its misregister reaches. Each row goes
// on beyond both ends of the picture with its last sample repeated, so that a shifted plate reads on.
#pragma once

#include "core/process/press/grown_rows.h"
#include "core/process/press/separation.h"

#include <cstdint>
#include <vector>

namespace tamlo {

class CoverageRows {
public:
    /// Rows from first on are separated as they are asked for; `held` of them stay valid. `margin` samples
    /// are readable ahead of a row, and as many and a vector past its end.
    CoverageRows(const GrownRows& picture, const ReproPrint::Separation& separation, std::int64_t first,
                 std::int64_t held, std::int64_t margin);

    /// Separates up to row y.
    void ensure(std::int64_t y);
    /// Coverage of an ink in row y, at pixel 0.
    const float* row(std::size_t ink, std::int64_t y) const;

private:
    float* at(std::size_t ink, std::int64_t y) const;
    void make(std::int64_t y);

    GrownRows::Reader reader_;
    const ReproPrint::Separation& separation_;
    std::int64_t width_, next_, held_, margin_, stride_;
    mutable std::vector<float> ring_;
};

} // namespace tamlo
