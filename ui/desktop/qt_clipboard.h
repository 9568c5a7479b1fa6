// QtClipboard: what was copied goes to the desktop's clipboard, all its forms at once: one copy is one offer.
// What another program offers is asked of it once, since the answer may be long in coming.
#pragma once

#include "platform/clipboard.h"

#include <QObject>

#include <map>

namespace tamlo::ui {

class QtClipboard : public platform::Clipboard {
public:
    QtClipboard();

    void clear() override;
    void setData(const std::string& type, std::string bytes) override;
    void setText(std::string text) override;
    std::optional<std::string> data(const std::string& type) const override;
    std::optional<std::string> text() const override;

private:
    void offer();

    std::map<std::string, std::string> data_; ///< since the last clear()
    std::optional<std::string> text_;
    mutable std::map<std::string, std::optional<std::string>> read_; ///< since the clipboard has changed
    QObject hears_;
};

} // namespace tamlo::ui
