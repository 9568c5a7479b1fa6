// PictureView: the print on the develop screen, fitted, zoomed and moved about.
#pragma once

#include <QWidget>

namespace tamlo::ui {

class PictureView : public QWidget {
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);
};

} // namespace tamlo::ui
