// DisplayColor: what each screen makes of colours. On X that is the profile that the system has set for it,
// on Wayland, and for X programs there, sRGB: the compositor does the rest, and a profile applied twice is
// worse than none. The user may set sRGB or a file for a screen instead. Wide gamut and high dynamic range
// wait for a deep source and for a toolkit that speaks of them; they belong here.
#pragma once

#include "platform/preferences.h"
#include "ui/canvas/tiles.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QString>

#include <map>
#include <memory>

class QScreen;

namespace tamlo::platform {
class XProfiles;
}

namespace tamlo::ui {

class DisplayColor : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    enum class Source { system, sRGB, file };
    struct Choice {
        Source source = Source::system;
        QString file; ///< of Source::file
        bool operator==(const Choice&) const = default;
    };

    /// preferences outlive this. After QApplication.
    explicit DisplayColor(platform::Preferences& preferences, QObject* parent = nullptr);
    ~DisplayColor() override;

    ScreenColor of(const QScreen* screen);

    /// What the user has chosen for a screen. A file that is no profile of a screen is refused: false, and
    /// nothing changes.
    Choice choice(const QScreen* screen) const;
    bool choose(const QScreen* screen, const Choice& choice);
    /// What a profile in force calls itself; empty where a screen counts as sRGB.
    QString profileName(const QScreen* screen);
    /// The session's compositor converts, so that a file set here is applied on top of it.
    static bool compositorConverts();

Q_SIGNALS:
    /// A screen's colours may be others now.
    void changed();

private:
    struct Known {
        std::vector<std::uint8_t> profile;
        ScreenColor color;
        QString name;
    };

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void watch(QScreen* screen);
    const Known& known(const QScreen* screen);
    std::vector<std::uint8_t> profileOf(const QScreen* screen) const;
    void forget();

    platform::Preferences& preferences_;
    std::unique_ptr<platform::XProfiles> xProfiles_; ///< none on Wayland
    std::map<const QScreen*, Known> known_;
};

} // namespace tamlo::ui
