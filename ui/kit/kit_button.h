// The kit's buttons: flat, painted alike, each with the native role of its kind. KitButton does something,
// KitDice rolls a stream of chance anew, KitSwitch is on or off.
#pragma once

#include <QCheckBox>
#include <QPushButton>

namespace tamlo::ui {

class KitButton : public QPushButton {
    Q_OBJECT

public:
    explicit KitButton(QWidget* parent = nullptr);
    /// The one that Enter stands for: filled with the accent.
    void setPrimary(bool isPrimary);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    /// Ground and focus mark; returns where the contents go.
    QRectF paintGround(class QPainter& painter) const;

private:
    bool isPrimary_ = false;
};

class KitDice : public KitButton {
    Q_OBJECT

public:
    explicit KitDice(QWidget* parent = nullptr) : KitButton(parent) {}
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Its name at the left and the switch at the right end of the row.
class KitSwitch : public QCheckBox {
    Q_OBJECT

public:
    explicit KitSwitch(QWidget* parent = nullptr);
    /// Away from its default: the name is bold and the switch has the accent.
    void setChanged(bool isChanged);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& at) const override { return rect().contains(at); }
    void paintEvent(QPaintEvent* event) override;

private:
    bool isChanged_ = false;
};

} // namespace tamlo::ui
