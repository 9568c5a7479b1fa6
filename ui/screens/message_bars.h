// MessageBars: what the roll as a whole needs to be told of: sources on a volume that is away, lost, or not
// to be read, each a line with what can be done about it. A line that is put away comes back when there are
// more.
#pragma once

#include "ui/screens/desk.h"

#include <QWidget>

#include <array>

class QLabel;
class QPushButton;
class QToolButton;

namespace tamlo::ui {

class MessageBars : public QWidget {
public:
    explicit MessageBars(Desk desk, QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    enum Kind { offline, lost, unreadable };
    struct Bar {
        QWidget* frame = nullptr;
        QLabel* text = nullptr;
        std::vector<std::pair<QPushButton*, const char*>> buttons; ///< with the keys of their texts
        QToolButton* close = nullptr;
        std::size_t count = 0, dismissed = 0;
    };

    void make(Kind kind, std::vector<std::pair<const char*, std::function<void()>>> actions);
    void retranslate();
    void refresh();
    void show(Kind kind, std::size_t count, const QString& text);

    Desk desk_;
    std::array<Bar, 3> bars_;
    Subscription subscription_;
};

} // namespace tamlo::ui
