// Dialog: the frame of the window's dialogues. Shown, never waited for; closed by Escape and by its buttons,
// and gone when closed. Its buttons come from our tables.
#pragma once

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace tamlo::ui {

class Dialog : public QDialog {
public:
    Dialog(std::string titleKey, QWidget* parent);

protected:
    void changeEvent(QEvent* event) override;

    /// Texts that the dialogue has beside its title and its buttons. Called at first by the one who derives.
    virtual void retranslate() {}
    QVBoxLayout& lines() { return *lines_; }
    /// At the right end of the last line. `act` may close.
    QPushButton* addButton(const std::string& key, std::function<void()> act);
    /// At its left end.
    QPushButton* addSideButton(const std::string& key, std::function<void()> act);

private:
    void retranslateFrame();

    std::string titleKey_;
    QVBoxLayout *whole_, *lines_;
    QHBoxLayout* buttons_;
    std::vector<std::pair<QPushButton*, std::string>> texts_;
};

} // namespace tamlo::ui
