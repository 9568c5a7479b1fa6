// The palette: one line to find a command, a frame, a film, a lens, a paper or a preset by a part of its
// name, and to run or take what was found.
#pragma once

#include "ui/screens/desk.h"
#include "ui/screens/dialog.h"

class QLineEdit;
class QListWidget;

namespace tamlo::ui {

class PaletteDialog : public Dialog {
public:
    PaletteDialog(Desk desk, QWidget* parent);

protected:
    void retranslate() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        QString text, kind;
        std::function<void()> run;
    };

    void gather();
    void gatherCommands();
    void gatherRecipes();
    void gatherFrames();
    void filter();
    void runChosen();

    Desk desk_;
    std::vector<Entry> entries_;
    QLineEdit* search_;
    QListWidget* list_;
};

} // namespace tamlo::ui
