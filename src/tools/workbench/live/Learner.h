#ifndef VORN_WORKBENCH_LEARNER_H
#define VORN_WORKBENCH_LEARNER_H

#include "CommandNames.h"
#include "EventNames.h"
#include "Profile.h"
#include "Session.h"

#include <QHash>
#include <QMap>
#include <QString>
#include <QVector>

#include <functional>

namespace Vorn::Workbench {

/// Asks for one command after another, learns which key, chord or switch is used for it, and turns
/// that into a profile.
///
/// A key counts when it is released. Keys of one device that are down together are a chord; for a
/// key that is held for 600 ms or more a long press is offered. The class does no input or output
/// of its own.
class Learner
{
public:
    using Say = std::function<void(const QString &)>;

    /// @param commands in the order in which they are asked for
    /// @param acceptsAll every offer is accepted without asking
    Learner(const QVector<InputEvent::Command> &commands, bool acceptsAll, Say say);

    /// Asks for the first command.
    void start();

    /// Takes what happens on the devices.
    void add(const SessionEntry &entry);

    /// Takes a key from the terminal: Enter skips a command or accepts an offer, "y" accepts, "n"
    /// declines, "b" goes back to the previous command, "q" finishes.
    void answer(char key);

    bool isFinished() const { return m_isFinished; }

    /// How many commands have a key, a chord or a switch.
    int learntCount() const;

    /// What has been learnt so far.
    Profile profile() const;

private:
    /// Everything pressed from the first key down to the last key up.
    struct Press
    {
        QString device;
        QVector<int> keys;
        QVector<int> down;
        qint64 begin = 0; ///< the first record's stamp, µs
        qint64 duration = 0; ///< µs
    };
    struct Learnt
    {
        InputEvent::Command command = InputEvent::None;
        QString deviceName;
        QVector<int> keys; ///< one, or two of a chord
        int switchCode = -1;
        bool hasLongPress = false;
    };

    void ask();
    void next();
    void back();
    void finish();
    void onKey(const RecordRead &record);
    void onSwitch(const RecordRead &record);
    void onPressed(const Press &press);
    void learn(const Learnt &learnt);
    void offerLongPress(int index, qint64 duration);
    void acceptOffer(bool isAccepted);
    InputEvent::Command command() const { return m_commands.at(m_index); }

    const QVector<InputEvent::Command> m_commands;
    const bool m_acceptsAll;
    const Say m_say;
    int m_index = 0;
    bool m_isFinished = false;
    int m_offered = -1; ///< index in m_learnt of the key a long press is offered for; -1: none
    Press m_press;
    QHash<QString, QString> m_names;
    QVector<Learnt> m_learnt;
};

/// The commands that most players have a key for.
QVector<InputEvent::Command> usualCommands();

} // namespace Vorn::Workbench

#endif
