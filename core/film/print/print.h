// Print: from a negative's density to a printed positive or a dye amount, with the grade, the Black and
// White knobs and the enlarger's veiling flare.
// Print argument u: decimal log of the light on the paper, relative to the light that prints middle grey;
// u = pev - db, with db the negative's density over that of a grey card. Positive: display-linear, paper
// white 1, middle grey 0.18.
#pragma once

#include "core/film/emulsion/hd_curve.h"
#include "core/profiles/formats/paper_profile.h"

namespace tamlo::Print {

/// Share of the shadow or light span that the Black or White knob can take at most.
inline constexpr double blackMaxFrac = 0.45;

/// A paper's curve at a grade (2 is factor 1) and the two knobs (0...1). Every paper is anchored at the
/// density that displays as 0.18. A paper of fixed grade is always at 2.
HDCurve paperCurve(const PaperProfile& paper, double grade, double black, double white);

/// Print exposure in stops to log units.
double printEvTerm(double ev);

/// One sample: db and the exposure term to a display-linear positive. flareAdd is light that reaches the
/// paper everywhere, relative to the light of a grey card.
float positive(const HDCurve& curve, float db, float printEvTerm, double flareAdd = 0.0);

/// Dye amount 0...1 of one sample, for processes whose curve gives an amount of colorant.
float amount(const HDCurve& curve, float db, float printEvTerm);

} // namespace tamlo::Print
