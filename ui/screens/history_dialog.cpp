#include "ui/screens/history_dialog.h"

#include "app/shell/history_rows.h"
#include "ui/kit/words.h"

#include <QDateTime>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tamlo::ui {
namespace {

constexpr std::size_t kMostLabels = 4;

QString labelsOf(const std::vector<std::string>& frames)
{
    QStringList labels;
    for (std::size_t i = 0; i < frames.size() && i < kMostLabels; ++i) labels << qt(frames[i]);
    return labels.join(QLatin1Char(' ')) + (frames.size() > kMostLabels ? QStringLiteral(" …") : QString());
}

} // namespace

HistoryDialog::HistoryDialog(Desk desk, QWidget* parent)
    : Dialog("menu.edit.history", parent), desk_(desk), list_(new QTreeWidget(this))
{
    list_->setColumnCount(3);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (const int column : {1, 2})
        list_->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    lines().addWidget(list_);
    const auto chosen = [this](const QTreeWidgetItem* item) {
        goTo(item->data(0, Qt::UserRole).toULongLong());
    };
    connect(list_, &QTreeWidget::itemClicked, this, chosen);
    connect(list_, &QTreeWidget::itemActivated, this, chosen);
    addButton("common.close", [this] { close(); });
    subscription_ =
        desk_.model.subscribe({Concern::document, Concern::roll}, [this](const ChangeSet&) { refresh(); });
    resize(420, 520);
    retranslate();
}

void HistoryDialog::retranslate()
{
    list_->setAccessibleName(word("menu.edit.history"));
    refresh();
}

void HistoryDialog::refresh()
{
    list_->clear();
    const std::size_t stands = desk_.model.history().undoStack().size();
    const auto add = [&](const QString& name, const QString& frames, const QString& time,
                         std::size_t stepsLeft, bool isUndone) {
        auto* item = new QTreeWidgetItem({name, frames, time});
        item->setData(0, Qt::UserRole, static_cast<qulonglong>(stepsLeft));
        if (isUndone)
            for (int column = 0; column < 3; ++column)
                item->setForeground(column, palette().brush(QPalette::PlaceholderText));
        list_->insertTopLevelItem(0, item);
        if (stepsLeft == stands && !isUndone) list_->setCurrentItem(item);
    };
    const std::vector<HistoryRow> rows = historyRows(desk_.model);
    const std::size_t first = rows.empty() ? 0 : rows.front().stepsLeft - 1;
    add(word("history.begin"), {}, {}, first, false);
    for (const HistoryRow& row : rows) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(row.date * 1000));
        add(qt(row.name), labelsOf(row.frames), time.toString(QStringLiteral("HH:mm")), row.stepsLeft,
            row.isUndone);
    }
}

void HistoryDialog::goTo(std::size_t stepsLeft)
{
    AppModel& model = desk_.model;
    model.undoTo(stepsLeft);
    while (model.history().undoStack().size() < stepsLeft && model.redo()) {}
}

} // namespace tamlo::ui
