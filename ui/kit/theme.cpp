#include "ui/kit/theme.h"

#include "platform/preferences.h"
#include "ui/kit/kit_accessible.h"
#include "ui/kit/kit_style.h"
#include "ui/kit/words.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace tamlo::ui {

namespace {

// Light enough for a number on a panel, 7:1; taste.
constexpr std::array<Accent, 7> kAccents{{{"amber", 0xFFF2B84B},
                                          {"coral", 0xFFFF9E8E},
                                          {"rose", 0xFFF7A1C4},
                                          {"green", 0xFF93CF83},
                                          {"teal", 0xFF6FCFC3},
                                          {"blue", 0xFF93BEFF},
                                          {"violet", 0xFFCBB2FF}}};

/// The greys of one theme, as one byte each.
struct Greys {
    int surround, well, panel, raised, line, edge, dim, text, number;
};
constexpr Greys kUsual{0x18, 0x1E, 0x28, 0x36, 0x3C, 0x84, 0xAA, 0xDC, 0xE6};
constexpr Greys kHigh{0x00, 0x06, 0x10, 0x20, 0x60, 0xB4, 0xD8, 0xFF, 0xFF};

constexpr double kBasePoints = 9.5;
constexpr int kLeastPercent = 80, kMostPercent = 200;
constexpr char kTouchProperty[] = "tamloTouchDensity";

QColor grey(int value)
{
    return QColor(value, value, value);
}

double linear(double encoded)
{
    constexpr double kKnee = 0.04045, kToe = 12.92, kOffset = 0.055, kGamma = 2.4; // IEC 61966-2-1
    return encoded <= kKnee ? encoded / kToe : std::pow((encoded + kOffset) / (1 + kOffset), kGamma);
}

double luminance(const QColor& colour)
{
    constexpr double kRed = 0.2126, kGreen = 0.7152, kBlue = 0.0722; // BT.709
    return kRed * linear(colour.redF()) + kGreen * linear(colour.greenF()) + kBlue * linear(colour.blueF());
}

QColor accentOf(const QString& id)
{
    const auto found = std::ranges::find(kAccents, utf8(id), &Accent::id);
    return QColor(found == kAccents.end() ? kAccents.front().colour : found->colour);
}

QFont scaled(double factor)
{
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

void setDisabled(QPalette& palette, const Greys& greys)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText})
        palette.setColor(QPalette::Disabled, role, grey((greys.edge + greys.panel) / 2));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, grey(greys.line));
    palette.setColor(QPalette::Disabled, QPalette::Mid, grey(greys.line));
}

} // namespace

std::span<const Accent> accentPalette()
{
    return kAccents;
}

double contrast(const QColor& a, const QColor& b)
{
    constexpr double kFlare = 0.05; // WCAG 2.2, relative luminance of the screen's own glare
    const double la = luminance(a) + kFlare, lb = luminance(b) + kFlare;
    return std::max(la, lb) / std::min(la, lb);
}

ThemeChoices ThemeChoices::of(const platform::Preferences& preferences)
{
    return {.accentID = qt(preferences.text("accentID").value_or(std::string())),
            .textPercent = static_cast<int>(std::lround(preferences.number("textPercent").value_or(100))),
            .highContrast = preferences.flag("highContrast").value_or(false),
            .touchDensity = preferences.flag("touchDensity").value_or(false)};
}

QPalette Theme::palette(const Choices& choices)
{
    const Greys& greys = choices.highContrast ? kHigh : kUsual;
    const QColor accent = accentOf(choices.accentID), ink = grey(greys.text);
    QPalette out;
    const auto set = [&](QPalette::ColorRole role, const QColor& colour) { out.setColor(role, colour); };
    set(QPalette::Window, grey(greys.panel));
    set(QPalette::Base, grey(greys.well));
    set(QPalette::AlternateBase, grey(greys.panel));
    set(QPalette::Button, grey(greys.raised));
    set(QPalette::Shadow, grey(greys.surround));
    set(QPalette::Dark, grey(greys.well));
    set(QPalette::Light, grey(greys.line));
    set(QPalette::Midlight, grey(greys.line));
    set(QPalette::Mid, grey(greys.edge));
    set(QPalette::ToolTipBase, grey(greys.raised));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        set(role, ink);
    set(QPalette::BrightText, grey(greys.number));
    set(QPalette::PlaceholderText, grey(greys.dim));
    set(QPalette::Highlight, accent);
    set(QPalette::Link, accent);
    set(QPalette::LinkVisited, QColor(0xFF, 0x9A, 0x80));
    set(QPalette::HighlightedText, grey(kUsual.surround));
    setDisabled(out, greys);
    return out;
}

void Theme::apply(QApplication& application, const Choices& choices)
{
    QApplication::setStyle(new KitStyle);
    application.setProperty(kTouchProperty, choices.touchDensity);
    QFont font = QApplication::font();
    font.setPointSizeF(kBasePoints * std::clamp(choices.textPercent, kLeastPercent, kMostPercent) / 100);
    QApplication::setFont(font);
    QApplication::setPalette(palette(choices));
    installKitAccessibility();
}

QColor Theme::colour(QPalette::ColorRole role)
{
    return QApplication::palette().color(QPalette::Active, role);
}

QColor Theme::pick()
{
    return QColor(0xE8, 0xC0, 0x5A);
}

QColor Theme::reject()
{
    return QColor(0xFF, 0x6E, 0x60);
}

bool Theme::isTouch()
{
    return qApp && qApp->property(kTouchProperty).toBool();
}

int Theme::controlHeight()
{
    constexpr int kUsualPad = 10, kTouchPad = 18;
    return QFontMetrics(QApplication::font()).height() + (isTouch() ? kTouchPad : kUsualPad);
}

int Theme::knobHeight()
{
    constexpr int kUsualLeast = 38, kTouchLeast = 44, kTrack = 20;
    return std::max(QFontMetrics(QApplication::font()).height() + kTrack,
                    isTouch() ? kTouchLeast : kUsualLeast);
}

int Theme::rackWidth()
{
    constexpr int kLeast = 340, kCharacters = 48;
    return std::max(kLeast, QFontMetrics(QApplication::font()).averageCharWidth() * kCharacters);
}

QFont Theme::smallFont()
{
    constexpr double kSmall = 0.92;
    return scaled(kSmall);
}

QFont Theme::titleFont()
{
    QFont font = QApplication::font();
    font.setWeight(QFont::DemiBold);
    return font;
}

QFont Theme::numberFont()
{
    return QApplication::font();
}

void Theme::drawFocus(QPainter& painter, const QRectF& rect, double radius)
{
    constexpr double kHalf = kFocusWidth / 2.0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(accent(), kFocusWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(rect.adjusted(kHalf, kHalf, -kHalf, -kHalf), radius, radius);
    painter.restore();
}

} // namespace tamlo::ui
