// Restore: the copies that were kept of the open project, by the day; one of them opens as a new project.
#pragma once

#include "ui/screens/desk.h"
#include "ui/screens/dialog.h"

class QLabel;
class QTreeWidget;

namespace tamlo::ui {

class RestoreDialog : public Dialog {
public:
    /// open: takes the copy that was chosen, when the present project may be left.
    RestoreDialog(Desk desk, std::function<void(const ProjectBackups::Item&)> open, QWidget* parent);

protected:
    void retranslate() override;

private:
    void openChosen();

    Desk desk_;
    std::function<void(const ProjectBackups::Item&)> open_;
    std::vector<ProjectBackups::Item> items_;
    QLabel* note_;
    QTreeWidget* list_;
    QPushButton* openButton_;
};

} // namespace tamlo::ui
