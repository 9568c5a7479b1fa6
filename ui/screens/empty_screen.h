// EmptyScreen: a window without photographs: how to begin, and what was open before.
#pragma once

#include "ui/screens/desk.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace tamlo::ui {

class EmptyScreen : public QWidget {
public:
    explicit EmptyScreen(Desk desk, QWidget* parent = nullptr);

    /// Reads the recent projects anew.
    void refresh();

protected:
    void changeEvent(QEvent* event) override;

private:
    void retranslate();
    void fillRecents();

    Desk desk_;
    QLabel *sentence_, *recentTitle_;
    QPushButton *add_, *addFolder_, *open_;
    QVBoxLayout* recents_;
};

} // namespace tamlo::ui
