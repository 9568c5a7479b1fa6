#include "ui/screens/preferences_dialog.h"

#include "platform/platform_error.h"
#include "ui/kit/kit_button.h"
#include "ui/kit/kit_choice.h"
#include "ui/kit/theme.h"
#include "ui/kit/words.h"

#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTabWidget>
#include <QVBoxLayout>

#include <array>

namespace tamlo::ui {
namespace {

constexpr std::array<const char*, 3> kLanguages{"system", "ru", "en"};
constexpr std::array kTextPercents{80, 90, 100, 110, 125, 150, 200};
constexpr std::array kCapsGB{4, 8, 16, 32, 64, 128, 0}; ///< 0: none
constexpr double kUsualCapGB = 16;
constexpr double kBackupDays = 90;
constexpr double kBytesPerGB = 1e9;

QWidget* inRow(std::initializer_list<QWidget*> widgets)
{
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets) line->addWidget(widget);
    line->addStretch();
    return row;
}

std::string gigabytes(std::int64_t bytes)
{
    return Fmt::number(static_cast<double>(bytes) / kBytesPerGB, 1);
}

} // namespace

PreferencesDialog::PreferencesDialog(Desk desk, std::function<void()> onLanguage, QWidget* parent)
    : Dialog("preferences.title", parent),
      desk_(desk),
      onLanguage_(std::move(onLanguage)),
      pages_(new QTabWidget(this)),
      background_(desk.model.seams().loop, "tamlo.preferences", platform::Niceness::utility)
{
    lines().addWidget(pages_);
    buildGeneral();
    buildScreen();
    buildFiles();
    buildExport();
    addButton("common.close", [this] { close(); });
    resize(600, 420);
    retranslate();
    showUsage();
}

QFormLayout* PreferencesDialog::addPage(const char* key)
{
    auto* page = new QWidget(pages_);
    auto* form = new QFormLayout(page);
    form->setContentsMargins(18, 18, 18, 18);
    form->setHorizontalSpacing(14);
    form->setVerticalSpacing(10);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    pages_->addTab(page, QString());
    pageKeys_.push_back(key);
    return form;
}

QLabel* PreferencesDialog::addRow(QFormLayout* page, const char* key, QWidget* field)
{
    auto* label = new QLabel(this);
    label->setBuddy(field);
    page->addRow(label, field);
    labels_.emplace_back(label, key);
    return label;
}

/// A value that can't be stored is told, and holds for this run.
void PreferencesDialog::store(const std::function<void(platform::Preferences&)>& change)
{
    try {
        change(desk_.model.seams().preferences);
    } catch (const platform::PlatformError& error) {
        desk_.model.tellFailure(T("preferences.notStored", {{"error", error.what()}}));
    }
}

QCheckBox* PreferencesDialog::addFlag(QFormLayout* page, const char* key, const char* preference)
{
    auto* check = new KitSwitch(this);
    check->setChecked(desk_.model.seams().preferences.flag(preference).value_or(false));
    page->addRow(QString(), check);
    buttons_.emplace_back(check, key);
    connect(check, &QCheckBox::toggled, this, [this, preference](bool on) {
        store([&](platform::Preferences& preferences) { preferences.setFlag(preference, on); });
        applyTheme();
    });
    return check;
}

QLineEdit* PreferencesDialog::addText(QFormLayout* page, const char* key, const char* preference)
{
    auto* entry = new QLineEdit(qt(desk_.model.seams().preferences.text(preference).value_or("")), this);
    addRow(page, key, entry);
    connect(entry, &QLineEdit::editingFinished, this, [this, entry, preference] {
        const std::string text = utf8(entry->text().trimmed());
        store([&](platform::Preferences& preferences) {
            preferences.setText(preference, text.empty() ? std::nullopt : std::optional(text));
        });
    });
    return entry;
}

void PreferencesDialog::buildGeneral()
{
    QFormLayout* page = addPage("preferences.general");
    language_ = new KitChoice(this);
    addRow(page, "preferences.language", language_);
    addFlag(page, "preferences.advance", "advanceAfterMark");
    connect(language_, &QComboBox::activated, this, [this](int i) {
        try {
            Loc::setLang(kLanguages[static_cast<std::size_t>(i)]);
        } catch (const platform::PlatformError& error) {
            desk_.model.tellFailure(T("preferences.notStored", {{"error", error.what()}}));
        }
        desk_.model.lists.rebuildLists(); // their titles are of the language
        onLanguage_();
    });
}

void PreferencesDialog::buildScreen()
{
    QFormLayout* page = addPage("preferences.screen");
    accent_ = new KitChoice(this);
    text_ = new KitChoice(this);
    addRow(page, "preferences.accent", accent_);
    addRow(page, "preferences.text", text_);
    addFlag(page, "preferences.contrast", "highContrast");
    addFlag(page, "preferences.touch", "touchDensity");
    connect(accent_, &QComboBox::activated, this, [this](int i) {
        store([&](platform::Preferences& preferences) {
            preferences.setText("accentID", accentPalette()[static_cast<std::size_t>(i)].id);
        });
        applyTheme();
    });
    connect(text_, &QComboBox::activated, this, [this](int i) {
        store([&](platform::Preferences& preferences) {
            preferences.setNumber("textPercent", kTextPercents[static_cast<std::size_t>(i)]);
        });
        applyTheme();
    });
}

void PreferencesDialog::applyTheme()
{
    Theme::apply(*qApp, Theme::Choices::of(desk_.model.seams().preferences));
}

void PreferencesDialog::buildFiles()
{
    QFormLayout* page = addPage("preferences.files");
    const auto button = [this](const char* key, std::function<void()> act) {
        auto* made = new KitButton(this);
        buttons_.emplace_back(made, key);
        connect(made, &QPushButton::clicked, this, std::move(act));
        return made;
    };
    cap_ = new KitChoice(this);
    usage_ = new QLabel(this);
    backups_ = new QLabel(this);
    addRow(page, "preferences.cap", cap_);
    addRow(page, "preferences.cache", usage_);
    page->addRow(QString(), inRow({button("preferences.clear", [this] { clearCache(false); }),
                                   button("preferences.clearCold", [this] { clearCache(true); })}));
    addRow(page, "preferences.backups", backups_);
    page->addRow(QString(), inRow({button("settings.backups.purge", [this] { purgeBackups(); })}));
    connect(cap_, &QComboBox::activated, this, [this](int i) {
        store([&](platform::Preferences& preferences) {
            preferences.setNumber("proxyCacheCapGB", kCapsGB[static_cast<std::size_t>(i)]);
        });
    });
}

void PreferencesDialog::buildExport()
{
    QFormLayout* page = addPage("preferences.export");
    addText(page, "preferences.author", "exportAuthor");
    addText(page, "preferences.copyright", "exportCopyright");
    auto* note = new QLabel(this);
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);
    page->addRow(QString(), note);
    labels_.emplace_back(note, "preferences.exportNote");
}

void PreferencesDialog::fillChoices()
{
    const platform::Preferences& preferences = desk_.model.seams().preferences;
    language_->clear();
    for (const char* key :
         {"preferences.language.system", "preferences.language.ru", "preferences.language.en"})
        language_->addItem(word(key));
    const auto chosen = Loc::override();
    language_->setCurrentIndex(!chosen ? 0 : *chosen == Loc::Lang::ru ? 1 : 2);
    accent_->clear();
    const std::string accentID = preferences.text("accentID").value_or("");
    for (const Accent& accent : accentPalette()) {
        QPixmap sample(12, 12);
        sample.fill(QColor::fromRgb(accent.colour));
        accent_->addItem(sample, word(std::string("accent.") + accent.id));
        if (accentID == accent.id) accent_->setCurrentIndex(accent_->count() - 1);
    }
    text_->clear();
    for (const int percent : kTextPercents) {
        text_->addItem(QStringLiteral("%1 %").arg(percent));
        if (percent == static_cast<int>(preferences.number("textPercent").value_or(100)))
            text_->setCurrentIndex(text_->count() - 1);
    }
    cap_->clear();
    const int capGB = static_cast<int>(preferences.number("proxyCacheCapGB").value_or(kUsualCapGB));
    for (const int cap : kCapsGB) {
        cap_->addItem(cap == 0 ? word("preferences.noLimit") : word("preferences.gigabytes", {{"n", cap}}));
        if (cap == capGB) cap_->setCurrentIndex(cap_->count() - 1);
    }
}

void PreferencesDialog::retranslate()
{
    for (std::size_t i = 0; i < pageKeys_.size(); ++i)
        pages_->setTabText(static_cast<int>(i), word(pageKeys_[i]));
    for (const auto& [label, key] : labels_) label->setText(word(key));
    for (const auto& [button, key] : buttons_) button->setText(word(key));
    fillChoices();
    showUsage();
}

/// Disks are counted beside the main thread.
void PreferencesDialog::showUsage()
{
    struct Found {
        ProxyCache::Amount cache;
        ProjectBackups::Usage backups;
    };
    background_.run(
        [&cache = desk_.views.previews().cache] {
            return Found{cache.usage(), ProjectBackups::usage()};
        },
        [this](const Found& found) {
            const auto files = static_cast<std::int64_t>(found.cache.files);
            usage_->setText(word("preferences.cacheUsed", {{"gb", gigabytes(found.cache.bytes)},
                                                           {"files", Loc::string("cache.files", files)}}));
            const std::string size = utf8(QLocale().formattedDataSize(found.backups.bytes));
            backups_->setText(qt(Loc::string(
                "settings.backups.files", static_cast<std::int64_t>(found.backups.files), {{"size", size}})));
        });
}

void PreferencesDialog::clearCache(bool onlyCold)
{
    background_.run(
        [&cache = desk_.views.previews().cache, onlyCold, now = desk_.model.seams().loop.date()] {
            return onlyCold ? cache.clearCold(now) : cache.clear();
        },
        [this, onlyCold](const ProxyCache::Amount& gone) {
            const char* none = onlyCold ? "cache.noCold" : "cache.nothingToClear";
            const char* some = onlyCold ? "cache.coldCleared" : "cache.cleared";
            desk_.model.tell(
                gone.files == 0 ? T(none) : T(some, {{"files", gone.files}, {"gb", gigabytes(gone.bytes)}}));
            showUsage();
        });
}

void PreferencesDialog::purgeBackups()
{
    background_.run(
        [now = desk_.model.seams().loop.date()] { return ProjectBackups::purge(kBackupDays, now); },
        [this](std::size_t gone) {
            desk_.model.tell(gone == 0
                                 ? T("settings.backups.none")
                                 : Loc::string("settings.backups.purged", static_cast<std::int64_t>(gone)));
            showUsage();
        });
}

} // namespace tamlo::ui
