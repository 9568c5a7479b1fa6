// ShelfProofs: small pictures of the frame on the develop screen under many processes: first all without
// grain, which is soon done, then all with it.
#pragma once

#include "core/profiles/presets/process_settings.h"

#include <QImage>

#include <functional>
#include <memory>
#include <vector>

namespace tamlo {
class FrameScreen;
struct ReadyImage;
} // namespace tamlo

namespace tamlo::ui {

/// The same pixels, which live as long as the image does.
QImage imageOf(std::shared_ptr<const ReadyImage> picture);

class ShelfProofs {
public:
    struct Wanted {
        ProcessSettings process;
        bool hasRough = false; ///< one without grain is there
    };
    /// isRough: without grain.
    using Taken = std::function<void(std::size_t, const QImage&, bool isRough)>;

    ~ShelfProofs() { end(); }
    void setScreen(FrameScreen* screen);
    /// Ends what was asked before. Nothing is taken once it has ended.
    void begin(std::vector<Wanted> wanted, Taken taken);
    void end();

private:
    void ask(bool isRough);

    FrameScreen* screen_ = nullptr;
    std::vector<Wanted> wanted_;
    Taken taken_;
    std::size_t missing_ = 0;
    std::shared_ptr<int> round_; ///< answers to another round are not taken
};

} // namespace tamlo::ui
