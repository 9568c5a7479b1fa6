// The knobs of the rack: which options they turn, what they are called, and by how much a key moves them.
#pragma once

#include "app/shell/knob_row.h"
#include "core/profiles/options/render_options.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tamlo {

struct Knob {
    const char* option; ///< the option's key
    const char* field;  ///< last part of its text key; two options may be one knob
    double step = 0;    ///< of a number; 0 for what is chosen and not turned

    std::string title() const;
    /// The knob shows the option with the other sign: more print exposure makes a darker print.
    bool turnsSign() const;
};

/// In the order of the rack.
std::span<const Knob> knobTable();
/// Null for an option that has no knob.
const Knob* findKnob(std::string_view option);

/// A number's knob as the rack shows it, its range and default those of the option. An absent number shows
/// `whenAbsent`, limited to the range.
KnobRow knobRow(const Knob& knob, const RenderOptions& options, double whenAbsent = 0);
/// Sets the option to what the knob shows.
void turn(const Knob& knob, RenderOptions& options, double shown);
/// Puts the option back to what an untouched frame has.
void toDefault(const Knob& knob, RenderOptions& options);

} // namespace tamlo
