// About: the version, the licence, what the catalogue holds, what renders, and the libraries beneath.
#pragma once

#include "ui/screens/desk.h"
#include "ui/screens/dialog.h"

#include "app/shell/graphics_probe.h"

class QLabel;

namespace tamlo::ui {

class AboutDialog : public Dialog {
public:
    AboutDialog(Desk desk, GraphicsProbe& graphics, QWidget* parent);

protected:
    void retranslate() override;

private:
    Desk desk_;
    GraphicsProbe& graphics_;
    QLabel* text_;
};

} // namespace tamlo::ui
