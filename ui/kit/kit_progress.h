// KitArc: how far the next picture is, as a small arc. KitBar: a line above a screen that tells something,
// with its buttons, until it is put away.
#pragma once

#include <QWidget>

#include <optional>

class QHBoxLayout;
class QLabel;

namespace tamlo::ui {

class KitButton;

class KitArc : public QWidget {
    Q_OBJECT

public:
    explicit KitArc(QWidget* parent = nullptr);
    /// 0 to 1; none draws nothing.
    void setFraction(std::optional<double> fraction);
    std::optional<double> fraction() const { return fraction_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<double> fraction_;
};

class KitBar : public QWidget {
    Q_OBJECT

public:
    explicit KitBar(QWidget* parent = nullptr);
    /// A failure begins with "!" and stands in the colour of failures.
    void setText(const QString& text, bool isFailure = false);
    QString text() const;
    /// Adds a button before the one that dismisses the bar.
    KitButton* addButton(const QString& title);
    void setDismissText(const QString& title);

Q_SIGNALS:
    void dismissed();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLabel* label_;
    QHBoxLayout* row_;
    KitButton* dismiss_;
};

} // namespace tamlo::ui
