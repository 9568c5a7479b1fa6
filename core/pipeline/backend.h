// RenderBackend: what executes the order of the pipeline. Callers hold one and hand it an image and the four
// choices; they never run a stage themselves. CPUBackend is the pipeline as loops over bands, the reference
// for every other.
#pragma once

#include "core/image/rgb_image.h"
#include "core/io/image_writer.h"
#include "core/pipeline/render_hooks.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/lens_profile.h"
#include "core/profiles/formats/paper_profile.h"
#include "core/profiles/options/render_options.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tamlo {

/// The four choices of a render.
struct RenderChoices {
    FilmProfile film;
    LensProfile lens;
    PaperProfile paper;
    RenderOptions options;
};

class RenderBackend {
public:
    virtual ~RenderBackend() = default;
    virtual std::string_view name() const = 0;

    /// The finished picture. A render that the executor aborts runs once more from the start on the same
    /// input; onRecovered is told when that succeeds, and a second abort reaches the caller. The hooks'
    /// shouldCancel is also asked between bands of rows, from several threads at once.
    /// Errors: what a stage throws, cancelled among it; none of them is retried.
    RGBImage process(RGBImage image, const RenderChoices& choices) const;
    /// The same, encoded to 8-bit sRGB for a view, with the outline of an instant card as alpha where nothing
    /// lies outside it.
    ReadyImage processReady(RGBImage image, const RenderChoices& choices) const;

    RenderHooks hooks;
    /// Told of the abort when a render has succeeded at the second try.
    std::function<void(const GPUAbort&)> onRecovered;

protected:
    virtual RGBImage render(RGBImage image, const RenderChoices& choices) const = 0;
    /// False for an executor that never aborts: its input need not be kept for a second try.
    virtual bool mayAbort() const { return true; }
};

class CPUBackend : public RenderBackend {
public:
    std::string_view name() const override { return "cpu"; }

protected:
    RGBImage render(RGBImage image, const RenderChoices& choices) const override;
    bool mayAbort() const override { return false; }
};

enum class BackendKind { cpu, metal };
/// "cpu" or "metal".
std::string_view rawText(BackendKind kind);
/// Errors: unsupported where the machine has no such executor.
std::unique_ptr<RenderBackend> makeBackend(BackendKind kind);

/// The size of a picture that is reduced to a long side; sizes round with ties to even.
Size resizedSize(Size size, std::int64_t longSide);
/// A copy reduced to a long side with the Lanczos filter, sizes rounded with ties to even; an image not above
/// it comes back as it is.
RGBImage resized(RGBImage image, std::int64_t longSide);
/// The same of a fresh image whose memory `fill` writes directly.
RGBImage resized(Size size, std::int64_t longSide, const std::function<void(float*)>& fill);

} // namespace tamlo
