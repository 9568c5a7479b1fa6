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

void ShelfProofs::begin(std::vector<ProcessSettings> processes, Taken taken)
{
    end();
    if (!screen_ || processes.empty()) return;
    processes_ = std::move(processes);
    taken_ = std::move(taken);
    ask(false);
}

void ShelfProofs::end()
{
    if (!round_) return;
    round_.reset();
    if (screen_) screen_->cancelProof();
}

void ShelfProofs::ask(bool withGrain)
{
    std::vector<ProcessSettings> processes = processes_;
    if (!withGrain)
        for (ProcessSettings& one : processes) one.options.grainMult = 0;
    missing_ = processes.size();
    round_ = std::make_shared<int>(0);
    screen_->proof(
        processes, kProofLong,
        [this, withGrain, round = std::weak_ptr(round_)](std::size_t at, KeyedRenderer::Outcome outcome) {
            if (round.expired()) return;
            if (const auto* made = std::get_if<KeyedRenderer::Output>(&outcome))
                taken_(at, imageOf(made->image));
            if (--missing_ == 0 && !withGrain) ask(true);
        });
}

} // namespace tamlo::ui
