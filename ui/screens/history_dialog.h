// The history as a list: a click goes to just after that step, by as many undos or redos. What was undone
// stays listed until the next change.
#pragma once

#include "ui/screens/desk.h"
#include "ui/screens/dialog.h"

class QTreeWidget;

namespace tamlo::ui {

class HistoryDialog : public Dialog {
public:
    HistoryDialog(Desk desk, QWidget* parent);

protected:
    void retranslate() override;

private:
    void refresh();
    void goTo(std::size_t stepsLeft);

    Desk desk_;
    QTreeWidget* list_;
    Subscription subscription_;
};

} // namespace tamlo::ui
