// The driver: one source image and one set of choices to the finished picture, as it would look after being
// exposed, developed, printed or scanned, and mounted. It owns the order of the stages and nothing else. The
// order is the same for a preview and for the master; the physical scale keeps the picture the same.
#pragma once

#include "core/image/rgb_image.h"
#include "core/pipeline/render_hooks.h"
#include "core/profiles/formats/developed_film.h"
#include "core/profiles/formats/lens_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

namespace tamlo::Pipeline {

/// Shape: any source of at least one pixel; the result has the size of its print. Domain: linear light on
/// sRGB primaries, grey 0.18, in; display-linear positive out. Errors: what a stage throws; cancelled when
/// the hooks say so.
RGBImage process(RGBImage image, const FilmProfile& film, const LensProfile& lens, const PaperProfile& paper,
                 RenderOptions options, const RenderHooks& hooks = {});

/// Whether a mat, a table, an embossed line or a stamp is wanted.
bool hasFinishing(const RenderOptions& options);

/// Colour of the bare paper: what a print's white can be at most.
Vec3f paperBase(const PaperProfile& paper, const RenderOptions& options);

/// Colour of the border: the paper's base, or with `borderBlack` on a paper without a sheet the darkest that
/// the process reaches.
Vec3f borderRGB(const Vec3f& base, const DevelopedFilm& developed, const PaperProfile& paper,
                const RenderOptions& options, double pxUm);

/// Solves ahead of the render of a picture of that size what takes longest of it, the calibration of its
/// film's grain, which is then known to the process. Errors: those of the render's film.
void prepareGrain(Size source, const FilmProfile& film, const PaperProfile& paper, RenderOptions options);

} // namespace tamlo::Pipeline
