// KitCard: a block of the rack that folds away: a head with its title, a dot when something in it is changed,
// its caption while it is folded, and a menu. KitNote: a line of explanation with at most one button.
#pragma once

#include <QAbstractButton>
#include <QWidget>

class QLabel;
class QMenu;
class QVBoxLayout;

namespace tamlo::ui {

class KitButton;

/// The head: pressed, it folds or unfolds the card.
class KitCardHead : public QAbstractButton {
    Q_OBJECT

public:
    explicit KitCardHead(QWidget* parent = nullptr);

    QString caption; ///< shown beside the title while the card is folded
    bool isChanged = false, isOpen = false;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

class KitCard : public QWidget {
    Q_OBJECT

public:
    explicit KitCard(QWidget* parent = nullptr);

    void setTitle(const QString& title);
    void setCaption(const QString& caption);
    void setChanged(bool isChanged);
    void setOpen(bool isOpen);
    bool isOpen() const { return head_->isOpen; }
    /// What stands on the card.
    QVBoxLayout* body() const { return body_; }
    QWidget* content() const { return content_; }
    KitCardHead* head() const { return head_; }
    KitButton* menuButton() const { return more_; }
    QMenu* menu() const { return menu_; }

Q_SIGNALS:
    void folded(bool isOpen);

protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    KitCardHead* head_;
    KitButton* more_;
    QMenu* menu_;
    QWidget* content_;
    QVBoxLayout* body_;
};

class KitNote : public QWidget {
    Q_OBJECT

public:
    explicit KitNote(QWidget* parent = nullptr);

    void setText(const QString& text);
    QString text() const;
    /// An empty title takes the button away.
    void setButton(const QString& title);
    KitButton* button() const { return button_; }

Q_SIGNALS:
    void pressed();

private:
    QLabel* label_;
    KitButton* button_;
};

} // namespace tamlo::ui
