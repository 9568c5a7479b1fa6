// KitKnob: one number of the rack: its name and value above, the track below. It draws a KnobRow and turns
// gestures into values; who listens commits them. The wheel scrolls the rack, and turns the knob only when it
// has the focus and Ctrl is held.
#pragma once

#include "app/shell/knob_row.h"

#include <QTimer>
#include <QWidget>

#include <optional>
#include <utility>

class QLineEdit;

namespace tamlo::ui {

class KitKnob : public QWidget {
    Q_OBJECT

public:
    explicit KitKnob(QWidget* parent = nullptr);

    /// A drag that is under way goes on, and its value stands until the hand lets go.
    void setRow(const KnobRow& row);
    const KnobRow& row() const { return row_; }
    /// unit: spoken with the range; engravings: every so much of the scale has a mark, 0 for none.
    void setTexts(const QString& label, const QString& unit);
    void setEngravings(double every);
    const QString& label() const { return label_; }
    QString valueText() const;

    /// A value from outside of the track: a step of a key, a number typed, an assistive program.
    void take(double value);
    /// Opens the entry; `start` is its text, that of the value when empty.
    void openEntry(const QString& start = {});
    bool isDragged() const { return drag_.has_value(); }
    /// The part of the row that the track lies in.
    QRectF trackRect() const;
    QRectF numberRect() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void turned(double value);
    void resetAsked();
    /// A drag or a typed number is over: what comes next is another step.
    void gestureEnded();
    /// The value goes back to what it was when the drag began.
    void dragTakenBack(double value);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Drag {
        QPointF press;
        double before = 0; ///< value when the hand came
        double anchor = 0; ///< value and place that a fine drag moves from
        double anchorX = 0;
        bool isFine = false, isTouch = false, onTrack = false;
        bool moves = false;  ///< it was more than a click
        bool isIdle = false; ///< the finger scrolls, or the drag was taken back
    };

    double trackWidth() const;
    double placeOf(double value) const;
    double draggedTo(double x);
    void dragTo(const QPointF& at, bool fine);
    void show(double value);
    void closeEntry(bool take);
    void reset();
    bool stepKey(const QKeyEvent& event);
    void paintTrack(class QPainter& painter) const;
    void tellValue();

    KnobRow row_;
    QString label_, unit_;
    std::pair<double, double> saidRange_;
    double engravings_ = 0;
    std::optional<Drag> drag_;
    std::optional<KnobRow> waiting_; ///< came while a hand was on the knob
    QTimer click_;
    double clicked_ = 0;
    int wheelRest_ = 0;
    bool isHovered_ = false;
    QLineEdit* entry_ = nullptr;
};

} // namespace tamlo::ui
