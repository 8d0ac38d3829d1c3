#include "SessionPrinter.h"

#include "BusNames.h"
#include "EventNames.h"
#include "Quoting.h"
#include "Session.h"

#include <QFileInfo>

#include <linux/input.h>

namespace Vorn::Workbench {

namespace {

constexpr int timeWidth = 9;
constexpr int recordWidth = 34;

const char *const reset = "\x1b[0m";
const char *const bold = "\x1b[1m";
const char *const dim = "\x1b[2m";
const char *const red = "\x1b[31m";
const char *const green = "\x1b[32m";
const char *const yellow = "\x1b[33m";
const char *const boldGreen = "\x1b[1;32m";
const char *const boldYellow = "\x1b[1;33m";
const char *const cyan = "\x1b[36m";

/// Truncated rather than rounded: something 0.4 ms before 1.000 must not appear to be at 1.000.
QString seconds(qint64 microseconds)
{
    const bool isNegative = microseconds < 0;
    const qint64 milliseconds = qAbs(microseconds / 1000);
    return QStringLiteral("%1%2.%3")
        .arg(isNegative && milliseconds > 0 ? QStringLiteral("-") : QString())
        .arg(milliseconds / 1000)
        .arg(milliseconds % 1000, 3, 10, QLatin1Char('0'));
}

QString latencyText(qint64 microseconds)
{
    const QString text = QString::number(static_cast<double>(microseconds) / 1000, 'f', 1);
    return (microseconds < 0 ? QString() : QStringLiteral("+")) + text + QStringLiteral(" ms");
}

QString cut(const QString &text, int width)
{
    return text.size() <= width ? text : text.left(width - 1) + QChar(0x2026);
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
        return QStringLiteral("%1 timed, long press due at %2").arg(keys, seconds(step.due));
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

QString outcomeText(const RecordOutcome &outcome)
{
    return QStringLiteral("%1 %2: ").arg(eventCodeName(outcome.type, outcome.code),
                                         valueName(outcome.type, outcome.value))
        + printable(outcome.reason);
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
                                 .arg(QString::number(state.count), seconds(*state.due))
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

/// An entry's text in either column, and its colour on a terminal.
struct Cells
{
    QString left;
    QString right;
    const char *colour = nullptr;
};

class CellsOf
{
public:
    CellsOf(const SessionPrinter::Options &options, const QHash<QString, QString> &names)
        : m_options(options)
        , m_names(names)
    { }

    Cells operator()(const SessionStart &) const { return {}; }

    Cells operator()(const DeviceChange &change) const
    {
        QString text = QStringLiteral("%1 %2 %3")
                           .arg(change.added ? QStringLiteral("+") : QStringLiteral("-"),
                                printable(node(change.device)), printable(change.name));
        if (change.added)
            text += QStringLiteral(" (%1)").arg(busName(change.bus));
        return {{}, text, cyan};
    }

    Cells operator()(const RecordRead &record) const
    {
        if (!m_options.records || record.type == EV_SYN)
            return {};
        const QString what = QStringLiteral(" %1 %2").arg(eventCodeName(record.type, record.code),
                                                          valueName(record.type, record.value));
        // The key matters more than the device's name, which is shortened to fit.
        const int room = qMax(1, recordWidth - what.size());
        return {cut(name(record.device), room) + what, {}, dim};
    }

    // What was published has its own line; why nothing was is worth one.
    Cells operator()(const RecordOutcome &outcome) const
    {
        if (!m_options.outcomes || outcome.reason.isEmpty())
            return {};
        return {{}, outcomeText(outcome), dim};
    }

    Cells operator()(const KeyStates &states) const
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
        return {{},
                QStringLiteral("state of %1: %2")
                    .arg(name(states.device), parts.join(QStringLiteral("; "))),
                cyan};
    }

    Cells operator()(const DetectorStep &step) const
    {
        if (!m_options.detectors)
            return {};
        return {{}, stepText(step), dim};
    }

    Cells operator()(const EventPublished &event) const
    {
        QStringList parts{InputEvent(event.command, event.state, event.bus).toString()};
        if (!event.device.isEmpty())
            parts += name(event.device);
        if (!event.codes.isEmpty())
            parts += names(event.type, event.codes, " + ");
        if (m_options.latency && event.latency)
            parts += latencyText(*event.latency);
        return {{}, parts.join(QStringLiteral("  ")), stateColour(event.state)};
    }

    Cells operator()(const IdentifierSelected &selected) const
    {
        return {{}, QStringLiteral("identifier '%1'").arg(printable(selected.identifier)), cyan};
    }

    Cells operator()(const ExpectationChecked &expectation) const
    {
        const QString text = printable(expectation.text);
        if (expectation.met)
            return {{}, QStringLiteral("met: ") + text, green};
        QString failed =
            QStringLiteral("%1:%2: failed: %3")
                .arg(printable(expectation.file), QString::number(expectation.line), text);
        if (!expectation.found.isEmpty())
            failed += QStringLiteral(", but found ") + printable(expectation.found);
        return {{}, failed, red};
    }

    Cells operator()(const Remark &remark) const { return {{}, printable(remark.text), yellow}; }

private:
    static QString node(const QString &device) { return device.section(QLatin1Char('/'), -1); }

    QString name(const QString &device) const
    {
        const QString known = m_names.value(device);
        return known.isEmpty() ? QStringLiteral("(%1)").arg(printable(node(device)))
                               : printable(known);
    }

    const SessionPrinter::Options &m_options;
    const QHash<QString, QString> &m_names;
};

} // namespace

SessionPrinter::SessionPrinter(const Options &options)
    : m_options(options)
{ }

QString SessionPrinter::line(const SessionEntry &entry)
{
    if (const auto *change = std::get_if<DeviceChange>(&entry.what))
        m_names.insert(change->device, change->name);

    const Cells cells = std::visit(CellsOf(m_options, m_names), entry.what);
    if (cells.left.isEmpty() && cells.right.isEmpty())
        return {};

    QString text = m_options.records ? cells.left.leftJustified(recordWidth) + QStringLiteral(" │")
                                     : QString();
    if (!cells.right.isEmpty())
        text += (m_options.records ? QStringLiteral(" ") : QString()) + cells.right;
    if (m_options.coloured && cells.colour)
        text = QLatin1String(cells.colour) + text + QLatin1String(reset);
    return QString(m_options.indent, QLatin1Char(' '))
        + seconds(entry.time).rightJustified(timeWidth) + QStringLiteral("  ") + text;
}

} // namespace Vorn::Workbench
