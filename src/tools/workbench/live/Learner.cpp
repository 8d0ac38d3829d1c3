#include "Learner.h"

#include "CommandNames.h"
#include "EventNames.h"
#include "Hints.h"
#include "Session.h"
#include "SessionWords.h"

#include <linux/input.h>

#include <algorithm>
#include <utility>

namespace Vorn::Workbench {

namespace {

QString seconds(qint64 us)
{
    return QString::number(static_cast<double>(us) / 1e6, 'f', 1) + QStringLiteral(" s");
}

bool isRepeated(InputEvent::Command command)
{
    return isUsuallyImmediate(command);
}

} // namespace

QVector<InputEvent::Command> usualCommands()
{
    return {InputEvent::Power,       InputEvent::VolumeUp,    InputEvent::VolumeDown,
            InputEvent::Mute,        InputEvent::StartPlay,   InputEvent::Pause,
            InputEvent::Stop,        InputEvent::Previous,    InputEvent::Next,
            InputEvent::CursorUp,    InputEvent::CursorDown,  InputEvent::CursorLeft,
            InputEvent::CursorRight, InputEvent::Confirm,     InputEvent::Cancel,
            InputEvent::JumpHome,    InputEvent::Info,        InputEvent::Search,
            InputEvent::SWLineIn,    InputEvent::FactoryReset};
}

/*
 *  asking ─────── Enter: skip, or a switch is moved ──────────────────┐
 *    │      ▲                                                         │
 *    │      └──── all up: three keys, or one that has a meaning already
 *    │ key down                                                       │
 *    ▼                                                                │
 *  pressed ────── all up: a chord, or one key for a short time ───────┤
 *    │                                                                │
 *    │ all up: one key, for 0.6 s or more                             │
 *    ▼                                                                ▼
 *  offered ────── Enter, y, n or --yes ──────────────────▶ asking for the next command,
 *    │                                                     or finished
 *    └─ keys up, or a switch: declined, and taken as the answer to the next question
 *
 *  b goes back by one command and forgets what was learnt for it, q finishes, both at any time. A
 *  device that is unplugged while its key is down takes "pressed" back to "asking".
 */

Learner::Learner(const QVector<InputEvent::Command> &commands, bool acceptsAll, Say say)
    : m_commands(commands)
    , m_acceptsAll(acceptsAll)
    , m_say(std::move(say))
{ }

void Learner::start()
{
    if (m_commands.isEmpty())
        finish();
    else
        ask();
}

void Learner::ask()
{
    m_say(QStringLiteral("[%1/%2] %3: press its key, two keys together, or move its switch")
              .arg(m_index + 1)
              .arg(m_commands.size())
              .arg(commandName(command())));
}

void Learner::next()
{
    m_offered = -1;
    if (++m_index < m_commands.size())
        ask();
    else
        finish();
}

void Learner::back()
{
    m_offered = -1;
    if (m_index > 0)
        --m_index;
    const auto isOfCommand = [this](const Learnt &learnt) { return learnt.command == command(); };
    m_learnt.erase(std::remove_if(m_learnt.begin(), m_learnt.end(), isOfCommand), m_learnt.end());
    ask();
}

void Learner::finish()
{
    m_isFinished = true;
}

void Learner::add(const SessionEntry &entry)
{
    if (const auto *change = std::get_if<DeviceChange>(&entry.what)) {
        m_say(QStringLiteral("%1 %2 %3")
                  .arg(QLatin1String(change->added ? "+" : "-"), change->device, change->name));
        if (change->added)
            m_names.insert(change->device, change->name);
        // The releases of its keys will never come.
        else if (m_press.device == change->device)
            m_press = Press();
        return;
    }
    const auto *record = std::get_if<RecordRead>(&entry.what);
    if (!record || m_isFinished)
        return;
    if (record->type == EV_KEY)
        onKey(*record);
    else if (record->type == EV_SW)
        onSwitch(*record);
}

void Learner::onKey(const RecordRead &record)
{
    // Keys of two devices are no chord: whoever presses the other one must wait.
    if (!m_press.down.isEmpty() && m_press.device != record.device)
        return;
    if (record.value == 1) {
        if (m_press.down.isEmpty())
            m_press = Press{record.device, {}, {}, record.stamp, 0};
        if (!m_press.keys.contains(record.code))
            m_press.keys += record.code;
        if (!m_press.down.contains(record.code))
            m_press.down += record.code;
    } else if (record.value == 0 && m_press.down.removeOne(record.code) && m_press.down.isEmpty()) {
        // By the stamps, as in the library: when records are read depends on the load.
        m_press.duration = qMax<qint64>(0, record.stamp - m_press.begin);
        onPressed(std::exchange(m_press, Press()));
    }
}

void Learner::onPressed(const Press &press)
{
    // To press the next key without answering the offer is to decline it.
    if (m_offered >= 0)
        acceptOffer(false);
    if (m_isFinished)
        return;
    const QString device = m_names.value(press.device, press.device);
    if (press.keys.size() > 2) {
        m_say(QStringLiteral("      %1: the library supports chords of two keys only; try again")
                  .arg(joinedKeys(press.keys)));
        return;
    }
    for (int i = 0; i < m_learnt.size(); ++i) {
        const Learnt &known = m_learnt.at(i);
        const bool isSame = known.deviceName == device && known.keys.size() == press.keys.size()
            && std::is_permutation(known.keys.begin(), known.keys.end(), press.keys.begin());
        if (!isSame)
            continue;
        if (known.command != command()) {
            m_say(QStringLiteral("      %1 already means %2; press another key, or Enter to skip")
                      .arg(joinedKeys(press.keys), commandName(known.command)));
        } else if (press.keys.size() == 1 && press.duration >= longPressHoldUs) {
            offerLongPress(i, press.duration);
        } else {
            next();
        }
        return;
    }
    learn(Learnt{command(), device, press.keys, -1, false});
    const bool isChord = press.keys.size() == 2;
    m_say(QStringLiteral("      %1%2 on %3, %4")
              .arg(isChord ? QStringLiteral("chord ") : QString(), joinedKeys(press.keys), device,
                   seconds(press.duration)));
    if (!isChord && press.duration >= longPressHoldUs)
        offerLongPress(learntCount() - 1, press.duration);
    else
        next();
}

void Learner::onSwitch(const RecordRead &record)
{
    if (m_offered >= 0)
        acceptOffer(false);
    const QString device = m_names.value(record.device, record.device);
    const bool isKnown = std::any_of(m_learnt.begin(), m_learnt.end(), [&](const Learnt &learnt) {
        return learnt.deviceName == device && learnt.switchCode == record.code;
    });
    // A switch that was moved is moved back, and that is not the answer to the next question.
    if (isKnown || m_isFinished)
        return;
    learn(Learnt{command(), device, {}, record.code, false});
    m_say(QStringLiteral("      switch %1 on %2").arg(switchName(record.code), device));
    next();
}

void Learner::learn(const Learnt &learnt)
{
    m_learnt += learnt;
}

void Learner::offerLongPress(int index, qint64 duration)
{
    m_offered = index;
    const Learnt &learnt = m_learnt.at(index);
    m_say(QStringLiteral("      held for %1: report a long press of %2 after %3 ms%4?%5")
              .arg(seconds(duration), keyName(learnt.keys.first()))
              .arg(usualLongPressMs)
              .arg(isRepeated(learnt.command) ? QStringLiteral(", repeating") : QString(),
                   m_acceptsAll ? QStringLiteral(" yes") : QStringLiteral(" [Y/n]")));
    if (m_acceptsAll)
        acceptOffer(true);
}

void Learner::acceptOffer(bool isAccepted)
{
    if (isAccepted)
        m_learnt[m_offered].hasLongPress = true;
    next();
}

void Learner::answer(char key)
{
    if (m_isFinished)
        return;
    const bool isOffer = m_offered >= 0;
    switch (key) {
    case '\n':
    case '\r':
        if (isOffer)
            acceptOffer(true);
        else
            next();
        break;
    case 'y':
    case 'Y':
        if (isOffer)
            acceptOffer(true);
        break;
    case 'n':
    case 'N':
        if (isOffer)
            acceptOffer(false);
        break;
    case 'b':
    case 'B':
        back();
        break;
    case 'q':
    case 'Q':
        finish();
        break;
    default:
        break;
    }
}

int Learner::learntCount() const
{
    return static_cast<int>(m_learnt.size());
}

Profile Learner::profile() const
{
    Profile profile;
    QMap<QString, int> indexes;
    for (const Learnt &learnt : m_learnt) {
        if (!indexes.contains(learnt.deviceName)) {
            indexes.insert(learnt.deviceName, static_cast<int>(profile.devices.size()));
            DeviceProfile device;
            device.name = learnt.deviceName;
            device.handlers += HandlerProfile();
            profile.devices += device;
        }
        HandlerProfile &handler = profile.devices[indexes.value(learnt.deviceName)].handlers[0];
        if (learnt.switchCode >= 0) {
            handler.switches += SwitchMapping{learnt.switchCode, learnt.command};
            handler.positionsAtStart = true;
        } else if (learnt.keys.size() == 2) {
            handler.chords +=
                ChordMapping{learnt.keys.first(), learnt.keys.last(), learnt.command, {}};
        } else {
            KeyMapping key{
                learnt.keys.first(), learnt.command, isUsuallyImmediate(learnt.command), {}, {}};
            if (learnt.hasLongPress) {
                const bool repeats = isRepeated(learnt.command);
                key.longPress = LongPress{repeats ? QList<int>{usualLongPressMs, usualRepeatMs}
                                                  : QList<int>{usualLongPressMs},
                                          repeats};
            }
            handler.keys += key;
        }
    }
    return profile;
}

} // namespace Vorn::Workbench
