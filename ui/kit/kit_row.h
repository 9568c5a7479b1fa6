// KitRow: a name and its control, on one line where both fit, else one above the other.
#pragma once

#include <QWidget>

class QLabel;

namespace tamlo::ui {

class KitRow : public QWidget {
    Q_OBJECT

public:
    KitRow(QWidget* control, QWidget* parent);
    /// Also the accessible name of the control. A changed one is bold.
    void setLabel(const QString& label, bool isChanged = false);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    bool isOneLine(int width) const;
    void arrange();

    QLabel* label_;
    QWidget* control_;
};

} // namespace tamlo::ui
