#include "app/preview/view_window.h"

#include "core/image/bands.h"
#include "core/image/resample_passes.h"
#include "core/image/zcolor.h"
#include "core/io/srgb_encode.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <vector>

namespace tamlo {
namespace {

constexpr std::int64_t kChannels = 3;

using Levels = std::array<float, 256>;

/// Light of the 256 values.
const Levels& lightLevels()
{
    static const Levels levels = [] {
        Levels values{};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = ZColor::srgbToLinear(static_cast<float>(i) / 255.0f);
        return values;
    }();
    return levels;
}

/// The values themselves, 0...1.
const Levels& codedLevels()
{
    static const Levels levels = [] {
        Levels values{};
        for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i) / 255.0f;
        return values;
    }();
    return levels;
}

void copyWindow(const ReadyImage& picture, const ViewWindow& window, std::span<std::uint8_t> into)
{
    for (std::int64_t y = 0; y < window.height; ++y)
        std::copy_n(picture.rgba.data() + ((window.y + y) * picture.width + window.x) * 4, window.width * 4,
                    into.data() + y * window.width * 4);
}

/// The picture's rows under a window at the window's width, made as they are asked for and held in a ring.
class WindowRows {
public:
    WindowRows(const ReadyImage& picture, ResampleCoeffs& across, const ResampleCoeffs& down,
               const Levels& levels)
        : picture_(picture),
          across_(across),
          levels_(levels),
          first_(across.xmin.front()),
          next_(down.xmin.front())
    {
        span_ = across.xmin.back() + across.n.back() - first_;
        for (std::int64_t& at : across.xmin) at -= first_;
        slots_ = *std::ranges::max_element(down.n) + 1;
        stride_ = static_cast<std::int64_t>(across.xmin.size()) * kChannels + kResampleLanes;
        ring_.resize(static_cast<std::size_t>(slots_ * stride_));
        levelled_.resize(static_cast<std::size_t>(span_ * kChannels + kResampleLanes));
    }

    const float* row(std::int64_t y)
    {
        for (; next_ <= y; ++next_) makeRow();
        return slot(y);
    }

private:
    float* slot(std::int64_t y) { return ring_.data() + y % slots_ * stride_; }

    void makeRow()
    {
        const std::uint8_t* from = picture_.rgba.data() + (next_ * picture_.width + first_) * 4;
        float* to = levelled_.data();
        for (std::int64_t i = 0; i < span_; ++i, from += 4, to += kChannels)
            for (std::int64_t c = 0; c < kChannels; ++c) to[c] = levels_[from[c]];
        resample_row({levelled_.data(), kChannels, slot(next_)}, across_);
    }

    const ReadyImage& picture_;
    const ResampleCoeffs& across_;
    const Levels& levels_;
    std::int64_t first_, next_, span_ = 0, slots_ = 0, stride_ = 0;
    std::vector<float> ring_, levelled_;
};

RGBImage resampled(const ReadyImage& picture, Size shown, const ViewWindow& window, bool isReduced)
{
    const Resampling filter = isReduced ? Resampling::lanczos : Resampling::bicubic;
    ResampleCoeffs across(picture.width, shown.width, filter, window.x, window.width);
    const ResampleCoeffs down(picture.height, shown.height, filter, window.y, window.height);
    WindowRows source(picture, across, down, isReduced ? lightLevels() : codedLevels());
    RGBImage out(window.width, window.height);
    float* const to = out.mutableData();
    const std::int64_t samples = window.width * kChannels;
    std::vector<const float*> rows;
    for (std::int64_t y = 0; y < window.height; ++y) {
        const auto i = static_cast<std::size_t>(y);
        rows.clear();
        for (std::int64_t j = 0; j < down.n[i]; ++j) rows.push_back(source.row(down.xmin[i] + j));
        resample_column({rows.data(), down.k.data() + y * down.ksize, down.n[i], samples, to + y * samples});
    }
    return out;
}

void writeCoded(const RGBImage& image, std::span<std::uint8_t> into)
{
    const float* from = image.data.data();
    std::uint8_t* to = into.data();
    for (std::int64_t i = 0; i < image.pixelCount(); ++i, from += kChannels, to += 4) {
        for (std::int64_t c = 0; c < kChannels; ++c)
            to[c] = static_cast<std::uint8_t>(std::clamp(from[c], 0.0f, 1.0f) * 255.0f + 0.5f);
        to[3] = 255;
    }
}

/// Light of the half-size rows from `first` on.
void halveRows(const ReadyImage& picture, std::int64_t first, RGBImage& light)
{
    const Levels& levels = lightLevels();
    float* to = light.mutableData();
    for (std::int64_t y = first; y < first + light.height; ++y) {
        const std::uint8_t* const upper = picture.rgba.data() + 2 * y * picture.width * 4;
        const std::uint8_t* const lower =
            picture.rgba.data() + std::min(2 * y + 1, picture.height - 1) * picture.width * 4;
        for (std::int64_t x = 0; x < light.width; ++x, to += kChannels) {
            const std::int64_t left = 2 * x * 4, right = std::min(2 * x + 1, picture.width - 1) * 4;
            for (std::int64_t c = 0; c < kChannels; ++c)
                to[c] = ((levels[upper[left + c]] + levels[upper[right + c]]) +
                         (levels[lower[left + c]] + levels[lower[right + c]])) /
                        4;
        }
    }
}

} // namespace

void drawViewWindow(const ReadyImage& picture, Size shown, const ViewWindow& window,
                    std::span<std::uint8_t> into)
{
    assert(std::ssize(into) >= window.width * window.height * 4);
    if (shown == Size{picture.width, picture.height}) return copyWindow(picture, window, into);
    const bool isReduced = shown.width * shown.height < picture.width * picture.height;
    const RGBImage part = resampled(picture, shown, window, isReduced);
    isReduced ? ImageWriter::encodeSRGB8(part, into) : writeCoded(part, into);
}

ReadyImage halved(const ReadyImage& picture)
{
    constexpr std::int64_t kStripRows = 16; // of the result: the light of a strip stays in the cache
    const std::int64_t width = (picture.width + 1) / 2, height = (picture.height + 1) / 2;
    ReadyImage out{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width * height * 4)),
                   ReadyImage::Alpha::skip};
    const std::int64_t strips = (height + kStripRows - 1) / kStripRows;
    parallelBands(strips, kStripRows * picture.width, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t strip = start; strip < end; ++strip) {
            const std::int64_t first = strip * kStripRows;
            RGBImage light(width, std::min(kStripRows, height - first));
            halveRows(picture, first, light);
            ImageWriter::encodeSRGB8(
                light, std::span(out.rgba).subspan(static_cast<std::size_t>(first * width * 4)));
        }
    });
    return out;
}

} // namespace tamlo
