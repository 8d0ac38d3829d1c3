#ifndef VORN_WORKBENCH_HINTS_H
#define VORN_WORKBENCH_HINTS_H

#include "Profile.h"
#include "Session.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// Whether a command is usually registered as immediate, because it follows the finger: volume,
/// cursor, typed characters.
bool isUsuallyImmediate(InputEvent::Command command);

/// "keys->registerKey(KEY_INFO, InputEvent::Info, false);", with "…" for a command that is up to
/// the product.
QString keyRegistration(int code);
QString longPressRegistration(int code);
QString chordRegistration(int first, int second);
QString switchRegistration(int code);

/// A key that is held at least this long is meant as a long press.
constexpr qint64 longPressHoldUs = 600'000;
/// The timeout of a proposed long press.
constexpr int usualLongPressMs = 700;
/// The next timeout of a key that repeats, as on the example player's front panel.
constexpr int usualRepeatMs = 600;

/// Shows the registrations that keys and switches without one would need: the first time each is
/// used, held long or pressed together with another.
class Hints
{
public:
    struct Hint
    {
        QString device; ///< "front-panel (event0)"
        QString registration; ///< a line of code
    };

    /// What to show with an entry; nothing with most entries.
    /// @param profile null without one: then nothing is registered
    std::optional<Hint> add(const SessionEntry &entry, const Profile *profile,
                            const QString &identifier);

private:
    struct Device
    {
        QString name;
        InputEvent::Bus bus = InputEvent::Bus::NoBus;
    };
    QString ofChord(const DetectorStep &step, const Profile *profile);
    QString ofRecord(const RecordRead &record, const DeviceProfile *mapping,
                     const QString &identifier);
    QString once(const QString &place, const QString &text);
    std::optional<Hint> hintFor(const QString &device, const QString &registration) const;

    QHash<QString, Device> m_devices;
    QHash<QString, qint64> m_pressed; ///< stamp of the press in µs, by device and code
    QSet<QString> m_shown;
};

} // namespace Vorn::Workbench

#endif
