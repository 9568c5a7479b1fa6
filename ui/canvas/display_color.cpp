#include "ui/canvas/display_color.h"

#include "platform/platform_error.h"
#include "platform/x_profiles.h"

#include <QFile>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace tamlo::ui {
namespace {

constexpr qint64 kMostProfileBytes = qint64(64) << 20;

/// By maker, model and serial number: a screen keeps its choice on another socket.
std::string preferenceKey(const QScreen* screen)
{
    QString name = QStringList{screen->manufacturer(), screen->model(), screen->serialNumber()}.join(u'|');
    if (name == QStringLiteral("||")) name = screen->name();
    name.replace(u'=', u'-');
    return "screenProfile." + name.toStdString();
}

std::vector<std::uint8_t> bytesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMostProfileBytes) return {};
    const QByteArray all = file.readAll();
    return {all.begin(), all.end()};
}

} // namespace

bool DisplayColor::compositorConverts()
{
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariable("XDG_SESSION_TYPE") == QStringLiteral("wayland") ||
           QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

DisplayColor::DisplayColor(platform::Preferences& preferences, QObject* parent)
    : QObject(parent), preferences_(preferences)
{
    const auto* x = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x && x->connection() && !compositorConverts())
        xProfiles_ = std::make_unique<platform::XProfiles>(x->connection());
    if (xProfiles_) qGuiApp->installNativeEventFilter(this);
    for (QScreen* screen : QGuiApplication::screens()) watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        forget();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &DisplayColor::forget);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &DisplayColor::forget);
}

DisplayColor::~DisplayColor()
{
    if (xProfiles_ && qGuiApp) qGuiApp->removeNativeEventFilter(this);
}

void DisplayColor::watch(QScreen* screen)
{
    connect(screen, &QScreen::geometryChanged, this, &DisplayColor::forget);
}

void DisplayColor::forget()
{
    known_.clear();
    Q_EMIT changed();
}

bool DisplayColor::nativeEventFilter(const QByteArray& type, void* message, qintptr*)
{
    if (type == "xcb_generic_event_t" && xProfiles_->isChange(message))
        QMetaObject::invokeMethod(this, &DisplayColor::forget, Qt::QueuedConnection);
    return false;
}

DisplayColor::Choice DisplayColor::choice(const QScreen* screen) const
{
    const auto stored = preferences_.text(preferenceKey(screen));
    if (!stored || stored->empty()) return {};
    if (*stored == "srgb") return {Source::sRGB, {}};
    return {Source::file, QString::fromStdString(*stored)};
}

bool DisplayColor::choose(const QScreen* screen, const Choice& choice)
{
    if (choice.source == Source::file && platform::displayProfileName(bytesOf(choice.file)).empty())
        return false;
    std::optional<std::string> text;
    if (choice.source == Source::sRGB) text = "srgb";
    if (choice.source == Source::file) text = choice.file.toStdString();
    preferences_.setText(preferenceKey(screen), text);
    forget();
    return true;
}

std::vector<std::uint8_t> DisplayColor::profileOf(const QScreen* screen) const
{
    const Choice chosen = choice(screen);
    if (chosen.source == Source::file) return bytesOf(chosen.file);
    if (chosen.source == Source::sRGB || !xProfiles_) return {};
    return xProfiles_->read(static_cast<int>(QGuiApplication::screens().indexOf(screen)));
}

const DisplayColor::Known& DisplayColor::known(const QScreen* screen)
{
    if (const auto found = known_.find(screen); found != known_.end()) return found->second;
    static quint32 lastSerial = 0;
    Known now{profileOf(screen), {}, {}};
    now.color.transform = platform::DisplayTransform::of(now.profile);
    if (now.color.transform) now.color.serial = ++lastSerial;
    now.name = QString::fromStdString(platform::displayProfileName(now.profile));
    return known_[screen] = std::move(now);
}

ScreenColor DisplayColor::of(const QScreen* screen)
{
    return screen ? known(screen).color : ScreenColor();
}

QString DisplayColor::profileName(const QScreen* screen)
{
    return screen ? known(screen).name : QString();
}

} // namespace tamlo::ui
