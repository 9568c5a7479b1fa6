// QtClipboard: what was copied goes to the desktop's clipboard, all its forms at once: one copy is one offer.
#pragma once

#include "platform/clipboard.h"

#include <map>

namespace tamlo::ui {

class QtClipboard : public platform::Clipboard {
public:
    void clear() override;
    void setData(const std::string& type, std::string bytes) override;
    void setText(std::string text) override;
    std::optional<std::string> data(const std::string& type) const override;
    std::optional<std::string> text() const override;

private:
    void offer();

    std::map<std::string, std::string> data_; ///< since the last clear()
    std::optional<std::string> text_;
};

} // namespace tamlo::ui
