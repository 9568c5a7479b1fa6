// KnobRow: how one knob turns its gestures into values. Plain arithmetic: what draws it and what commits the
// value is a screen's. Positions and widths are points.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tamlo {

struct KnobRow {
    /// The track begins this far into the row's own width.
    static constexpr double kTrackInset = 5.5;
    /// A drag shorter than this, both ways, was a click.
    static constexpr double kClickPoints = 1;
    /// The longest that a click waits for its second one.
    static constexpr double kMostDoubleClickSeconds = 0.35;

    double value = 0, def = 0;
    double low = 0, high = 1;
    double step = 0; ///< 0: any value
    std::string unit = {};
    bool isSigned = false;

    /// On the knob's grid, and in its range.
    double snapped(double v) const;
    /// Where a pointer on the track points.
    double valueAt(double x, double width) const;
    /// Dragged finely by dx from where the anchor value lay.
    double fineValue(double anchor, double dx, double width) const;
    /// After an arrow key.
    double stepped(int direction, bool large) const;
    /// What somebody has typed; none where it is no number, which leaves the value.
    std::optional<double> entered(std::string_view text) const;
    bool atDefault() const;
    /// "+0.50 EV".
    std::string text() const;

    /// How long a click waits, of the system's own interval.
    static double clickDelay(double doubleClickSeconds);
    static bool isClick(double dx, double dy);
};

} // namespace tamlo
