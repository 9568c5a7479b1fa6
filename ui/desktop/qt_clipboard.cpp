#include "ui/desktop/qt_clipboard.h"

#include "ui/kit/words.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace tamlo::ui {

QtClipboard::QtClipboard()
{
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, &hears_,
                     [this] { read_.clear(); });
}

void QtClipboard::clear()
{
    data_.clear();
    text_.reset();
    QGuiApplication::clipboard()->clear();
}

void QtClipboard::setData(const std::string& type, std::string bytes)
{
    data_[type] = std::move(bytes);
    offer();
}

void QtClipboard::setText(std::string text)
{
    text_ = std::move(text);
    offer();
}

/// An offer replaces the one before.
void QtClipboard::offer()
{
    auto* offered = new QMimeData;
    for (const auto& [type, bytes] : data_) offered->setData(qt(type), QByteArray::fromStdString(bytes));
    if (text_) offered->setText(qt(*text_));
    QGuiApplication::clipboard()->setMimeData(offered);
    read_.clear();
}

std::optional<std::string> QtClipboard::data(const std::string& type) const
{
    const auto [known, isNew] = read_.try_emplace(type);
    if (!isNew) return known->second;
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    if (held && held->hasFormat(qt(type))) known->second = held->data(qt(type)).toStdString();
    return known->second;
}

std::optional<std::string> QtClipboard::text() const
{
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    if (!held || !held->hasText()) return std::nullopt;
    return utf8(held->text());
}

} // namespace tamlo::ui
