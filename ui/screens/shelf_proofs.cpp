#include "ui/screens/shelf_proofs.h"

#include "app/shell/frame_screen.h"

namespace tamlo::ui {

namespace {

constexpr std::int64_t kProofLong = 320; // pixels of the source: about two of a cell's

} // namespace

QImage imageOf(std::shared_ptr<const ReadyImage> picture)
{
    if (!picture || picture->rgba.empty()) return {};
    const auto format = picture->alpha == ReadyImage::Alpha::skip ? QImage::Format_RGBX8888
                        : picture->alpha == ReadyImage::Alpha::premultiplied
                            ? QImage::Format_RGBA8888_Premultiplied
                            : QImage::Format_RGBA8888;
    constexpr int kBytes = 4;
    const auto width = static_cast<int>(picture->width), height = static_cast<int>(picture->height);
    auto* owner = new std::shared_ptr<const ReadyImage>(picture);
    return QImage(
        picture->rgba.data(), width, height, static_cast<qsizetype>(width) * kBytes, format,
        [](void* held) { delete static_cast<std::shared_ptr<const ReadyImage>*>(held); }, owner);
}

void ShelfProofs::setScreen(FrameScreen* screen)
{
    end();
    screen_ = screen;
}

void ShelfProofs::begin(std::vector<Wanted> wanted, Taken taken)
{
    end();
    if (!screen_ || wanted.empty()) return;
    wanted_ = std::move(wanted);
    taken_ = std::move(taken);
    ask(true);
}

void ShelfProofs::end()
{
    if (!round_) return;
    round_.reset();
    if (screen_) screen_->cancelProof();
}

void ShelfProofs::ask(bool isRough)
{
    std::vector<ProcessSettings> processes;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < wanted_.size(); ++i) {
        if (isRough && wanted_[i].hasRough) continue;
        processes.push_back(wanted_[i].process);
        if (isRough) processes.back().options.grainMult = 0;
        places.push_back(i);
    }
    if (processes.empty()) return isRough ? ask(false) : void();
    missing_ = processes.size();
    round_ = std::make_shared<int>(0);
    screen_->proof(processes, kProofLong,
                   [this, isRough, places, round = std::weak_ptr(round_)](std::size_t at,
                                                                          KeyedRenderer::Outcome outcome) {
                       if (round.expired()) return;
                       if (const auto* made = std::get_if<KeyedRenderer::Output>(&outcome))
                           taken_(places[at], imageOf(made->image), isRough);
                       if (--missing_ == 0 && isRough) ask(false);
                   });
}

} // namespace tamlo::ui
