#include "ui/kit/theme.h"

#include "ui/kit/words.h"

#include <gtest/gtest.h>

namespace tamlo::ui {
namespace {

struct Demand {
    const char* what;
    QPalette::ColorRole front, ground;
    double least;
};

constexpr double kText = 4.5, kNumber = 7, kMark = 3;
constexpr Demand kDemands[] = {
    {"text on a panel", QPalette::WindowText, QPalette::Window, kText},
    {"text on a button", QPalette::ButtonText, QPalette::Button, kText},
    {"text in a list", QPalette::Text, QPalette::Base, kText},
    {"text around the tiles", QPalette::WindowText, QPalette::Shadow, kText},
    {"caption on a panel", QPalette::PlaceholderText, QPalette::Window, kText},
    {"caption on a button", QPalette::PlaceholderText, QPalette::Button, kText},
    {"caption in a list", QPalette::PlaceholderText, QPalette::Base, kText},
    {"tool tip", QPalette::ToolTipText, QPalette::ToolTipBase, kText},
    {"text on the accent", QPalette::HighlightedText, QPalette::Highlight, kText},
    {"failure", QPalette::LinkVisited, QPalette::Window, kText},
    {"number", QPalette::BrightText, QPalette::Window, kNumber},
    {"changed number", QPalette::Highlight, QPalette::Window, kNumber},
    {"focus on a panel", QPalette::Highlight, QPalette::Window, kMark},
    {"focus on a button", QPalette::Highlight, QPalette::Button, kMark},
    {"outline on a panel", QPalette::Mid, QPalette::Window, kMark},
    {"outline in a list", QPalette::Mid, QPalette::Base, kMark},
    {"outline on a button", QPalette::Mid, QPalette::Button, kMark},
};

TEST(Theme, EveryAccentCanBeReadAndIsNamed)
{
    ASSERT_EQ(accentPalette().size(), 7u);
    for (const Accent& accent : accentPalette())
        for (const bool isHigh : {false, true}) {
            const QPalette palette = Theme::palette({.accentID = qt(accent.id), .highContrast = isHigh});
            EXPECT_EQ(palette.color(QPalette::Highlight).rgb(), accent.colour);
            for (const Demand& demand : kDemands)
                EXPECT_GE(contrast(palette.color(demand.front), palette.color(demand.ground)), demand.least)
                    << demand.what << ", " << accent.id << (isHigh ? ", high contrast" : "");
        }
    EXPECT_NEAR(contrast(Qt::white, Qt::black), 21, 1e-9);
    EXPECT_NEAR(contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.478, 1e-3); // known pair
    for (const QColor& mark : {Theme::pick(), Theme::reject()})
        EXPECT_GE(contrast(mark, QColor(0x28, 0x28, 0x28)), kMark);
}

} // namespace
} // namespace tamlo::ui
