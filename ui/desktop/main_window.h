// MainWindow: the frame that the screens stand in.
#pragma once

#include <QMainWindow>

namespace tamlo::ui {

class MainWindow : public QMainWindow {
public:
    MainWindow();
};

} // namespace tamlo::ui
