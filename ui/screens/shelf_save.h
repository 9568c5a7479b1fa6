// ShelfSave: the line that asks for the name of a new preset.
#pragma once

#ifndef Q_MOC_RUN // it can't read concepts
#include "app/shell/app_model.h"
#endif

#include <QWidget>

class QLabel;
class QLineEdit;

namespace tamlo::ui {

class KitButton;

class ShelfSave : public QWidget {
    Q_OBJECT

public:
    ShelfSave(AppModel& model, QWidget* parent);

    void ask(const PresetSchema::Blocks& blocks);
    void retranslate();

Q_SIGNALS:
    void ended();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void save();

    AppModel& model_;
    PresetSchema::Blocks blocks_;
    QLabel *title_, *note_;
    QLineEdit* name_;
    KitButton *cancel_, *save_;
};

} // namespace tamlo::ui
