// The picture on the canvas, as it stands on screen: its pixels, its place, its colours.
#include "app/preview/reduced.h"
#include "core/image/resample.h"
#include "core/io/srgb_encode.h"
#include "tests/shell/session.h"
#include "tests/ui/canvas_pictures.h"
#include "ui/canvas/canvas_link.h"

#include <QSignalSpy>
#include <QTest>

namespace tamlo::ui {
namespace {

class Canvas : public WindowTest {};

TEST_F(Canvas, WindowsFitTogetherAndAreTheResizedWhole)
{
    const Image image = noise(230, 170);
    struct Case {
        Size shown;
        Resampling filter;
    };
    for (const auto& [shown, filter] :
         {Case{{97, 71}, Resampling::lanczos}, Case{{500, 371}, Resampling::bicubic},
          Case{{230, 170}, Resampling::bicubic}}) {
        const bool isReduced = shown.width < image->width;
        RGBImage whole(image->width, image->height);
        for (std::size_t i = 0; i < whole.data.size(); ++i)
            whole.mutableData()[i] = static_cast<float>(image->rgba[i / 3 * 4 + i % 3]) / 255.0f;
        whole = pilResize(isReduced ? linearOf(*image) : whole, shown, filter);
        int worst = 0;
        for (int top = 0; top < shown.height; top += 33)
            for (int left = 0; left < shown.width; left += 40) {
                const QRect part =
                    QRect(left, top, 40, 33) & QRect(0, 0, int(shown.width), int(shown.height));
                const QImage tile = makeTile(*image, shown, part, nullptr);
                for (int y = 0; y < part.height(); ++y)
                    for (int x = 0; x < part.width(); ++x) {
                        const float* const at = whole.row(top + y) + (left + x) * 3;
                        std::array<int, 3> expected{};
                        for (std::size_t c = 0; c < 3; ++c)
                            expected[c] = isReduced ? ImageWriter::srgbStep(at[c], 1, 255)
                                                    : int(std::clamp(at[c], 0.0f, 1.0f) * 255 + 0.5f);
                        worst = std::max(worst, worstDifference(tile.pixel(x, y), expected));
                    }
            }
        EXPECT_EQ(worst, 0) << shown.width;
    }
}

TEST_F(Canvas, OneToOneIsPixelForPixelWhereverItIsMoved)
{
    const Image image = noise(2000, 1500);
    PictureView view;
    view.resize(401, 300); // an odd side: the picture still lies on whole pixels
    view.setPicture(image);
    for (const QPointF pan : {QPointF(0, 0), QPointF(-120.4, 37.7), QPointF(249, 200)}) {
        view.setView(zoomFor(view, 2000), pan);
        settle(view);
        const QImage screen = shot(view);
        const QPoint corner = cornerOf(view);
        int worst = 0;
        for (int y = 0; y < screen.height(); ++y)
            for (int x = 0; x < screen.width(); ++x)
                worst = std::max(worst, worstDifference(screen.pixel(x, y),
                                                        pixel(*image, x - corner.x(), y - corner.y())));
        EXPECT_EQ(worst, 0);
        EXPECT_NEAR(corner.x(), (401 / 2.0 + pan.x()) * view.devicePixelRatioF() - 1000, 0.51);
    }
}

/// Where the edge of a picture that is dark at the left stands in a row of the screen.
double edgeAt(const QImage& screen, int y)
{
    double bright = 0;
    for (int x = 0; x < screen.width(); ++x) bright += qGreen(screen.pixel(x, y));
    return screen.width() - bright / 255;
}

TEST_F(Canvas, AFinerPictureDoesNotMoveNorGoBlank)
{
    // A slanted edge by its exact area in each pixel, of one picture in two sizes whose sides round apart.
    const auto edge = [](std::int64_t width, std::int64_t height) {
        return pictureOf(width, height, [=](std::int64_t x, std::int64_t y) {
            const double at = (0.52 + 0.06 * (double(y) + 0.5) / double(height)) * double(width);
            const int v = int(std::lround(255 * std::clamp(double(x) + 1 - at, 0.0, 1.0)));
            return std::array{v, v, v};
        });
    };
    PictureView view;
    view.resize(700, 520);
    view.setSurround(PictureView::Surround::dark);
    for (const double zoom : {1.0, 2.37, 6.1}) {
        view.setPicture(nullptr);
        view.setPicture(edge(512, 341));
        view.setView(zoom, {-31.3, 17.2});
        settle(view);
        const QImage coarse = shot(view);
        QSignalSpy fits(&view, &PictureView::fitChanged);
        view.setPicture(edge(2400, 1600));
        EXPECT_NEAR(edgeAt(shot(view), 260), edgeAt(coarse, 260), 1e-9)
            << "the coarse one stays till the fine is there";
        settle(view);
        EXPECT_EQ(fits.count(), 0);
        for (const int y : {100, 260, 400})
            EXPECT_NEAR(edgeAt(shot(view), y), edgeAt(coarse, y), 0.5) << zoom;
    }
}

TEST_F(Canvas, PicturesThatComeQuicklyAreShownWholeAndInOrder)
{
    PictureView view;
    view.resize(640, 480);
    view.setPicture(grey(900, 600, 0));
    settle(view);
    int last = 0, shown = 0;
    for (int step = 1; step <= 60; ++step) {
        view.setPicture(grey(900, 600, step * 4));
        QTest::qWait(2);
        const QImage screen = shot(view);
        const int middle = qGreen(screen.pixel(320, 240));
        for (const QPoint at : {QPoint(20, 60), QPoint(620, 60), QPoint(20, 420), QPoint(620, 420)}) {
            const int here = qGreen(screen.pixel(at));
            EXPECT_NEAR(here, middle, 1) << "of one picture in all its parts";
        }
        EXPECT_GE(middle, last - 1);
        shown += middle > last + 1;
        last = std::max(last, middle);
    }
    settle(view);
    EXPECT_NEAR(qGreen(shot(view).pixel(320, 240)), 240, 1);
    EXPECT_GT(shown, 3) << "a hand that goes on is followed";
}

TEST_F(Canvas, TwoPicturesShowTheSamePartAndTheirNames)
{
    const Image left = grey(1200, 800, 90), right = grey(600, 400, 200);
    PictureView view;
    view.resize(800, 400);
    view.setPicture(left);
    view.setPicture(PictureView::Side::beside, right);
    view.setArrangement(PictureView::Arrangement::split);
    view.setSplit(0.25);
    settle(view);
    const QImage split = shot(view);
    EXPECT_EQ(qRed(split.pixel(180, 300)), 90);
    EXPECT_EQ(qRed(split.pixel(230, 300)), 200);
    view.setName(PictureView::Side::beside, QStringLiteral("B"));
    EXPECT_NE(shot(view), split);
    view.setArrangement(PictureView::Arrangement::sideBySide);
    EXPECT_EQ(view.panelSize(), QSizeF(399, 400));
    view.setView(5, {60, -20});
    settle(view);
    const QImage both = shot(view);
    EXPECT_EQ(qRed(both.pixel(200, 300)), 90);
    EXPECT_EQ(qRed(both.pixel(600, 300)), 200);
}

TEST_F(Canvas, GoesAtAnyMomentOfItsWork)
{
    const Image image = noise(3000, 2000);
    for (int i = 0; i < 40; ++i) {
        auto view = std::make_unique<PictureView>();
        view->resize(900, 700);
        view->setPicture(image);
        if (i % 3 == 0) view->setView(1.7, {});
        QTest::qWait(i % 8);
        view.reset();
        if (i % 2) QTest::qWait(1);
    }
}

TEST_F(Canvas, ForgetsTheTilesThatWereUsedLongestAgo)
{
    TileCache cache(10 * 64 * 64 * 4);
    const QImage tile(64, 64, QImage::Format_RGB32);
    const auto key = [](int x) { return TileKey{1, {1000, 1000}, x, 0, 0}; };
    for (int x = 0; x < 10; ++x) cache.put(key(x), tile);
    EXPECT_FALSE(cache.find(key(0)).isNull());
    cache.put(key(10), tile);
    EXPECT_TRUE(cache.find(key(1)).isNull());
    EXPECT_FALSE(cache.find(key(0)).isNull());
    EXPECT_EQ(cache.bytes(), 10 * tile.sizeInBytes());
}

class CanvasOfASession : public test::SessionTest {
protected:
    WindowApplication application_;
};

TEST_F(CanvasOfASession, PanThenZoomAboutAPointIsZoomThenPan)
{
    open(1);
    PictureView view;
    view.resize(800, 600);
    CanvasLink link(model_, nullptr, view);
    link.show(noise(600, 400), {6000, 4000});
    EXPECT_NEAR(model_.zoom.oneToOneZoom(), 6000 / view.fitSize().width(), 1e-9);
    const QPointF about(120, -60), pan(-90, 40);
    const auto shareUnder = [&](QPointF fromCentre) {
        const QRectF at = view.pictureRect();
        const QPointF point = QRectF(view.rect()).center() + fromCentre;
        return QPointF((point.x() - at.x()) / at.width(), (point.y() - at.y()) / at.height());
    };
    link.zoomTo(2, {});
    link.panTo(pan);
    const QPointF held = shareUnder(about);
    link.zoomTo(4, about);
    EXPECT_NEAR(shareUnder(about).x(), held.x(), 0.5 / view.pictureRect().width())
        << "what the pointer is on stays";
    EXPECT_NEAR(shareUnder(about).y(), held.y(), 0.5 / view.pictureRect().height());
    // The twin: zoomed about where that point lay before the move, then moved.
    const QPointF first = view.pan();
    link.zoomTo(2, {});
    link.panTo({});
    link.zoomTo(4, about - pan);
    link.panTo(view.pan() + pan);
    EXPECT_NEAR(view.pan().x(), first.x(), 1e-9);
    EXPECT_NEAR(view.pan().y(), first.y(), 1e-9);
    // From the fit to 1:1 about a point, and back.
    model_.zoom.reset();
    link.toggleOneToOne(about);
    EXPECT_NEAR(view.pictureRect().width(), 6000, 1e-6);
    link.toggleOneToOne(about);
    EXPECT_EQ(view.zoom(), 1);
    EXPECT_EQ(view.pan(), QPointF(0, 0));
}

} // namespace
} // namespace tamlo::ui
