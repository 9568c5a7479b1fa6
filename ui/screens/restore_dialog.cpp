#include "ui/screens/restore_dialog.h"

#include "ui/kit/words.h"

#include <QDateTime>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

QString dayOf(const QDate& day)
{
    const QDate today = QDate::currentDate();
    if (day == today) return word("restore.today");
    if (day == today.addDays(-1)) return word("restore.yesterday");
    return QLocale().toString(day, QLocale::LongFormat);
}

} // namespace

RestoreDialog::RestoreDialog(Desk desk, std::function<void(const ProjectBackups::Item&)> open,
                             QWidget* parent)
    : Dialog("restore.title", parent),
      desk_(desk),
      open_(std::move(open)),
      note_(new QLabel(this)),
      list_(new QTreeWidget(this))
{
    if (const auto& url = desk_.model.projectURL())
        items_ = ProjectBackups::list(ProjectBackups::dir(*url), true);
    note_->setWordWrap(true);
    list_->setColumnCount(3);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list_->header()->setStretchLastSection(false);
    lines().addWidget(note_);
    lines().addWidget(list_, 1);
    openButton_ = addButton("restore.open", [this] { openChosen(); });
    addButton("common.cancel", [this] { close(); });
    connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { openChosen(); });
    connect(list_, &QTreeWidget::currentItemChanged, this,
            [this](const QTreeWidgetItem* item) { openButton_->setEnabled(item && item->parent()); });
    resize(480, 460);
    retranslate();
}

void RestoreDialog::retranslate()
{
    const std::string file = desk_.model.projectURL() ? desk_.model.projectURL()->filename().string() : "";
    note_->setText(items_.empty() ? word("restore.empty") : word("restore.note", {{"name", file}}));
    list_->setAccessibleName(word("restore.title"));
    list_->setVisible(!items_.empty());
    list_->clear();
    openButton_->setEnabled(false);
    QTreeWidgetItem* day = nullptr;
    QDate of;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(items_[i].date * 1000));
        if (!day || time.date() != of) {
            of = time.date();
            day = new QTreeWidgetItem(list_, {dayOf(of)});
            day->setFlags(Qt::ItemIsEnabled);
        }
        const QString frames =
            items_[i].frames ? qt(Loc::string("project.frames", static_cast<std::int64_t>(*items_[i].frames)))
                             : QStringLiteral("—");
        auto* item = new QTreeWidgetItem(day, {time.toString(QStringLiteral("    HH:mm:ss")), frames,
                                               QLocale().formattedDataSize(items_[i].bytes)});
        item->setData(0, Qt::UserRole, static_cast<qulonglong>(i));
    }
    list_->expandAll();
}

void RestoreDialog::openChosen()
{
    const QTreeWidgetItem* item = list_->currentItem();
    if (!item || !item->parent()) return;
    const ProjectBackups::Item chosen = items_[item->data(0, Qt::UserRole).toULongLong()];
    const auto open = open_;
    close();
    open(chosen);
}

} // namespace tamlo::ui
