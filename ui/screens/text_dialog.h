// A text to be read and copied: what could not be read, a report.
#pragma once

#include "ui/screens/dialog.h"

class QPlainTextEdit;

namespace tamlo::ui {

class TextDialog : public Dialog {
public:
    TextDialog(std::string titleKey, const QString& text, QWidget* parent);

private:
    QPlainTextEdit* text_;
};

} // namespace tamlo::ui
