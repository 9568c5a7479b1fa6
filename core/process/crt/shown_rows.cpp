#include "core/process/crt/shown_rows.h"

#include "core/image/resample_passes.h"
#include "core/image/rounding.h"

#include <algorithm>

namespace tamlo {
namespace {

constexpr double kLeastShare = 0.0001; // an overscan below this is none

/// One axis: enlarged to `shown` samples, `hidden` taken off both ends, and the rest spread over all again.
/// Nothing where each sample stays what it is.
std::optional<ResampleCoeffs> axis(std::int64_t in, std::int64_t shown, std::int64_t hidden)
{
    if (hidden == 0) {
        if (in == shown) return std::nullopt;
        return ResampleCoeffs(in, shown, Resampling::bicubic);
    }
    const ResampleCoeffs spread(shown - 2 * hidden, shown, Resampling::lanczos);
    const ResampleCoeffs grown(in, shown, in == shown ? Resampling::box : Resampling::bicubic);
    ResampleCoeffs out = spread;
    std::vector<std::vector<double>> rows(static_cast<std::size_t>(shown));
    out.ksize = 1;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto tap = [&](std::int64_t j) {
            return static_cast<std::size_t>(spread.xmin[i] + j + hidden);
        };
        const std::size_t last = tap(spread.n[i] - 1);
        const std::int64_t from = grown.xmin[tap(0)], to = grown.xmin[last] + grown.n[last];
        rows[i].assign(static_cast<std::size_t>(to - from), 0.0);
        for (std::int64_t j = 0; j < spread.n[i]; ++j)
            for (std::int64_t k = 0; k < grown.n[tap(j)]; ++k)
                rows[i][static_cast<std::size_t>(grown.xmin[tap(j)] + k - from)] +=
                    spread.k[i * static_cast<std::size_t>(spread.ksize) + static_cast<std::size_t>(j)] *
                    grown.k[tap(j) * static_cast<std::size_t>(grown.ksize) + static_cast<std::size_t>(k)];
        out.xmin[i] = from;
        out.n[i] = to - from;
        out.ksize = std::max(out.ksize, to - from);
    }
    out.k.assign(static_cast<std::size_t>(out.ksize * shown), 0.0);
    for (std::size_t i = 0; i < rows.size(); ++i)
        std::copy(rows[i].begin(), rows[i].end(),
                  out.k.begin() + static_cast<std::ptrdiff_t>(i) * static_cast<std::ptrdiff_t>(out.ksize));
    return out;
}

} // namespace

CRTScreen::ShownRows::ShownRows(const RGBImage& image, Size shown, double overscan)
    : image_(image), size_(shown)
{
    const auto hidden = [&](std::int64_t side) {
        if (overscan <= kLeastShare) return std::int64_t{0};
        return std::min(pyRound(overscan * static_cast<double>(side)), (side - 1) / 2);
    };
    x_ = axis(image.width, shown.width, hidden(shown.width));
    y_ = axis(image.height, shown.height, hidden(shown.height));
}

CRTScreen::ShownRows::Reader::Reader(const ShownRows& shown) : shown_(shown)
{
    slots_ = shown.y_ ? *std::max_element(shown.y_->n.begin(), shown.y_->n.end()) + 1 : 1;
    stride_ = (shown.size_.width + 1) * kResampleLanes;
    if (shown.x_) ring_.resize(static_cast<std::size_t>(slots_ * stride_));
    if (shown.x_) padded_.resize(static_cast<std::size_t>((shown.image_.width + 1) * kResampleLanes));
    if (shown.y_) out_.resize(static_cast<std::size_t>(shown.size_.width * 3));
}

const float* CRTScreen::ShownRows::Reader::wideRow(std::int64_t y)
{
    const RGBImage& image = shown_.image_;
    if (!shown_.x_) return image.row(y);
    if (next_ < 0 || next_ < y - slots_) next_ = y;
    for (; next_ <= y; ++next_) {
        const float* from = image.row(next_);
        if (next_ == image.height - 1) { // the pass reads one sample past each pixel
            std::copy_n(from, image.width * 3, padded_.data());
            from = padded_.data();
        }
        resample_row({from, 3, ring_.data() + next_ % slots_ * stride_}, *shown_.x_);
    }
    return ring_.data() + y % slots_ * stride_;
}

const float* CRTScreen::ShownRows::Reader::row(std::int64_t y)
{
    if (!shown_.y_) return wideRow(y);
    const ResampleCoeffs& table = *shown_.y_;
    const auto i = static_cast<std::size_t>(y);
    taps_.clear();
    for (std::int64_t j = 0; j < table.n[i]; ++j) taps_.push_back(wideRow(table.xmin[i] + j));
    resample_column(
        {taps_.data(), table.k.data() + y * table.ksize, table.n[i], shown_.size_.width * 3, out_.data()});
    return out_.data();
}

} // namespace tamlo
