#include "ui/desktop/qt_desktop.h"

#include "ui/desktop/session_bus.h"
#include "ui/kit/words.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>
#include <QStyleHints>
#include <QUrl>
#include <QVariantMap>

namespace tamlo::ui {
namespace {

constexpr std::size_t kMostRevealed = 50;

/// Without an answer: a service that hangs must not hold the window.
void send(const QString& service, const QString& path, const QString& interface, const QString& method,
          const QVariantList& arguments)
{
    if (!hasSessionBus()) return;
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call.setArguments(arguments);
    QDBusConnection::sessionBus().call(call, QDBus::NoBlock);
}

QUrl urlOf(const std::filesystem::path& path)
{
    return QUrl::fromLocalFile(QFile::decodeName(QByteArray::fromStdString(path.string())));
}

} // namespace

/// The signal that docks and taskbars listen to.
void QtDesktop::showProgress(std::optional<double> fraction)
{
    if (!hasSessionBus()) return;
    QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/app/tamlo/Tamlo"),
                                                     QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                     QStringLiteral("Update"));
    signal.setArguments({QStringLiteral("application://app.tamlo.Tamlo.desktop"),
                         QVariantMap{{QStringLiteral("progress"), fraction.value_or(0)},
                                     {QStringLiteral("progress-visible"), fraction.has_value()}}});
    QDBusConnection::sessionBus().send(signal);
}

void QtDesktop::notify(const std::string& title, const std::string& text)
{
    send(QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
         QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"),
         {QStringLiteral("Tamlo"), 0U, QStringLiteral("app.tamlo.Tamlo"), qt(title), qt(text), QStringList(),
          QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("app.tamlo.Tamlo")}}, -1});
}

void QtDesktop::reveal(const std::vector<std::filesystem::path>& files)
{
    if (files.empty()) return;
    if (!hasSessionBus()) {
        QDesktopServices::openUrl(urlOf(files.front().parent_path()));
        return;
    }
    QStringList urls;
    for (std::size_t i = 0; i < files.size() && i < kMostRevealed; ++i) urls << urlOf(files[i]).toString();
    send(QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
         QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"), {urls, QString()});
}

double QtDesktop::doubleClickSeconds() const
{
    return QGuiApplication::styleHints()->mouseDoubleClickInterval() / 1000.0;
}

} // namespace tamlo::ui
