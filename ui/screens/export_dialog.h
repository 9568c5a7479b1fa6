// The export dialogue: a draft of an export, field by field, with what will come of it told before it begins.
#pragma once

#include "ui/screens/desk.h"
#include "ui/screens/dialog.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;

namespace tamlo::ui {

class ExportDialog : public Dialog {
public:
    ExportDialog(Desk desk, QWidget* parent);

protected:
    void retranslate() override;

private:
    void build();
    QLabel* addRow(const char* key, QWidget* field);
    void fillSets();
    void fillFolders(const QString& chosen);
    void showDraft(const ExportDraft& draft);
    void read();
    void refresh();
    QString example(const std::vector<FrameRef>& frames) const;
    QStringList warnings(const std::vector<FrameRef>& frames) const;
    void chooseFolder();
    void start();

    Desk desk_;
    ExportDraft draft_;
    QFormLayout* form_;
    std::vector<std::pair<QLabel*, const char*>> labels_;
    QComboBox *set_, *folder_, *naming_, *type_, *scale_, *socialSize_;
    QLineEdit* text_;
    QLabel *example_, *size_, *warnings_;
    QCheckBox *social_, *reveal_;
    QPushButton *choose_, *start_;
    Subscription subscription_;
};

} // namespace tamlo::ui
