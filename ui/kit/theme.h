// Theme: the colours, fonts and measures of the window. Greys are neutral, so that nothing beside a print
// tints the eye; one accent marks focus, selection and what is changed. All of it lives in the application's
// palette and font: a widget asks here and keeps nothing.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QString>

#include <span>

class QApplication;

namespace tamlo::platform {
class Preferences;
}

namespace tamlo::ui {

/// One of AccentPalette; its name is the text "accent.{id}".
struct Accent {
    const char* id;
    QRgb colour;
};

/// The accents to choose from, the usual one first.
std::span<const Accent> accentPalette();

/// WCAG contrast of two opaque colours, 1 to 21.
double contrast(const QColor& a, const QColor& b);

/// The user's choices, by preferences of these names.
struct ThemeChoices {
    QString accentID = {};
    int textPercent = 100; ///< 80 to 200
    bool highContrast = false;
    bool touchDensity = false;

    static ThemeChoices of(const platform::Preferences& preferences);
};

class Theme {
public:
    using Choices = ThemeChoices;

    /// Style, palette and font of the application. May be called again at any time: widgets hear of it as
    /// of any change of palette or font.
    static void apply(QApplication& application, const Choices& choices = {});
    static QPalette palette(const Choices& choices);

    // Grounds.
    static QColor panel() { return colour(QPalette::Window); }
    static QColor raised() { return colour(QPalette::Button); }   ///< buttons, heads of cards
    static QColor well() { return colour(QPalette::Base); }       ///< entries, lists, tracks
    static QColor surround() { return colour(QPalette::Shadow); } ///< around the print and the tiles
    // What stands on them.
    static QColor text() { return colour(QPalette::WindowText); }
    static QColor dimText() { return colour(QPalette::PlaceholderText); } ///< captions and notes, still 4.5:1
    static QColor number() { return colour(QPalette::BrightText); }       ///< 7:1
    static QColor edge() { return colour(QPalette::Mid); }                ///< outline of a control, 3:1
    static QColor line() { return colour(QPalette::Midlight); }           ///< between things, no meaning
    static QColor accent() { return colour(QPalette::Highlight); }
    static QColor onAccent() { return colour(QPalette::HighlightedText); }
    static QColor warning() { return colour(QPalette::LinkVisited); } ///< text of a failure
    // Marks of a frame.
    static QColor pick();
    static QColor reject();

    // Measures in points of the screen; those that hold text grow with it.
    static constexpr int kGap = 8;          ///< between controls
    static constexpr int kSmallGap = 4;     ///< inside a control
    static constexpr int kInset = 12;       ///< of a panel's contents
    static constexpr int kRadius = 4;       ///< of a corner
    static constexpr int kFocusWidth = 2;   ///< of the focus mark
    static constexpr int kScrollWidth = 10; ///< of a scroll bar
    static int controlHeight();             ///< button, selector, entry
    static int knobHeight();                ///< label and number above, track below
    static int rackWidth();

    static QFont smallFont();  ///< captions, notes
    static QFont titleFont();  ///< heads of cards and sheets
    static QFont numberFont(); ///< of a value; a changed one is bold too
    static bool isTouch();

    /// A focus mark around `rect`, of a control that stands on the panel.
    static void drawFocus(class QPainter& painter, const class QRectF& rect, double radius = kRadius);

private:
    static QColor colour(QPalette::ColorRole role);
};

} // namespace tamlo::ui
