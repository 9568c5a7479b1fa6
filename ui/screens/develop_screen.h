// DevelopScreen: one frame, its print and the rack.
#pragma once

#include <QWidget>

namespace tamlo {
class AppModel;
}

namespace tamlo::ui {

class DevelopScreen : public QWidget {
    Q_OBJECT

public:
    explicit DevelopScreen(AppModel& model, QWidget* parent = nullptr);

private:
    [[maybe_unused]] AppModel& model_;
};

} // namespace tamlo::ui
