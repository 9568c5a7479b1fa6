// Sheet: a question that stands in the window, between the menu and the screen, without stopping anything. It
// is answered by one of its buttons; Escape, and its own end, answer nothing. SheetHost shows one at a time,
// in the order of asking.
#pragma once

#include <QFrame>

#include <functional>
#include <memory>
#include <vector>

class QAbstractButton;
class QCheckBox;
class QHBoxLayout;
class QVBoxLayout;

namespace tamlo::ui {

class Sheet : public QFrame {
public:
    Sheet(const QString& title, const QString& note, QWidget* parent = nullptr);

    /// key: of the button's text. The first one has the focus. `act` runs once, after the sheet has gone.
    void addButton(const std::string& key, std::function<void()> act);
    /// A button that leaves everything as it is.
    void addCancel() { addButton("common.cancel", {}); }
    QCheckBox* addCheck(const std::string& key);
    void addWidget(QWidget* widget);

    /// Answered or put away; what the answer does follows.
    std::function<void()> onEnd;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void retranslate();
    void end(const std::function<void()>& act);

    std::vector<std::pair<QAbstractButton*, std::string>> texts_;
    QVBoxLayout* lines_;
    QHBoxLayout* buttons_;
};

class SheetHost : public QWidget {
public:
    explicit SheetHost(QWidget* parent = nullptr);

    /// Shown when those before it have ended. The host owns it.
    void show(std::unique_ptr<Sheet> sheet);
    bool isAsking() const { return !sheets_.empty(); }

private:
    void showFirst();

    std::vector<Sheet*> sheets_;
};

} // namespace tamlo::ui
