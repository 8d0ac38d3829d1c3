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

/// Makes typed text unreadable in a session, and leaves the rest of it as it was: every key that
/// types is replaced by one that stands for all of them.
///
/// A key types if the current handler of its device maps it to a character. One that types a
/// character by nature (isTypingKey()) does so, too, unless the handler maps it to another command;
/// so what is typed on a device that the profile does not mention is not readable either. Without a
/// profile there are no handlers.
///
/// What stands for a key is KEY_A if the handler maps that to a character, and the lowest key that
/// it maps to one otherwise; without such keys KEY_A. While one key is down, the next one is
/// replaced by the next key of that kind, so that overlapping strokes stay what they are. A key is
/// released, and reported, as what it was pressed as.
class TextBlanking
{
public:
    /// @param profile may be null, may change, and must live longer
    explicit TextBlanking(const Profile *profile)
        : m_profile(profile)
    { }

    /// Tells what a device can do, once its arrival went through blanked(). Only keys that it has
    /// stand for others then.
    void describe(const QString &device, const RecordedDevice &description);

    /// What is to be kept of an entry; nothing if it is to be left out. All entries of the session
    /// must pass here, in their order.
    std::optional<SessionEntry> blanked(const SessionEntry &entry);

    /// The keys of a list that do not type at present.
    QVector<int> keysThatDoNotType(const QString &device, const QVector<int> &codes) const;

private:
    /// What a key was pressed as.
    struct StandIn
    {
        int code = 0;
        /// What the handler maps it to.
        std::optional<InputEvent::Command> command;
        bool isBlanked = false;
    };

    struct Device
    {
        QString name;
        InputEvent::Bus bus = InputEvent::Bus::NoBus;
        RecordedDevice description;
        QHash<int, StandIn> standIns; ///< by the real code, from its last press on
        QHash<int, int> down; ///< real code to the code that stands for it
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
