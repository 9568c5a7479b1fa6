// QtDesktop: the desktop around the window, over D-Bus: progress on the taskbar, notices, files shown in the
// file manager. Nobody is waited for; where a service is not there, nothing happens.
#pragma once

#include "platform/desktop.h"

namespace tamlo::ui {

class QtDesktop : public platform::Desktop {
public:
    void showProgress(std::optional<double> fraction) override;
    void notify(const std::string& title, const std::string& text) override;
    void reveal(const std::vector<std::filesystem::path>& files) override;
    double doubleClickSeconds() const override;
};

} // namespace tamlo::ui
