#ifndef VORN_WORKBENCH_HINTS_H
#define VORN_WORKBENCH_HINTS_H

#include "Profile.h"
#include "Session.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// Whether a command is usually reported at once, because it follows the finger: volume, cursor,
/// typed characters.
bool isUsuallyImmediate(InputEvent::Command command);

/// "keys->registerKey(KEY_INFO, InputEvent::Info, false);", with "…" for a command that only the
/// product knows.
QString keyRegistration(int code);
QString longPressRegistration(int code);
QString chordRegistration(int first, int second);
QString switchRegistration(int code);

/// How long a key is held, at least, for a long press to be meant.
constexpr qint64 longPressHoldUs = 600'000;
/// The timeout of a long press that is proposed.
constexpr int usualLongPressMs = 700;
/// The timeout after it for a key that repeats, as on the example player's front panel.
constexpr int usualRepeatMs = 600;

/// Tells what a registration would look like for keys and switches that are not registered: the
/// first time that each is used, held for long or pressed together with another.
class Hints
{
public:
    /// The lines that go with an entry; mostly none.
    /// @param profile null without one: then nothing is registered
    QStringList add(const SessionEntry &entry, const Profile *profile, const QString &identifier);

private:
    struct Device
    {
        QString name;
        InputEvent::Bus bus = InputEvent::Bus::NoBus;
    };
    QStringList ofRecord(const RecordRead &record, const DeviceProfile *mapping,
                         const QString &identifier);
    QStringList once(const QString &place, const QString &text);

    QHash<QString, Device> m_devices;
    QHash<QString, qint64> m_pressed; ///< by device and code: the stamp, µs
    QSet<QString> m_told;
};

} // namespace Vorn::Workbench

#endif
