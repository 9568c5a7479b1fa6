// screens OUT [PHOTOGRAPH...]: photographs of the window in its states, in both languages and three sizes,
// and index.html, which shows them side by side. Without photographs, those of the tests.
//   screens OUT --only crop,grid [PHOTOGRAPH...]      these states alone
//   screens OUT --size 1366x768@1 --language ru ...   one language, one size (what the program runs itself
//   for)
#include "core/text/loc.h"
#include "tools/screens/page.h"
#include "tools/screens/states.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <iostream>

namespace tamlo::screens {
namespace {

struct Wish {
    QString out;
    QStringList only, photographs;
    std::optional<QString> size, language;
};

Wish wishOf(const QStringList& arguments)
{
    Wish wish;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const bool hasValue = i + 1 < arguments.size();
        if (arguments[i] == QStringLiteral("--only") && hasValue)
            wish.only = arguments[++i].split(u',');
        else if (arguments[i] == QStringLiteral("--size") && hasValue)
            wish.size = arguments[++i];
        else if (arguments[i] == QStringLiteral("--language") && hasValue)
            wish.language = arguments[++i];
        else if (wish.out.isEmpty())
            wish.out = arguments[i];
        else
            wish.photographs << QFileInfo(arguments[i]).absoluteFilePath();
    }
    if (wish.photographs.isEmpty())
        for (const char* folder : {"photos", "heic", "raw"})
            wish.photographs << QStringLiteral(TAMLO_SAMPLES "/") + QLatin1String(folder);
    return wish;
}

QSize pointsOf(const QString& size)
{
    const QStringList sides = size.section(u'@', 0, 0).split(u'x');
    const double scale = size.section(u'@', 1, 1).toDouble();
    if (sides.size() != 2 || !(scale > 0)) return {};
    return QSize(sides[0].toInt(), sides[1].toInt()) / scale;
}

void takeAll(Stage& stage, const Wish& wish, std::span<const State> states)
{
    for (const State& state : states) {
        if (!wish.only.isEmpty() && !wish.only.contains(QLatin1String(state.name))) continue;
        state.enter(stage);
        stage.wait(0.1);
        stage.photograph().save(wish.out + u'/' + pictureName(state, *wish.size, *wish.language));
    }
}

/// One language and one size, in this process.
int photograph(const Wish& wish)
{
    const QSize points = pointsOf(*wish.size);
    if (points.isEmpty()) {
        std::cerr << "screens: a size is WIDTHxHEIGHT@SCALE\n";
        return 2;
    }
    Loc::setOverride(*wish.language == QStringLiteral("ru") ? Loc::Lang::ru : Loc::Lang::en);
    Stage stage(points);
    takeAll(stage, wish, emptyStates());
    std::vector<std::string> photographs;
    for (const QString& one : wish.photographs) photographs.push_back(one.toStdString());
    stage.add(photographs);
    takeAll(stage, wish, rollStates());
    return 0;
}

/// A scale is a matter of the whole process, and nothing of the user's is to be met: so each runs in its own.
int photographAll(const Wish& wish)
{
    const QTemporaryDir home;
    int failures = 0;
    for (const QString& size : sizes())
        for (const QString& language : languages()) {
            QProcess child;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("QT_SCALE_FACTOR"), size.section(u'@', 1, 1));
            environment.insert(QStringLiteral("TAMLO_USER_DIR"), home.path());
            environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.path());
            child.setProcessEnvironment(environment);
            child.setProcessChannelMode(QProcess::ForwardedChannels);
            QStringList arguments{wish.out, QStringLiteral("--size"), size, QStringLiteral("--language"),
                                  language};
            if (!wish.only.isEmpty()) arguments << QStringLiteral("--only") << wish.only.join(u',');
            std::cerr << size.toStdString() << ' ' << language.toStdString() << '\n';
            child.start(QCoreApplication::applicationFilePath(), arguments + wish.photographs);
            if (!child.waitForFinished(-1) || child.exitCode() != 0) ++failures;
        }
    writePage(wish.out);
    return failures == 0 ? 0 : 1;
}

} // namespace
} // namespace tamlo::screens

int main(int argc, char** argv)
{
    using namespace tamlo::screens;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const Wish wish = wishOf(QCoreApplication::arguments());
    if (wish.out.isEmpty() || !QDir().mkpath(wish.out)) {
        std::cerr << "screens: say into which folder the pictures go\n";
        return 2;
    }
    return wish.size && wish.language ? photograph(wish) : photographAll(wish);
}
