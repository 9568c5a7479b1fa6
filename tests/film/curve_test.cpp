#include "core/film/print/print.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace tamlo {
namespace {

TEST(HDCurve, GoesThroughTheGreyCardAtItsSlope)
{
    struct Case {
        double dmin, dmax, gamma, toe, mid;
    };
    for (const Case& c : {Case{0.2, 2.3, 0.6, 1.5, 0.85}, Case{0.06, 2.6, 0.62, 0.35, 0.86},
                          Case{0.15, 3.34, 1.56, 1.65, 0.9}, Case{0.05, 2.35, 1.75, 1.2, kPaperAnchor}}) {
        const HDCurve curve(c.dmin, c.dmax, c.gamma, c.toe, c.mid);
        EXPECT_NEAR(curve.density(0.0f), c.dmin + c.mid, 1e-5);
        const float h = 0.01f;
        EXPECT_NEAR((curve.density(h) - curve.density(-h)) / (2.0 * h), c.gamma, 2e-3);
        float last = curve.density(-20.0f);
        EXPECT_NEAR(curve.density(-1e6f), c.dmin, 1e-5);
        EXPECT_NEAR(curve.density(1e6f), c.dmax, 1e-4);
        for (float x = -6.0f; x < 6.0f; x += 0.05f) {
            const float d = curve.density(x);
            EXPECT_GE(d, last);
            last = d;
        }
    }
}

TEST(HDCurve, HasTheKnownSolution)
{
    const HDCurve film(0.2, 2.3, 0.6, 1.5, 0.85);
    EXPECT_NEAR(film.k, 1.426050, 1e-6);
    EXPECT_NEAR(film.m, 0.742564, 1e-6);
    EXPECT_NEAR(film.density(-1.0f), 0.579813, 1e-5);
    EXPECT_NEAR(film.density(1.0f), 1.678521, 1e-5);
    const HDCurve paper = Print::paperCurve(PaperProfile{}, 2.0, 0.0, 0.0);
    EXPECT_NEAR(paper.k, 4.208065, 1e-6);
    EXPECT_NEAR(paper.m, 0.222046, 1e-6);
}

TEST(HDCurve, StaysFiniteWhereItsNumbersDont)
{
    for (const HDCurve& curve : {HDCurve(0.2, 1.0, 0.6, 1.5, 2.0), HDCurve(0.2, 0.2, 0.6, 1.5, 0.85),
                                 HDCurve(0.2, 2.3, 0.6, 1.5, 0.0)})
        for (const float x : {-1e30f, -6.0f, 0.0f, 6.0f, 1e30f})
            EXPECT_TRUE(std::isfinite(curve.density(x))) << curve.dmax << " at " << x;
    EXPECT_EQ(Film::logExposure(0.0f, 0.0f), -6.0f);
    EXPECT_EQ(Film::logExposure(-3.0f, 1.0f), -5.0f);
    EXPECT_NEAR(Film::logExposure(0.18f, 0.0f), 0.0f, 1e-6f);
}

TEST(Print, AGreyCardPrintsAsGreyAtAnyGradeAndKnob)
{
    PaperProfile ra4;
    ra4.dmin = 0.05;
    ra4.dmax = 2.35;
    ra4.gamma = 1.75;
    ra4.toe = 1.2;
    for (const PaperProfile& paper : {PaperProfile{}, ra4})
        for (const double grade : {0.0, 2.0, 5.0})
            for (const double knob : {0.0, 0.5, 1.0, 7.0}) {
                const HDCurve curve = Print::paperCurve(paper, grade, knob, knob);
                EXPECT_NEAR(Print::positive(curve, 0.0f, 0.0f), 0.18f, 1e-5f);
            }
}

TEST(Print, KnobsTakeTheirShareAtTheEndsAndNothingAtZero)
{
    const HDCurve plain = Print::paperCurve(PaperProfile{}, 2.0, 0.0, 0.0);
    const HDCurve full = Print::paperCurve(PaperProfile{}, 2.0, 1.0, 1.0);
    for (const float dp : {0.0f, 0.3f, 1.1f, 2.4f}) {
        EXPECT_EQ(plain.liftBlack(dp), dp);
        EXPECT_EQ(plain.dropWhite(dp), dp);
    }
    const float dmax = static_cast<float>(full.dmax), dmin = static_cast<float>(full.dmin);
    EXPECT_NEAR(full.liftBlack(dmax), dmax - 0.45f * (dmax - full.fD0), 1e-5f);
    EXPECT_NEAR(full.dropWhite(dmin), dmin + 0.45f * (full.fD0 - dmin), 1e-5f);
    EXPECT_EQ(full.liftBlack(full.fD0), full.fD0);
    EXPECT_EQ(full.dropWhite(full.fD0), full.fD0);
}

TEST(Print, ExposureFlareAndGradeActTheRightWay)
{
    const HDCurve curve = Print::paperCurve(PaperProfile{}, 2.0, 0.0, 0.0);
    const float oneStop = static_cast<float>(Print::printEvTerm(1.0));
    EXPECT_LT(Print::positive(curve, 0.0f, oneStop), 0.18f);
    EXPECT_GT(Print::positive(curve, 0.5f, 0.0f), 0.18f);
    // Flare adds light on the paper: log10(10^u + f), so a dense negative no longer prints pure white.
    const double flare = 0.05;
    const float expected = Print::positive(curve, -std::log10(std::pow(10.0f, -1.5f) + 0.05f), 0.0f);
    EXPECT_NEAR(Print::positive(curve, 1.5f, 0.0f, flare), expected, 1e-5f);

    PaperProfile graded;
    graded.fixedGrade = true;
    EXPECT_EQ(Print::paperCurve(graded, 5.0, 0.0, 0.0), Print::paperCurve(graded, 0.0, 0.0, 0.0));
    EXPECT_NEAR(Print::paperCurve(PaperProfile{}, 5.0, 0.0, 0.0).k / curve.k, 1.6, 1e-9);
}

TEST(Print, AmountStaysBetweenNothingAndAll)
{
    PaperProfile flat;
    flat.dmin = flat.dmax = 0.1;
    for (const PaperProfile& paper : {PaperProfile{}, flat})
        for (float db = -8.0f; db <= 8.0f; db += 0.25f) {
            const float t = Print::amount(Print::paperCurve(paper, 2.0, 1.0, 1.0), db, 0.3f);
            EXPECT_TRUE(t >= 0.0f && t <= 1.0f) << t;
        }
    EXPECT_EQ(Print::amount(Print::paperCurve(flat, 2.0, 0.0, 0.0), 0.0f, 0.0f), 0.0f);
}

} // namespace
} // namespace tamlo
