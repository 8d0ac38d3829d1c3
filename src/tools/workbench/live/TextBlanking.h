#ifndef VORN_WORKBENCH_TEXTBLANKING_H
#define VORN_WORKBENCH_TEXTBLANKING_H

#include "Profile.h"
#include "RecordedDevice.h"
#include "Session.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// Makes typed text unreadable in a session and leaves everything else as it was: every key that
/// types is replaced by the same stand-in.
///
/// A key types if the current handler of its device maps it to a character. A key that types by
/// nature (isTypingKey()) does so too, unless the handler maps it to another command; so text typed
/// on a device that the profile does not mention is unreadable as well. Without a profile there are
/// no handlers.
///
/// The stand-in is KEY_A if the handler maps that to a character, otherwise the lowest key that it
/// maps to one; if there is none, KEY_A. While one key is down, the next one gets the next
/// stand-in, so that overlapping strokes still overlap:
///
///     T down      E down      T up        E up        X down
///     [A down]    [2 down]    [A up]      [2 up]      [A down]
///
/// A key is released, and published, as the stand-in it was pressed as, even if the identifier has
/// changed in between.
class TextBlanking
{
public:
    /// @param profile may be null, may change, and must live longer
    explicit TextBlanking(const Profile *profile)
        : m_profile(profile)
    { }

    /// Says what a device can do, after its arrival has passed blanked(). From then on only keys
    /// that it has are stand-ins.
    void describe(const QString &device, const RecordedDevice &description);

    /// The entry as it may be kept; nothing if it must be left out. All entries of the session must
    /// pass here, in order.
    std::optional<SessionEntry> blanked(const SessionEntry &entry);

    /// Those of @p codes that do not type at present.
    QVector<int> keysThatDoNotType(const QString &device, const QVector<int> &codes) const;

private:
    /// What a key was pressed as.
    struct StandIn
    {
        int code = 0;
        /// What the handler maps the stand-in to.
        std::optional<InputEvent::Command> command;
        bool isBlanked = false;
    };

    struct Device
    {
        QString name;
        InputEvent::Bus bus = InputEvent::Bus::NoBus;
        RecordedDevice description;
        QHash<int, StandIn> standIns; ///< by real code, of its last press
        QHash<int, int> down; ///< stand-ins of the keys that are down, by real code
    };

    const HandlerProfile *handlerOf(const Device &device) const;
    static std::optional<InputEvent::Command> commandOf(const HandlerProfile *handler,
                                                        const Device &device, int code);
    bool types(const Device &device, int code) const;
    bool canType(const Device &device) const;
    QVector<int> standInCodes(const Device &device) const;
    StandIn chooseStandIn(const Device &device, int code) const;
    StandIn standInOf(const QString &path, int code) const;

    std::optional<RecordRead> blanked(RecordRead record);
    EventPublished blanked(EventPublished event) const;

    const Profile *const m_profile;
    std::optional<QString> m_identifier;
    QHash<QString, Device> m_devices;
};

} // namespace Vorn::Workbench

#endif
