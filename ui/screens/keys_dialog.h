// The sheet of keys, drawn from the table of commands, with a search over it.
#pragma once

#include "ui/screens/dialog.h"

class QLineEdit;
class QTreeWidget;

namespace tamlo::ui {

class KeysDialog : public Dialog {
public:
    explicit KeysDialog(QWidget* parent);

protected:
    void retranslate() override;

private:
    void filter();

    QLineEdit* search_;
    QTreeWidget* list_;
};

} // namespace tamlo::ui
