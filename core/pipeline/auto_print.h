// The printer's eye: looks at a frame as a minilab's operator does and says how its print is to be exposed
// and graded, so that its whites are white and its blacks black. The answer is two plain values for the
// options; nothing of it is left in the render. It is made by printing the frame small and without grain a
// few times.
#pragma once

#include "core/pipeline/backend.h"

#include <optional>
#include <set>
#include <string>

namespace tamlo::Pipeline {

namespace AutoPrintRules {
inline constexpr std::int64_t longPx = 512;  ///< the frame is looked at no larger
inline constexpr double whitePercent = 99.5; ///< the point that stands at...
inline constexpr double whiteShare = 0.88;   ///< ... this much of the paper's white
inline constexpr double blackPercent = 0.5;  ///< the point that comes near the paper's black
inline constexpr double reachStops = 1.0;    ///< either way of the neutral print
inline constexpr double reachGrade = 1.0;
/// L* that a frame's median may move. It binds before the white is home where a frame's lights lie close to
/// its middle (fog, a grey cat, a dim room): a grade harder than reachGrade would be needed there.
inline constexpr double medianReach = 11.8;
} // namespace AutoPrintRules

/// Points of a print's luminance in L*, of its paper's white.
struct PrintTones {
    double black = 0.0; ///< at blackPercent
    double median = 0.0;
    double white = 0.0;   ///< at whitePercent
    double clipped = 0.0; ///< share of the pixels with a channel at the paper's white
    bool known = false;   ///< false where no pixel has a finite value
};

struct AutoPrint {
    double printEv = 0.0; ///< stops, for print_ev
    double grade = 2.0;
    /// Text key: why nothing is changed; both values are the choices' own then.
    std::optional<std::string> reasonKey;
    PrintTones before, after;
};

/// The print of a frame: a source as Pipeline::process takes it, of any size. `held` names those of print_ev
/// and grade that stay as the choices have them. A night stays a night and fog stays fog: what is far from
/// white or black moves less, and no median by more than medianReach. Errors: those of the render; cancelled.
AutoPrint autoPrint(const RGBImage& frame, const RenderChoices& choices,
                    const std::set<std::string>& held = {}, const RenderHooks& hooks = {});

/// Why nothing is changed, in the user's language; empty where something is.
std::string whyNot(const AutoPrint& print, const RenderChoices& choices);

/// The tones of a finished print whose paper is `white` bright.
PrintTones printTones(const RGBImage& print, double white);

} // namespace tamlo::Pipeline
