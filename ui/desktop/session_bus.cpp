#include "ui/desktop/session_bus.h"

#include "ui/kit/words.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <QVariantMap>

namespace tamlo::ui {
namespace {

const QString kName = QStringLiteral("app.tamlo.Tamlo"), kPath = QStringLiteral("/app/tamlo/Tamlo"),
              kInterface = QStringLiteral("org.freedesktop.Application");
constexpr int kAnswerMs = 3'000; ///< after which the other instance counts as gone

} // namespace

bool hasSessionBus()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") ||
           (!runtime.isEmpty() && QFileInfo::exists(runtime + QStringLiteral("/bus")));
}

/// Source: "D-Bus Activation" of the desktop entries of freedesktop.org.
class SingleInstance::Door : public QDBusVirtualObject {
public:
    explicit Door(std::function<void(Files)> open) : open_(std::move(open)) {}

    QString introspect(const QString&) const override
    {
        return QStringLiteral("<interface name=\"org.freedesktop.Application\">"
                              "<method name=\"Activate\"><arg type=\"a{sv}\" direction=\"in\"/></method>"
                              "<method name=\"Open\"><arg type=\"as\" direction=\"in\"/>"
                              "<arg type=\"a{sv}\" direction=\"in\"/></method></interface>");
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.interface() != kInterface) return false;
        const bool opens = message.member() == QLatin1String("Open");
        if (!opens && message.member() != QLatin1String("Activate")) return false;
        Files files;
        if (opens && !message.arguments().isEmpty())
            for (const QString& url : message.arguments().first().toStringList())
                if (const QString file = QUrl(url).toLocalFile(); !file.isEmpty())
                    files.push_back(QFile::encodeName(file).toStdString());
        connection.send(message.createReply());
        open_(std::move(files));
        return true;
    }

private:
    std::function<void(Files)> open_;
};

bool SingleInstance::handOver(const Files& files)
{
    if (!hasSessionBus()) return false;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(kName)) return false;
    QStringList urls;
    for (const std::string& file : files)
        urls << QUrl::fromLocalFile(QFile::decodeName(QByteArray::fromStdString(file))).toString();
    const bool opens = !urls.isEmpty();
    QDBusMessage call = QDBusMessage::createMethodCall(
        kName, kPath, kInterface, opens ? QStringLiteral("Open") : QStringLiteral("Activate"));
    if (opens) call << urls;
    call << QVariantMap();
    return bus.call(call, QDBus::Block, kAnswerMs).type() == QDBusMessage::ReplyMessage;
}

SingleInstance::SingleInstance(std::function<void(Files)> open)
{
    if (!hasSessionBus()) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    door_ = std::make_unique<Door>(std::move(open));
    if (bus.registerVirtualObject(kPath, door_.get())) bus.registerService(kName);
}

SingleInstance::~SingleInstance()
{
    if (!door_) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(kName);
    bus.unregisterObject(kPath);
}

} // namespace tamlo::ui
