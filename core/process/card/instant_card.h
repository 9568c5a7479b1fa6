// The card round an instant picture: the body of an integral card or the sheet of a peel-apart one. It stands
// after the picture is finished and ahead of mat and table. Larger than the picture by the card's margins.
// Domain: display-linear.
#pragma once

#include "core/image/random.h"
#include "core/image/rgb_image.h"
#include "core/process/card/card_geometry.h"
#include "core/process/card/card_passes.h"

namespace tamlo::Pipeline {

/// The finished card. cardOutside: what shows beyond its corners, black when absent. rng: instantFrameRNG.
/// Errors: unsupported for a card too large to draw.
RGBImage addInstantFrame(RGBImage image, const InstantFrameParams& frame, const RenderOptions& options,
                         GrainRNG& rng);

/// Outline of the card of this picture; absent for a peel-apart sheet and for a card with no corner cut.
/// card: the size that it is asked at, that of the canvas or smaller.
std::optional<Outline> cardOutline(const InstantFrameParams& frame, const OptText& peelSize, Size picture,
                                   Size card);

/// Its coverage, for the table that it lies on and for a file with transparency.
std::optional<Plane> instantFinishMask(const FilmProfile& film, const OptText& peelSize, Size picture,
                                       Size card);

/// The coverage of a finished card that can be cut out of its file; absent where cardMaskApplies says no.
/// picture: the picture alone at full size. finished: the size of the file.
std::optional<Plane> cardCutOut(const FilmProfile& film, const RenderOptions& options, Size picture,
                                Size finished);

} // namespace tamlo::Pipeline
