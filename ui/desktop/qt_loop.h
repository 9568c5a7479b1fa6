// QtLoop: the session's main loop on the event loop of the window. Made and destroyed on the thread of the
// QApplication, which it does not own.
#pragma once

#include "platform/main_loop.h"

#include <memory>

namespace tamlo::ui {

class QtLoop : public platform::MainLoop {
public:
    QtLoop();
    ~QtLoop() override;

    /// Work that posts work again and again leaves the window its turn in between.
    void post(std::function<void()> work) override;
    [[nodiscard]] platform::Timer after(double seconds, std::function<void()> work) override;
    [[nodiscard]] platform::Timer every(double seconds, std::function<void()> work) override;
    double now() const override;
    double date() const override;
    bool isMainThread() const override;

private:
    class Receiver;
    std::unique_ptr<Receiver> receiver_;
};

} // namespace tamlo::ui
