#include "core/process/card/instant_card.h"

#include "core/image/render_profiler.h"
#include "core/process/card/card_relief.h"
#include "core/process/card/peel_card.h"
#include "core/process/mat/canvas.h"

#include <algorithm>

namespace tamlo {
namespace {

Vec3f colourOf(const Vec3d& colour)
{
    return {static_cast<float>(colour[0]), static_cast<float>(colour[1]), static_cast<float>(colour[2])};
}

double longSidePx(Size size)
{
    return static_cast<double>(std::max(size.width, size.height));
}

/// Black where nothing is said.
Vec3f outsideOf(const OptList& colour)
{
    Vec3f out{};
    if (colour && colour->size() >= 3)
        for (std::size_t c = 0; c < 3; ++c) out[c] = static_cast<float>((*colour)[c]);
    return out;
}

} // namespace

RGBImage Pipeline::addInstantFrame(RGBImage image, const InstantFrameParams& frame,
                                   const RenderOptions& options, GrainRNG& rng)
{
    const RenderProfiler::Scope booked("card", image.pixelCount());
    if (isPeel(frame)) return peelFrame(image, frame, options.peelSize, options.devMottle, rng);
    const CardMargins whites = instantFrameWhites(image.size(), frame, options.peelSize);
    CardRelief::Lying lying;
    lying.picture = image.size();
    lying.canvas = whites.around(image.size());
    Finishing::checkCanvas(lying.canvas);
    lying.left = whites.left;
    lying.top = whites.top;
    lying.turned = isTurnedCard(frame, image.size());
    if (const double longMm = cardImageLongMm(frame, options.peelSize); longMm > 0.0)
        lying.pxMm = longSidePx(image.size()) / longMm;
    const CardParams params = CardRelief::plan(frame, lying, colourOf(CardRelief::baseTint(frame)),
                                               outsideOf(options.cardOutside), rng);
    RGBImage card(lying.canvas.width, lying.canvas.height);
    instant_card(card, image, params);
    return card;
}

std::optional<Outline> Pipeline::cardOutline(const InstantFrameParams& frame, const OptText& peelSize,
                                             Size picture, Size card)
{
    if (isPeel(frame) || !CardRelief::isCut(frame)) return std::nullopt;
    const Size whole = instantFrameWhites(picture, frame, peelSize).around(picture);
    const double pxMm =
        longSidePx(picture) / cardImageLongMm(frame, peelSize) * longSidePx(card) / longSidePx(whole);
    return CardRelief::outline(frame, card, pxMm, isTurnedCard(frame, picture));
}

std::optional<Plane> Pipeline::instantFinishMask(const FilmProfile& film, const OptText& peelSize,
                                                 Size picture, Size card)
{
    const auto outline = cardOutline(cardFrame(film), peelSize, picture, card);
    return outline ? std::optional(CardRelief::mask(*outline)) : std::nullopt;
}

std::optional<Plane> Pipeline::cardCutOut(const FilmProfile& film, const RenderOptions& options, Size picture,
                                          Size finished)
{
    if (!cardMaskApplies(film, options)) return std::nullopt;
    return instantFinishMask(film, options.peelSize, picture, finished);
}

} // namespace tamlo
