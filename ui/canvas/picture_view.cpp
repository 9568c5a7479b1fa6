#include "ui/canvas/picture_view.h"

namespace tamlo::ui {

PictureView::PictureView(QWidget* parent) : QWidget(parent)
{}

} // namespace tamlo::ui
