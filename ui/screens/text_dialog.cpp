#include "ui/screens/text_dialog.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tamlo::ui {

TextDialog::TextDialog(std::string titleKey, const QString& text, QWidget* parent)
    : Dialog(std::move(titleKey), parent), text_(new QPlainTextEdit(text, this))
{
    text_->setReadOnly(true);
    text_->setAccessibleName(windowTitle());
    lines().addWidget(text_);
    addSideButton("common.copy", [this] { QGuiApplication::clipboard()->setText(text_->toPlainText()); });
    addButton("common.close", [this] { close(); });
    resize(640, 360);
}

} // namespace tamlo::ui
