#include "ui/desktop/main_window.h"

namespace tamlo::ui {

MainWindow::MainWindow() = default;

} // namespace tamlo::ui
