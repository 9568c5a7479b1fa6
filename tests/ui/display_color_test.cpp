// The colours of a screen, as they stand on it.
#include "tests/support/icc_reference.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_seams.h"
#include "tests/support/x_root.h"
#include "tests/ui/canvas_pictures.h"
#include "ui/canvas/display_color.h"

#include <QFile>
#include <QScreen>
#include <QSignalSpy>

namespace tamlo::ui {
namespace {

class CanvasColors : public WindowTest {};

/// A picture of patches, and that all of them stand on screen as the colour engine says.
void expectWideColors(PictureView& view, const Image& patches)
{
    view.setPicture(patches);
    view.setView(zoomFor(view, double(patches->width)), {});
    settle(view);
    const QImage screen = shot(view);
    const QPoint corner = cornerOf(view);
    for (std::int64_t y = 0; y < patches->height; y += 3)
        for (std::int64_t x = 0; x < patches->width; x += 3) {
            const auto expected = test::onWideScreen(pixel(*patches, x, y));
            const QRgb seen = screen.pixel(corner + QPoint(int(x), int(y)));
            ASSERT_NEAR(qRed(seen), expected[0], 2);
            ASSERT_NEAR(qGreen(seen), expected[1], 2);
            ASSERT_NEAR(qBlue(seen), expected[2], 2);
        }
}

TEST_F(CanvasColors, AChosenProfileIsAppliedAndARefusedOneIsNot)
{
    const test::ScratchFolder folder;
    const auto write = [&](const char* name, const auto& bytes) {
        QFile file(QString::fromStdString((folder / name).string()));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(bytes.data()), qint64(bytes.size()));
        return file.fileName();
    };
    const QString wide = write("wide.icc", test::wideScreenProfile());
    const QString broken = write("broken.icc", std::string("no profile"));
    test::MapPreferences preferences;
    DisplayColor color(preferences);
    PictureView view;
    view.resize(300, 300);
    view.setDisplayColor(&color);
    const Image patches = noise(120, 90);
    view.setPicture(patches);
    settle(view);
    EXPECT_FALSE(color.choose(view.screen(), {DisplayColor::Source::file, broken}));
    EXPECT_EQ(color.choice(view.screen()).source, DisplayColor::Source::system);
    EXPECT_TRUE(color.choose(view.screen(), {DisplayColor::Source::file, wide}));
    expectWideColors(view, patches);
    EXPECT_TRUE(color.choose(view.screen(), {DisplayColor::Source::sRGB, {}}));
    settle(view);
    const QPoint corner = cornerOf(view);
    EXPECT_EQ(worstDifference(shot(view).pixel(corner), pixel(*patches, 0, 0)), 0);
}

TEST_F(CanvasColors, FollowsTheProfileOfTheServer)
{
    if (QGuiApplication::platformName() != QStringLiteral("xcb")) GTEST_SKIP() << "no X server";
    test::MapPreferences preferences;
    DisplayColor color(preferences);
    PictureView view;
    view.resize(300, 300);
    view.setDisplayColor(&color);
    QSignalSpy changes(&color, &DisplayColor::changed);
    EXPECT_TRUE(color.profileName(view.screen()).isEmpty());
    test::setRootProfile(test::wideScreenProfile());
    ASSERT_TRUE(changes.wait());
    EXPECT_FALSE(color.profileName(view.screen()).isEmpty());
    expectWideColors(view, noise(120, 90));
    test::setRootProfile({});
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(color.of(view.screen()).serial, 0u);
}

} // namespace
} // namespace tamlo::ui
