#include "core/process/press/grown_rows.h"

#include "core/image/resample_passes.h"

#include <algorithm>

namespace tamlo {

GrownRows::GrownRows(const RGBImage& image, Size grown)
    : image_(image),
      size_(grown),
      across_(image.width, grown.width, Resampling::bicubic),
      down_(image.height, grown.height, Resampling::bicubic)
{}

GrownRows::Reader::Reader(const GrownRows& rows) : rows_(rows), stride_(rows.size_.width * 3 + kResampleLanes)
{
    if (rows.image_.size() == rows.size_) return;
    ring_.resize(static_cast<std::size_t>(rows.down_.ksize * stride_));
    source_.resize(static_cast<std::size_t>(rows.image_.width * 3 + kResampleLanes));
    out_.resize(static_cast<std::size_t>(stride_));
}

const float* GrownRows::Reader::row(std::int64_t y)
{
    if (rows_.image_.size() == rows_.size_) return rows_.image_.row(y);
    const auto i = static_cast<std::size_t>(y);
    const ResampleCoeffs& down = rows_.down_;
    taps_.clear();
    for (std::int64_t k = 0; k < down.n[i]; ++k) taps_.push_back(wideRow(down.xmin[i] + k));
    resample_column(
        {taps_.data(), down.k.data() + y * down.ksize, down.n[i], rows_.size_.width * 3, out_.data()});
    return out_.data();
}

const float* GrownRows::Reader::wideRow(std::int64_t y)
{
    if (next_ < 0) next_ = y;
    for (; next_ <= y; ++next_) {
        std::copy_n(rows_.image_.row(next_), rows_.image_.width * 3, source_.data());
        resample_row({source_.data(), 3, slot(next_)}, rows_.across_);
    }
    return slot(y);
}

float* GrownRows::Reader::slot(std::int64_t y)
{
    return ring_.data() + y % rows_.down_.ksize * stride_;
}

} // namespace tamlo
