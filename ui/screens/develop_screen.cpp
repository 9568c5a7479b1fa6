#include "ui/screens/develop_screen.h"

namespace tamlo::ui {

DevelopScreen::DevelopScreen(AppModel& model, QWidget* parent) : QWidget(parent), model_(model)
{}

} // namespace tamlo::ui
