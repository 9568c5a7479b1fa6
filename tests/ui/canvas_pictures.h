// Pictures for a canvas, and what of them stands on screen.
#pragma once

#include "tests/ui/window_application.h"
#include "ui/canvas/picture_view.h"

#include <QTest>

#include <cmath>
#include <random>

namespace tamlo::ui {

using Image = PictureView::Image;

template <typename F>
Image pictureOf(std::int64_t width, std::int64_t height, F&& rgb)
{
    ReadyImage image{width, height, {}, ReadyImage::Alpha::skip};
    for (std::int64_t y = 0; y < height; ++y)
        for (std::int64_t x = 0; x < width; ++x) {
            const std::array<int, 3> c = rgb(x, y);
            for (const int v : {c[0], c[1], c[2], 255}) image.rgba.push_back(static_cast<std::uint8_t>(v));
        }
    return std::make_shared<const ReadyImage>(std::move(image));
}

inline Image noise(std::int64_t width, std::int64_t height)
{
    std::mt19937 random(7);
    return pictureOf(width, height, [&](auto, auto) {
        const auto bits = random();
        return std::array{int(bits & 255), int(bits >> 8 & 255), int(bits >> 16 & 255)};
    });
}

inline Image grey(std::int64_t width, std::int64_t height, int value)
{
    return pictureOf(width, height, [value](auto, auto) { return std::array{value, value, value}; });
}

inline std::array<int, 3> pixel(const ReadyImage& image, std::int64_t x, std::int64_t y)
{
    const std::uint8_t* at = image.rgba.data() + (y * image.width + x) * 4;
    return {at[0], at[1], at[2]};
}

inline int worstDifference(QRgb a, const std::array<int, 3>& b)
{
    return std::max({std::abs(qRed(a) - b[0]), std::abs(qGreen(a) - b[1]), std::abs(qBlue(a) - b[2])});
}

inline void settle(PictureView& view)
{
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.isExact(); }, 20'000));
}

inline QImage shot(PictureView& view)
{
    return view.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// Zoom of a view at which its picture's long side takes so many pixels.
inline double zoomFor(const PictureView& view, double longPx)
{
    const QSizeF fit = view.fitSize();
    return longPx / view.devicePixelRatioF() / std::max(fit.width(), fit.height());
}

/// The picture's corner in pixels of the screen.
inline QPoint cornerOf(const PictureView& view)
{
    return (view.pictureRect().topLeft() * view.devicePixelRatioF()).toPoint();
}

} // namespace tamlo::ui
