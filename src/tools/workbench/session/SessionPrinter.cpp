#include "SessionPrinter.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "KnownDevices.h"
#include "Quoting.h"
#include "Session.h"
#include "SessionTime.h"
#include "TerminalText.h"

#include <linux/input.h>

namespace Vorn::Workbench {

namespace {

constexpr int timeWidth = 9; ///< for 27 hours; longer times need some of the gap
constexpr int timeGap = 2;
constexpr int consequenceIndent = 4; ///< of what the library makes of a record
constexpr int continuationIndent = 4;
constexpr int eventWidth = 22; ///< "CursorPageDown release"
constexpr int minNameWidth = 8;

const char *const reset = "\x1b[0m";
const char *const bold = "\x1b[1m";
const char *const dim = "\x1b[2m";
const char *const red = "\x1b[31m";
const char *const green = "\x1b[32m";
const char *const yellow = "\x1b[33m";
const char *const boldGreen = "\x1b[1;32m";
const char *const boldYellow = "\x1b[1;33m";
const char *const cyan = "\x1b[36m";

QString latencyText(qint64 microseconds)
{
    const QString text = QString::number(static_cast<double>(microseconds) / 1000, 'f', 1);
    return (microseconds < 0 ? QString() : QStringLiteral("+")) + text + QStringLiteral(" ms");
}

QString names(int type, const QVector<int> &codes, const char *separator)
{
    QStringList list;
    for (const int code : codes)
        list += eventCodeName(type, code);
    return list.join(QLatin1String(separator));
}

QString stepText(const DetectorStep &step)
{
    const QString keys = names(EV_KEY, step.keys, " + ");
    switch (step.what) {
    case DetectorStep::What::LongPressDue:
        return QStringLiteral("%1 timed, long press due at %2").arg(keys, sessionSeconds(step.due));
    case DetectorStep::What::LongPressEnded:
        return QStringLiteral("%1 no longer timed").arg(keys);
    case DetectorStep::What::FirstKeyWithdrawn:
        return QStringLiteral("%1 withdrawn").arg(keys);
    case DetectorStep::What::ChordFound:
        return (step.mapped ? QStringLiteral("chord %1") : QStringLiteral("chord %1, no command"))
            .arg(keys);
    case DetectorStep::What::ChordReleased:
        return QStringLiteral("chord %1 released").arg(keys);
    case DetectorStep::What::Forgotten:
        return QStringLiteral("%1 forgotten").arg(keys);
    case DetectorStep::What::Dropped:
        break;
    }
    return QStringLiteral("%1 dropped").arg(keys);
}

/// "KEY_STOP press", for a record or its outcome.
template <typename Record>
QString recordText(const Record &record)
{
    return QStringLiteral("%1 %2").arg(eventCodeName(record.type, record.code),
                                       valueName(record.type, record.value));
}

bool isOutcomeOf(const RecordRead &record, const RecordOutcome &outcome)
{
    return record.device == outcome.device && record.type == outcome.type
        && record.code == outcome.code && record.value == outcome.value;
}

QString stateText(const KeyState &state)
{
    QStringList parts;
    if (state.isDown)
        parts += QStringLiteral("down");
    if (state.isWithdrawn)
        parts += QStringLiteral("withdrawn");
    if (state.isHeld)
        parts += QStringLiteral("held back");
    if (state.isCounting) {
        parts += state.due ? QStringLiteral("long press %1 due at %2")
                                 .arg(QString::number(state.count), sessionSeconds(*state.due))
                           : QStringLiteral("no further long press");
    }
    return eventCodeName(EV_KEY, state.code) + QLatin1Char(' ') + parts.join(QStringLiteral(", "));
}

const char *stateColour(InputEvent::State state)
{
    switch (state) {
    case InputEvent::KeyPressed:
    case InputEvent::SwitchEnabled:
        return boldGreen;
    case InputEvent::KeyLongPress:
        return boldYellow;
    case InputEvent::KeyReleased:
    case InputEvent::SwitchDisabled:
    case InputEvent::NoState:
        break;
    }
    return bold;
}

/// What an entry shows: its text, with a device's name in the middle, which is shortened first.
struct Content
{
    QString before = {};
    QString name = {};
    QString after = {};
    const char *colour = nullptr;
    bool isConsequence = false; ///< of a record
    int nameColumn = 0; ///< where the name begins, if there is room

    bool isEmpty() const { return before.isEmpty() && name.isEmpty() && after.isEmpty(); }
};

class ContentOf
{
public:
    ContentOf(const SessionPrinter::Options &options, const KnownDevices &devices,
              const std::optional<RecordRead> &lastRecord)
        : m_options(options)
        , m_devices(devices)
        , m_lastRecord(lastRecord)
    { }

    Content operator()(const SessionStart &) const { return {}; }

    Content operator()(const DeviceChange &change) const
    {
        const QString name = m_devices.name(change.device);
        return {
            QStringLiteral("%1 %2 ").arg(change.added ? QStringLiteral("+") : QStringLiteral("-"),
                                         KnownDevices::node(change.device)),
            name.isEmpty() ? QStringLiteral("(no name)") : name,
            change.added ? QStringLiteral(" (%1)").arg(busName(change.bus)) : QString(), cyan};
    }

    Content operator()(const RecordRead &record) const
    {
        if (!m_options.records || record.type == EV_SYN)
            return {};
        return {{},
                m_devices.name(record.device),
                marked(record.device) + QLatin1Char(' ') + recordText(record),
                dim};
    }

    // What was published has its own line; why nothing was is worth one.
    Content operator()(const RecordOutcome &outcome) const
    {
        if (!m_options.outcomes || outcome.reason.isEmpty())
            return {};
        const QString reason = printable(outcome.reason);
        const bool isBelowRecord = m_lastRecord && isOutcomeOf(*m_lastRecord, outcome);
        return {isBelowRecord ? reason : recordText(outcome) + QStringLiteral(": ") + reason,
                {},
                {},
                dim,
                true};
    }

    Content operator()(const KeyStates &states) const
    {
        QStringList parts;
        for (const KeyState &state : states.keys)
            parts += stateText(state);
        if (states.isChord)
            parts += QStringLiteral("a chord is in progress");
        if (!states.hasHandler)
            parts += QStringLiteral("no handler for its keys");
        if (parts.isEmpty())
            parts += QStringLiteral("nothing down");
        return {QStringLiteral("state of "), m_devices.name(states.device),
                marked(states.device) + QStringLiteral(": ") + parts.join(QStringLiteral("; ")),
                cyan};
    }

    Content operator()(const DetectorStep &step) const
    {
        if (!m_options.detectors)
            return {};
        return {stepText(step), {}, {}, dim, true};
    }

    Content operator()(const EventPublished &event) const
    {
        Content content{eventText(event), {}, {}, stateColour(event.state), true};
        if (!event.device.isEmpty()) {
            content.before += QStringLiteral("  ");
            content.nameColumn = eventWidth + 2;
            content.name = m_devices.name(event.device);
            content.after = marked(event.device);
        }
        if (!event.codes.isEmpty())
            content.after += QStringLiteral("  ") + names(event.type, event.codes, " + ");
        if (m_options.latency && event.latency)
            content.after += QStringLiteral("  ") + latencyText(*event.latency);
        return content;
    }

    Content operator()(const IdentifierSelected &selected) const
    {
        return {
            QStringLiteral("identifier '%1'").arg(printable(selected.identifier)), {}, {}, cyan};
    }

    Content operator()(const ExpectationChecked &expectation) const
    {
        const QString text = printable(expectation.text);
        if (expectation.met)
            return {QStringLiteral("met: ") + text, {}, {}, green};
        QString failed =
            QStringLiteral("%1:%2: failed: %3")
                .arg(printable(expectation.file), QString::number(expectation.line), text);
        if (!expectation.found.isEmpty())
            failed += QStringLiteral(", but found ") + printable(expectation.found);
        return {failed, {}, {}, red};
    }

    Content operator()(const Remark &remark) const
    {
        return {printable(remark.text), {}, {}, yellow};
    }

private:
    /// The bus is that of the device, unless the profile or the library decided otherwise.
    QString eventText(const EventPublished &event) const
    {
        const QString text =
            QStringLiteral("%1 %2").arg(commandName(event.command), stateWord(event.state));
        const InputEvent::Bus usual = m_devices.bus(event.device).value_or(InputEvent::Bus::NoBus);
        return event.bus == usual ? text : QStringLiteral("%1 (%2)").arg(text, busName(event.bus));
    }

    /// What follows the name of a device to tell it from others.
    QString marked(const QString &device) const
    {
        const QString mark = m_devices.mark(device);
        const bool isApart = !mark.isEmpty() && !m_devices.name(device).isEmpty();
        return isApart ? QLatin1Char(' ') + mark : mark;
    }

    const SessionPrinter::Options &m_options;
    const KnownDevices &m_devices;
    const std::optional<RecordRead> &m_lastRecord;
};

/// The lines of a text, the first one @p room wide. The blanks of a table go first, then the middle
/// of the name; a key or a command is never shortened.
QStringList fitted(const Content &content, int room)
{
    const QString inColumns =
        padded(content.before, content.nameColumn) + content.name + content.after;
    if (textWidth(inColumns) <= room)
        return {inColumns};
    const int nameRoom = room - textWidth(content.before + content.after);
    if (nameRoom >= qMin(minNameWidth, textWidth(content.name)))
        return {content.before + elided(content.name, nameRoom) + content.after};
    return wrapped(content.before + elided(content.name, room / 2) + content.after,
                   room - continuationIndent);
}

} // namespace

SessionPrinter::SessionPrinter(const Options &options)
    : m_options(options)
{ }

// A key that is held back is of interest beside its record only. A device that nothing maps, or a
// wheel, would fill the screen with the same reason.
bool SessionPrinter::isNews(const RecordOutcome &outcome)
{
    QString what = outcome.device + QLatin1Char('\n') + outcome.reason;
    switch (outcome.what) {
    case RecordOutcome::What::Published:
    case RecordOutcome::What::Held:
    case RecordOutcome::What::Chord:
    case RecordOutcome::What::Open:
        return m_options.records;
    case RecordOutcome::What::Dropped:
        return true;
    case RecordOutcome::What::NotTaken:
        // Scan codes accompany every key.
        if (outcome.type == EV_MSC)
            return false;
        what += QLatin1Char('\n') + eventTypeName(outcome.type);
        break;
    case RecordOutcome::What::Unmapped:
        what += QLatin1Char('\n') + eventCodeName(outcome.type, outcome.code);
        Q_FALLTHROUGH();
    case RecordOutcome::What::Unread:
        if (m_options.records)
            return true;
        break;
    }
    const bool isNew = !m_told.contains(what);
    m_told.insert(what);
    return isNew;
}

QString SessionPrinter::line(const SessionEntry &entry)
{
    if (const auto *change = std::get_if<DeviceChange>(&entry.what))
        m_devices.add(*change);
    const auto *outcome = std::get_if<RecordOutcome>(&entry.what);
    if (outcome && m_options.outcomes && !isNews(*outcome))
        return {};

    const Content content = std::visit(ContentOf(m_options, m_devices, m_lastRecord), entry.what);
    if (content.isEmpty())
        return {};
    if (const auto *record = std::get_if<RecordRead>(&entry.what))
        m_lastRecord = *record;

    const QString time = sessionSeconds(entry.time).rightJustified(timeWidth);
    QString start = (QString(m_options.indent, QLatin1Char(' ')) + time + QLatin1Char(' '))
                        .leftJustified(m_options.indent + timeWidth + timeGap);
    if (m_options.records && content.isConsequence)
        start += QString(consequenceIndent, QLatin1Char(' '));
    const QString continued(start.size() + continuationIndent, QLatin1Char(' '));
    QString text;
    const QStringList parts = fitted(content, width - static_cast<int>(start.size()));
    for (const QString &part : parts) {
        const bool isColoured = m_options.coloured && content.colour;
        text += (text.isEmpty() ? start : QLatin1Char('\n') + continued)
            + (isColoured ? QLatin1String(content.colour) + part + QLatin1String(reset) : part);
    }
    return text;
}

} // namespace Vorn::Workbench
