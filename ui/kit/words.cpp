#include "ui/kit/words.h"

namespace tamlo::ui {

QString word(const std::string& key, const Loc::Args& args)
{
    return qt(T(key, args));
}

QString qt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string utf8(const QString& text)
{
    return text.toStdString();
}

} // namespace tamlo::ui
