#include "ui/desktop/qt_texts.h"

#include "ui/kit/words.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace tamlo::ui {

void useQtTexts()
{
    static auto* texts = new QTranslator(QCoreApplication::instance());
    const QString lang = qt(Loc::rawText(Loc::current()));
    QLocale::setDefault(QLocale(lang)); // dates and sizes speak it too
    QCoreApplication::removeTranslator(texts);
    if (texts->load(QStringLiteral("qtbase_") + lang, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(texts);
}

} // namespace tamlo::ui
