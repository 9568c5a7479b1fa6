#include "ui/screens/export_dialog.h"

#include "app/export/export_folders.h"
#include "app/export/export_plan.h"
#include "core/pipeline/output_plan.h"
#include "ui/kit/kit_button.h"
#include "ui/kit/kit_choice.h"
#include "ui/kit/words.h"

#include <QCheckBox>
#include <QFile>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStandardPaths>

#include <array>
#include <filesystem>

namespace tamlo::ui {
namespace {

using Mode = ExportNaming::Mode;

constexpr std::array kScales{1.0, 0.5, 0.25};
constexpr std::array<const char*, 3> kScaleTexts{"100 %", "50 %", "25 %"};
constexpr std::array<std::int64_t, 2> kSocialPx{1080, 2048};
constexpr std::array kModes{Mode::source, Mode::tamlo,  Mode::numberSource,
                            Mode::number, Mode::custom, Mode::name};
constexpr std::array<const char*, 6> kModeKeys{"export.name.source",       "export.name.tamlo",
                                               "export.name.numberSource", "export.name.number",
                                               "export.name.custom",       "export.name.own"};
constexpr int kWidthPx = 620;
constexpr std::size_t kNamesTold = 3, kPathLetters = 52;

bool isFolder(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

QString pathText(const std::string& bytes)
{
    return QFile::decodeName(QByteArray::fromStdString(bytes));
}

QWidget* inRow(std::initializer_list<QWidget*> widgets)
{
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets) line->addWidget(widget, widget == *widgets.begin() ? 1 : 0);
    return row;
}

QString listed(const std::vector<std::string>& names)
{
    QStringList told;
    for (std::size_t i = 0; i < names.size() && i < kNamesTold; ++i) told << qt(names[i]);
    QString text = told.join(QStringLiteral(", "));
    if (names.size() > kNamesTold) text += word("export.andMore", {{"n", names.size() - kNamesTold}});
    return text;
}

} // namespace

ExportDialog::ExportDialog(Desk desk, QWidget* parent)
    : Dialog("export.title", parent),
      desk_(desk),
      draft_(
          desk.model.exporter.exportDraft(desk.isOnDevelop() ? desk.model.selection.cursor() : std::nullopt)),
      form_(new QFormLayout),
      set_(new KitChoice(this)),
      folder_(new KitChoice(this)),
      naming_(new KitChoice(this)),
      type_(new KitChoice(this)),
      scale_(new KitChoice(this)),
      socialSize_(new KitChoice(this)),
      text_(new QLineEdit(this)),
      example_(new QLabel(this)),
      size_(new QLabel(this)),
      warnings_(new QLabel(this)),
      social_(new KitSwitch(this)),
      reveal_(new KitSwitch(this)),
      choose_(new KitButton(this))
{
    build();
    const ExportFolders::List folders = ExportFolders::load(desk_.model.seams().preferences);
    fillFolders(folders.empty() ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
                                : pathText(folders.front().path));
    retranslate();
    subscription_ = desk_.model.subscribe({Concern::roll, Concern::fileStates, Concern::exporting},
                                          [this](const ChangeSet&) { refresh(); });
}

QLabel* ExportDialog::addRow(const char* key, QWidget* field)
{
    auto* label = new QLabel(this);
    label->setBuddy(field);
    form_->addRow(label, field);
    labels_.emplace_back(label, key);
    return label;
}

void ExportDialog::build()
{
    form_->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form_->setHorizontalSpacing(14);
    form_->setVerticalSpacing(9);
    lines().addLayout(form_);
    addRow("export.which", set_);
    addRow("export.folder", inRow({folder_, choose_}));
    addRow("export.naming", inRow({naming_, text_}));
    addRow("export.example", example_);
    addRow("export.type", inRow({type_, scale_}));
    addRow("export.size", size_);
    addRow("export.social", inRow({social_, socialSize_}));
    addRow("export.after", reveal_);
    warnings_->setWordWrap(true);
    warnings_->setTextFormat(Qt::PlainText);
    warnings_->setForegroundRole(QPalette::LinkVisited);
    lines().addWidget(warnings_);
    for (QLabel* label : {example_, size_}) label->setTextFormat(Qt::PlainText);
    text_->setMinimumWidth(170);
    setMinimumWidth(kWidthPx);
    addButton("common.cancel", [this] { close(); });
    start_ = addButton("export.start", [this] { start(); });
    start_->setDefault(true);
    for (QComboBox* choice : {set_, folder_, naming_, type_, scale_, socialSize_})
        connect(choice, &QComboBox::activated, this, [this] { read(); });
    for (QCheckBox* check : {social_, reveal_}) connect(check, &QCheckBox::clicked, this, [this] { read(); });
    connect(text_, &QLineEdit::textEdited, this, [this] { read(); });
    connect(choose_, &QPushButton::clicked, this, [this] { chooseFolder(); });
}

void ExportDialog::fillSets()
{
    const Project& project = desk_.model.project();
    set_->clear();
    if (draft_.single) {
        set_->addItem(word("export.set.frame", {{"label", project.label(*draft_.single)}}), -1);
        return;
    }
    const auto add = [&](const char* key, int index, std::size_t count) {
        if (count > 0) set_->addItem(word(key) + QStringLiteral(" · %1").arg(count), index);
    };
    add("export.set.picked", ExportDraft::kPickedIndex, draft_.picked.size());
    add("export.set.selected", static_cast<int>(ExportSet::selected), project.count(ExportSet::selected));
    add("export.set.notRejected", static_cast<int>(ExportSet::notRejected),
        project.count(ExportSet::notRejected));
    add("export.set.all", static_cast<int>(ExportSet::all), project.count(ExportSet::all));
    const int at = set_->findData(draft_.setIndex);
    set_->setCurrentIndex(at < 0 ? set_->count() - 1 : at);
    draft_.setIndex = set_->currentData().toInt(); // a set without frames is not offered
}

/// Folders that are away are listed too, and tell it; what is chosen stands in front.
void ExportDialog::fillFolders(const QString& chosen)
{
    const QSignalBlocker quiet(folder_);
    folder_->clear();
    const ExportFolders::List folders = ExportFolders::load(desk_.model.seams().preferences);
    const std::string home = qEnvironmentVariable("HOME").toStdString();
    const auto add = [&](const std::string& path, ExportFolders::State state) {
        QString text = qt(ExportFolders::shortPath(path, kPathLetters, home));
        if (state == ExportFolders::State::diskMissing)
            text += QStringLiteral(" — ") + word("export.sheet.diskMissing");
        if (state == ExportFolders::State::folderMissing)
            text += QStringLiteral(" — ") + word("export.sheet.folderMissing");
        folder_->addItem(text, pathText(path));
    };
    for (const auto& item : ExportFolders::current(folders, isFolder, desk_.model.seams().volumes))
        add(item.folder.path, item.state);
    if (!chosen.isEmpty() && folder_->findData(chosen) < 0) {
        add(QFile::encodeName(chosen).toStdString(), ExportFolders::State::available);
        folder_->setCurrentIndex(folder_->count() - 1);
    } else
        folder_->setCurrentIndex(folder_->findData(chosen));
}

void ExportDialog::retranslate()
{
    for (const auto& [label, key] : labels_) label->setText(word(key));
    choose_->setText(word("export.choose"));
    social_->setText(word("export.socialCopy"));
    reveal_->setText(word("export.reveal"));
    fillSets();
    naming_->clear();
    for (std::size_t i = 0; i < kModes.size(); ++i)
        if (draft_.single || kModes[i] != Mode::name)
            naming_->addItem(word(kModeKeys[i]), static_cast<int>(kModes[i]));
    type_->clear();
    for (const char* key : {"export.type.jpg", "export.type.tif", "export.type.png"})
        type_->addItem(word(key));
    scale_->clear();
    for (const char* text : kScaleTexts) scale_->addItem(QString::fromUtf8(text));
    socialSize_->clear();
    for (const char* key : {"export.social.wide", "export.social.long"}) socialSize_->addItem(word(key));
    set_->setAccessibleName(word("export.which"));
    folder_->setAccessibleName(word("export.folder"));
    naming_->setAccessibleName(word("export.naming"));
    text_->setAccessibleName(word("export.text"));
    text_->setPlaceholderText(word("export.text"));
    type_->setAccessibleName(word("export.type"));
    scale_->setAccessibleName(word("export.size"));
    socialSize_->setAccessibleName(word("export.social"));
    showDraft(draft_);
    refresh();
}

void ExportDialog::showDraft(const ExportDraft& draft)
{
    naming_->setCurrentIndex(std::max(naming_->findData(static_cast<int>(draft.naming)), 0));
    type_->setCurrentIndex(static_cast<int>(draft.type));
    scale_->setCurrentIndex(static_cast<int>(std::ranges::find(kScales, draft.scale) - kScales.begin()));
    social_->setChecked(draft.social);
    socialSize_->setCurrentIndex(draft.socialPx == kSocialPx[1] ? 1 : 0);
    reveal_->setChecked(draft.reveal);
    text_->setText(qt(draft.naming == Mode::name ? draft.nameText : draft.customText));
}

void ExportDialog::read()
{
    const Mode before = draft_.naming;
    draft_.setIndex = std::max(set_->currentData().toInt(), 0);
    draft_.naming = static_cast<Mode>(naming_->currentData().toInt());
    draft_.type = static_cast<ExportDraft::Type>(type_->currentIndex());
    draft_.scale = kScales[static_cast<std::size_t>(scale_->currentIndex())];
    draft_.social = social_->isChecked();
    draft_.socialPx = kSocialPx[static_cast<std::size_t>(socialSize_->currentIndex())];
    draft_.reveal = reveal_->isChecked();
    if (before == draft_.naming && before == Mode::name) draft_.nameText = utf8(text_->text());
    if (before == draft_.naming && before == Mode::custom) draft_.customText = utf8(text_->text());
    if (before != draft_.naming)
        text_->setText(qt(draft_.naming == Mode::name ? draft_.nameText : draft_.customText));
    refresh();
}

QString ExportDialog::example(const std::vector<FrameRef>& frames) const
{
    if (frames.empty()) return {};
    const auto names = ExportPlan::exportFileNames(draft_, frames);
    return qt(names.front()) + (names.size() > 1 ? QStringLiteral(", …") : QString());
}

/// What will be passed over and what is taken is told before the run.
QStringList ExportDialog::warnings(const std::vector<FrameRef>& frames) const
{
    std::vector<std::string> lost, taken;
    for (const FrameRef& frame : frames)
        if (!hasOriginal(desk_.model.linker.state(frame->id))) lost.push_back(frame->fileName());
    const std::filesystem::path folder = QFile::encodeName(folder_->currentData().toString()).toStdString();
    if (!isFolder(folder.string()))
        return {QStringLiteral("! ") + word("export.noFolder", {{"folder", folder.string()}})};
    if (!folder.empty())
        for (const std::string& name : ExportPlan::exportFileNames(draft_, frames))
            if (ExportNaming::defaultExists(folder / name)) taken.push_back(name);
    QStringList out;
    if (!lost.empty()) out << QStringLiteral("! ") + word("export.warn.lost") + listed(lost);
    if (!taken.empty()) out << QStringLiteral("! ") + word("export.warn.taken") + listed(taken);
    return out;
}

void ExportDialog::refresh()
{
    std::vector<FrameRef> frames;
    for (const FrameID& id : draft_.frames(desk_.model.project()))
        if (FrameRef frame = desk_.model.project().frame(id)) frames.push_back(std::move(frame));
    text_->setVisible(draft_.naming == Mode::custom || draft_.naming == Mode::name);
    socialSize_->setEnabled(draft_.social);
    example_->setText(example(frames));
    const std::optional<Size> size =
        frames.empty() ? std::nullopt : desk_.model.exporter.outputSize(draft_.scale, *frames.front());
    size_->setText(size ? qt(Pipeline::sizeLabel(*size, T("unit.mp"))) : QStringLiteral("—"));
    const QStringList told = warnings(frames);
    warnings_->setText(told.join(QLatin1Char('\n')));
    warnings_->setVisible(!told.isEmpty());
    const bool mayStart = !frames.empty() && !desk_.model.exporter.isExporting() &&
                          isFolder(QFile::encodeName(folder_->currentData().toString()).toStdString());
    start_->setEnabled(mayStart);
    setWindowTitle(qt(Loc::string("export.titleFrames", static_cast<std::int64_t>(frames.size()))));
}

void ExportDialog::chooseFolder()
{
    const QPointer<ExportDialog> alive(this);
    desk_.window.chooseFolder("export.choose", [alive](const std::string& path) {
        if (!alive) return;
        alive->fillFolders(pathText(path));
        alive->refresh();
    });
}

void ExportDialog::start()
{
    desk_.model.exporter.exportSheetNext(draft_);
    desk_.window.runExport(draft_, QFile::encodeName(folder_->currentData().toString()).toStdString());
    close();
}

} // namespace tamlo::ui
