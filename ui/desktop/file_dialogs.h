// File dialogues that are shown and answered by callback: nothing waits for them, and closing one answers
// nothing. They open where the last one was left.
#pragma once

#include <QString>

#include <functional>
#include <string>
#include <vector>

class QFileDialog;
class QWidget;

namespace tamlo::ui {

class FileDialogs {
public:
    using Paths = std::vector<std::string>; ///< as the disk has their bytes
    using Take = std::function<void(Paths)>;

    explicit FileDialogs(QWidget& window) : window_(window) {}

    void pictures(const QString& title, Take take);
    void project(const QString& title, Take take);
    void folder(const QString& title, Take take);
    /// A file to be written; whether it stands already is the caller's to ask.
    void saveProject(const QString& title, const QString& name, Take take);

private:
    QFileDialog* make(const QString& title, Take take);

    QWidget& window_;
    QString last_;
};

} // namespace tamlo::ui
