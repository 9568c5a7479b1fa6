#include "tools/screens/page.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace tamlo::screens {
namespace {

constexpr const char* kHead = R"(<!doctype html>
<html lang="en"><meta charset="utf-8"><title>The window</title>
<style>
body { background: #2a2a2a; color: #ddd; font: 15px sans-serif; margin: 2em }
h2 { font-weight: normal; margin: 2em 0 .5em }
figure { display: inline-block; margin: 0 1em 1em 0; vertical-align: top }
img { height: 300px; border: 1px solid #555; display: block }
figcaption { color: #999; font-size: 12px; padding: .3em 0 }
</style>
<h1>The window, state by state</h1>
<p>A picture opens at its full size.</p>
)";

} // namespace

const QStringList& sizes()
{
    static const QStringList all{QStringLiteral("1366x768@1"), QStringLiteral("1920x1080@1"),
                                 QStringLiteral("3840x2160@2")};
    return all;
}

const QStringList& languages()
{
    static const QStringList all{QStringLiteral("en"), QStringLiteral("ru")};
    return all;
}

QString pictureName(const State& state, const QString& size, const QString& language)
{
    return QLatin1String(state.name) + u'.' + size.section(u'@', 0, 0) + u'.' + language +
           QStringLiteral(".png");
}

void writePage(const QString& folder)
{
    QFile file(folder + QStringLiteral("/index.html"));
    if (!file.open(QIODevice::WriteOnly)) return;
    QTextStream page(&file);
    page << kHead;
    for (const auto states : {emptyStates(), rollStates()})
        for (const State& state : states) {
            page << "<h2>" << state.title << "</h2>\n";
            for (const QString& size : sizes())
                for (const QString& language : languages()) {
                    const QString name = pictureName(state, size, language);
                    if (!QFileInfo::exists(folder + u'/' + name)) continue;
                    page << "<figure><a href=\"" << name << "\"><img loading=\"lazy\" src=\"" << name
                         << "\"></a><figcaption>" << size << " " << language << "</figcaption></figure>\n";
                }
        }
    page << "</html>\n";
}

} // namespace tamlo::screens
