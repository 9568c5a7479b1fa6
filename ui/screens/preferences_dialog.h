// Preferences: a page a subject, no button to confirm: each change holds at once.
#pragma once

#include "ui/screens/desk.h"
#include "ui/screens/dialog.h"

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QTabWidget;

namespace tamlo::ui {

class PreferencesDialog : public Dialog {
public:
    /// onLanguage: every text is to be taken anew.
    PreferencesDialog(Desk desk, std::function<void()> onLanguage, QWidget* parent);

protected:
    void retranslate() override;

private:
    QFormLayout* addPage(const char* key);
    QLabel* addRow(QFormLayout* page, const char* key, QWidget* field);
    void buildGeneral();
    void buildScreen();
    void buildFiles();
    void buildExport();
    QCheckBox* addFlag(QFormLayout* page, const char* key, const char* preference);
    QLineEdit* addText(QFormLayout* page, const char* key, const char* preference);
    void fillChoices();
    void store(const std::function<void(platform::Preferences&)>& change);
    void applyTheme();
    void showUsage();
    void clearCache(bool onlyCold);
    void purgeBackups();

    Desk desk_;
    std::function<void()> onLanguage_;
    QTabWidget* pages_;
    std::vector<const char*> pageKeys_;
    std::vector<std::pair<QLabel*, const char*>> labels_;
    std::vector<std::pair<QAbstractButton*, const char*>> buttons_;
    QComboBox *language_ = nullptr, *accent_ = nullptr, *text_ = nullptr, *cap_ = nullptr;
    QLabel *usage_ = nullptr, *backups_ = nullptr;
    Background background_;
};

} // namespace tamlo::ui
