// Crops while they are made, and the session around them.
#include "tests/shell/session.h"

#include <cmath>
#include <random>

namespace tamlo::test {
namespace {

using Kind = CropAspectKind;

CropDraft::Picture picture(std::int64_t w, std::int64_t h, std::optional<double> format = 1.5)
{
    return {{w, h}, {}, format, {}};
}

void expectRect(const RectPx& rect, double x, double y, double w, double h)
{
    EXPECT_NEAR(rect.x, x, 0.5);
    EXPECT_NEAR(rect.y, y, 0.5);
    EXPECT_NEAR(rect.w, w, 0.5);
    EXPECT_NEAR(rect.h, h, 0.5);
}

TEST(CropGeometryRules, HandlesMoveTheirEdgesAndKeepTheOthers)
{
    using namespace CropGeometry;
    const Size bounds{1000, 800};
    const RectPx rect{200, 200, 300, 200};
    struct Case {
        CropHandle handle;
        double dx, dy;
        std::optional<double> aspect;
        bool fromCentre;
        RectPx expected;
    };
    const Case cases[] = {
        {CropHandle::body, 900, -900, {}, false, {700, 0, 300, 200}},
        {CropHandle::right, 50, 99, {}, false, {200, 200, 350, 200}},
        {CropHandle::left, 50, 0, {}, false, {250, 200, 250, 200}},
        {CropHandle::left, 50, 0, {}, true, {250, 200, 200, 200}},
        {CropHandle::top, 0, -900, {}, false, {200, 0, 300, 400}},
        {CropHandle::topLeft, 900, 900, {}, false, {436, 336, 64, 64}},
        {CropHandle::bottomRight, 150, 0, 1.5, false, {200, 200, 450, 300}},
        {CropHandle::bottomRight, 9000, 0, 1.5, false, {200, 200, 800, 533.333}},
        {CropHandle::right, -9000, 0, 1.5, false, {200, 268, 96, 64}},
        {CropHandle::bottom, 0, 100, 1.0, false, {200, 200, 300, 300}},
        {CropHandle::topRight, 30, -20, 1.5, true, {170, 180, 360, 240}},
    };
    for (const Case& c : cases) {
        const RectPx r = resized(rect, c.handle, c.dx, c.dy, bounds, c.aspect, c.fromCentre, 64);
        SCOPED_TRACE(static_cast<int>(c.handle));
        expectRect(r, c.expected.x, c.expected.y, c.expected.w, c.expected.h);
    }
    expectRect(transposed({0, 0, 6000, 4000}, {6000, 4000}, 64), 1667, 0, 2667, 4000);
    expectRect(clamped({-50, 10, 20, 2000}, bounds, 64), 0, 0, 64, 800);
}

TEST(CropAspects, HaveTitlesAndTolerances)
{
    EXPECT_EQ(Kind::of(1.5).title(false), "3:2");
    EXPECT_EQ(Kind::of(1.5).title(true), "2:3");
    EXPECT_EQ(Kind::of(1.0001).title(false), "1:1");
    EXPECT_EQ(Kind::of(2.39).title(false), "2.39:1");
    EXPECT_EQ(Kind::of(2.5).title(true), "0.40:1");
    EXPECT_EQ(Kind::free().title(false), "");
    const CropDraft draft(picture(6000, 4000, std::nullopt), {});
    const auto matched = [&](double w, double h) {
        return draft.matchedAspect(draft.candidates(), {0, 0, w, h});
    };
    EXPECT_EQ(matched(1505, 1000), Kind::of(1.5));
    EXPECT_EQ(matched(1515, 1000), Kind::free());
    EXPECT_EQ(matched(1000, 1500), Kind::of(1.5)) << "standing";
    EXPECT_EQ(matched(0, 10), Kind::free());
    EXPECT_FALSE(draft.isEnabled(Kind::format())) << "a custom size has no ratio";
    EXPECT_EQ(CropDraft(picture(6000, 4000), {}).aspectKind(), Kind::format()) << "it comes before 3:2";
}

TEST(CropDrafts, ARatioKeepsAreaPlaceAndTheWayItStands)
{
    CropDraft draft(picture(2000, 3000), {});
    EXPECT_TRUE(draft.isPortrait());
    draft.setAspect(Kind::of(16.0 / 9));
    expectRect(draft.rect(), 156.25, 0, 1687.5, 3000);
    draft.swapAspect();
    expectRect(draft.rect(), 0, 937.5, 2000, 1125);
    draft.expandToMax();
    expectRect(draft.rect(), 0, 937.5, 2000, 1125);
    CropDraft lying(picture(6000, 4000), {});
    lying.setAspect(Kind::of(1));
    lying.setRect({1000, 1000, 200, 300});
    lying.setAspect(Kind::format());
    lying.expandToMax();
    expectRect(lying.rect(), 0, 0, 2666.7, 4000); // standing, in the format's ratio
    CropDraft narrow(picture(100, 3000), {});
    narrow.setAspect(Kind::of(16.0 / 9));
    narrow.swapAspect();
    EXPECT_GE(std::min(narrow.rect().w, narrow.rect().h), 64);
    EXPECT_LE(narrow.rect().w, 100) << "the ratio gives way";
}

TEST(CropDrafts, ATiltGivesBackWhatItTook)
{
    CropDraft draft(picture(6000, 4000), {});
    draft.setAngle(50);
    EXPECT_EQ(draft.angle(), 45);
    draft.setAngle(0);
    EXPECT_FALSE(draft.value()) << "as large as it could be, and so it stays";
    draft.setAngle(5);
    expectRect(draft.rect(), 338, 225, 5324, 3549.5);
    draft.setAngle(0);
    expectRect(draft.rect(), 0, 0, 6000, 4000);
    const RectPx own{1000, 800, 3000, 2000};
    draft.setRect(own);
    draft.beginTilt();
    for (const double angle : {3.0, 20.0, 40.0, -45.0, 0.0}) draft.setAngle(angle);
    draft.endTilt();
    EXPECT_EQ(draft.rect(), own);
    draft.setAngle(40);
    const RectPx tilted = draft.rect();
    draft.setAngle(0);
    EXPECT_LE(draft.rect().w, own.w + 0.5) << "one made by hand doesn't grow";
    EXPECT_LE(tilted.w, own.w + 0.5);
    draft.setAngle(0);
    draft.levelBy({0, 0}, {100, 10});
    EXPECT_NEAR(draft.angle(), -std::atan(0.1) * 180 / 3.14159265358979, 1e-9);
    draft.setAngle(0);
    draft.levelBy({0, 0}, {10, -100});
    EXPECT_NEAR(draft.angle(), -std::atan(0.1) * 180 / 3.14159265358979, 1e-9) << "upright";
}

// Whatever is done, the rectangle lies in the picture and its corners in the source, and the stored crop
// comes back as it was, however the frame is turned.
TEST(CropDrafts, AnyGestureStaysWithinThePicture)
{
    std::mt19937 random(5);
    const auto real = [&](double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random);
    };
    for (int run = 0; run < 60; ++run) {
        CropDraft::Picture p = picture(200 + random() % 6000, 200 + random() % 6000);
        p.orient = {static_cast<std::int64_t>(random() % 4), random() % 2 == 1};
        CropDraft draft(p, {});
        for (int i = 0; i < 40; ++i) {
            switch (random() % 6) {
            case 0:
                draft.setAspect(Kind::ladder()[random() % Kind::ladder().size()]);
                break;
            case 1:
                draft.setAngle(real(-60, 60));
                break;
            case 2:
                draft.swapAspect();
                break;
            case 3:
                draft.nudge(real(-500, 500), real(-500, 500));
                break;
            case 4:
                draft.drag(static_cast<CropHandle>(random() % 9), real(-900, 900), real(-900, 900),
                           {.fromCentre = random() % 2 == 0, .keepsRatio = random() % 2 == 0});
                break;
            default:
                draft.expandToMax();
            }
            const RectPx& r = draft.rect();
            const double w = static_cast<double>(p.size.width), h = static_cast<double>(p.size.height);
            ASSERT_TRUE(r.x > -0.01 && r.y > -0.01 && r.x + r.w < w + 0.01 && r.y + r.h < h + 0.01)
                << run << "." << i << ": " << r.x << " " << r.y << " " << r.w << " " << r.h;
            const Crop unit{r.x / w, r.y / h, r.w / w, r.h / h, draft.angle()};
            ASSERT_TRUE(Pipeline::cropFits(unit, std::nullopt, p.size, 0.01)) << run << "." << i;
            if (const auto value = draft.value()) {
                const CropDraft again(p, value);
                EXPECT_NEAR(again.rect().x, r.x, 0.01);
                EXPECT_NEAR(again.rect().h, r.h, 0.01);
                EXPECT_NEAR(again.angle(), draft.angle(), 1e-9) << "a visit tilts nothing";
            }
        }
    }
}

class CropSessionTest : public SessionTest {};

TEST_F(CropSessionTest, ASessionIsOneStepOrNone)
{
    open(4);
    Cropping& cropping = model_.cropping;
    cropping.resetCrops(all());
    const std::size_t before = steps();
    cropping.cropKey();
    ASSERT_TRUE(cropping.cropMode());
    EXPECT_EQ(model_.selection.screen(), Screen::develop);
    EXPECT_EQ(cropping.draft()->aspectKind(), Kind::format());
    cropping.cropKey();
    EXPECT_FALSE(cropping.cropMode());
    EXPECT_EQ(steps(), before) << "nothing was changed";
    model_.turns.orient(ids({0}), OrientAction::right);
    cropping.cropKey();
    EXPECT_EQ(cropping.draft()->picture().size, (Size{4000, 6000}));
    cropping.change([](CropDraft& draft) { draft.setAspect(Kind::of(1)); });
    model_.selection.backToGrid();
    EXPECT_EQ(topName(), "Crop");
    EXPECT_NEAR(roll()[0].crop->w * 6000, roll()[0].crop->h * 4000, 1);
    model_.selection.select(ids({0, 1, 2}));
    cropping.resetCropOfTargets();
    EXPECT_EQ(topName(), "Reset Crop (3)");
    EXPECT_FALSE(roll()[0].crop);
    model_.selection.openFrame(roll()[1].id);
    cropping.enterCropMode();
    cropping.change([](CropDraft& draft) { draft.setAngle(4); });
    model_.undo();
    EXPECT_EQ(cropping.draft()->angle(), roll()[1].crop ? roll()[1].crop->angle : 0)
        << "what the frame says now";
    cropping.leaveCropMode();
    model_.sides.enterAB();
    EXPECT_FALSE(cropping.cropKeyEnabled());
    cropping.cropKey();
    EXPECT_FALSE(cropping.cropMode());
}

TEST_F(CropSessionTest, LabelsTellTheWindowOnTheFilm)
{
    open(2);
    const auto with = [&](const char* film, FilmFormat format, const char* size) {
        model_.cropping.leaveCropMode();
        model_.cropping.resetCrops(all());
        model_.rack.change(all(), [&](ProcessSettings& process) {
            process.stock = film;
            process.options.format = format;
            process.options.frameSize = size;
        });
        model_.cropping.resetCrops(all());
        model_.selection.openFrame(roll()[0].id);
        model_.cropping.enterCropMode();
        return model_.cropping.windowLabel();
    };
    model_.turns.orient(all(), OrientAction::reset);
    EXPECT_EQ(with("trix400", FilmFormat::f135, "full"), "The whole frame: Full frame · 36 × 24 mm · 3:2");
    EXPECT_EQ(model_.cropping.formatHint(roll()[0]), std::nullopt);
    model_.cropping.change([](CropDraft& draft) { draft.setAspect(Kind::of(1)); });
    EXPECT_EQ(model_.cropping.windowLabel(), "Full frame · 36 × 24 mm");
    EXPECT_EQ(with("trix400", FilmFormat::f120, "645"), "The whole frame: 6 × 4.5 · 56 × 41.5 mm · 3:2");
    with("trix400", FilmFormat::f135, "custom");
    EXPECT_EQ(model_.cropping.formatHint(roll()[0]),
              "Frame size is “Custom”: it has no ratio of its own, so the frame is free");
    EXPECT_FALSE(model_.cropping.draft()->isEnabled(Kind::format()));
    const std::string card = with("polaroid_sx70", FilmFormat::f135, "full");
    EXPECT_TRUE(card.starts_with("the card's frame · ")) << card;
    EXPECT_EQ(with("gone", FilmFormat::f135, "full"), "");
}

} // namespace
} // namespace tamlo::test
