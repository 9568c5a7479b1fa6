#include "ui/desktop/file_dialogs.h"

#include "ui/kit/words.h"

#include <QFile>
#include <QFileDialog>
#include <QStandardPaths>

namespace tamlo::ui {

QFileDialog* FileDialogs::make(const QString& title, Take take)
{
    if (last_.isEmpty()) last_ = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    auto* dialog = new QFileDialog(&window_, title, last_);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QFileDialog::filesSelected, dialog,
                     [this, dialog, take = std::move(take)](const QStringList& files) {
                         last_ = dialog->directory().absolutePath();
                         Paths paths;
                         for (const QString& file : files)
                             paths.push_back(QFile::encodeName(file).toStdString());
                         take(std::move(paths));
                     });
    return dialog;
}

void FileDialogs::pictures(const QString& title, Take take)
{
    QFileDialog* dialog = make(title, std::move(take));
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->open();
}

void FileDialogs::project(const QString& title, Take take)
{
    QFileDialog* dialog = make(title, std::move(take));
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilter(word("dialog.projects") + QStringLiteral(" (*.tamlo)"));
    dialog->open();
}

void FileDialogs::folder(const QString& title, Take take)
{
    QFileDialog* dialog = make(title, std::move(take));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->open();
}

void FileDialogs::saveProject(const QString& title, const QString& name, Take take)
{
    QFileDialog* dialog = make(title, std::move(take));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setOption(QFileDialog::DontConfirmOverwrite); // which would wait for its answer
    dialog->setDefaultSuffix(QStringLiteral("tamlo"));
    dialog->setNameFilter(word("dialog.projects") + QStringLiteral(" (*.tamlo)"));
    dialog->selectFile(name);
    dialog->open();
}

} // namespace tamlo::ui
