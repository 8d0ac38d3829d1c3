#include "LiveView.h"

#include "Diagnostic.h"
#include "ExitStatus.h"
#include "Interruption.h"
#include "Keyboard.h"
#include "LibraryFacts.h"
#include "NodeInfo.h"
#include "Output.h"
#include "OutputWatch.h"
#include "ProfileFile.h"
#include "ProfileWatcher.h"
#include "Quoting.h"
#include "SessionTime.h"
#include "SessionWriter.h"
#include "SingleKeys.h"
#include "Suggestion.h"
#include "Terminal.h"
#include "TerminalText.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

#include <utility>

#include <unistd.h>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

void complain(const QString &text)
{
    printLine(stderr, QStringLiteral("vorn-input monitor: ") + text);
}

/// Below a session's line, and no wider than one.
void printIndented(const QString &text)
{
    constexpr int indent = 15;
    const QStringList lines = wrapped(printable(text), SessionPrinter::width - indent);
    for (const QString &line : lines)
        printLine(stdout, QString(indent, QLatin1Char(' ')) + line);
}

SessionPrinter::Options textOptions(const MonitorOptions &options)
{
    SessionPrinter::Options text;
    // Without a profile there is nothing but records to see.
    text.records = options.raw || options.profile.isEmpty();
    text.latency = true;
    // Without a profile nothing is mapped, which the hints say better.
    text.outcomes = !options.profile.isEmpty();
    text.coloured = isColoured(options.colour, STDOUT_FILENO);
    return text;
}

} // namespace

LiveView::LiveView(const MonitorOptions &options)
    : m_options(options)
    , m_hasProfile(!options.profile.isEmpty())
    , m_text(textOptions(options))
    , m_log([this](const SessionEntry &entry) { onEntry(entry); })
{ }

int LiveView::prepare()
{
    if (m_hasProfile) {
        const ParsedProfile parsed = openProfile(m_options.profile);
        printDiagnostics(parsed.diagnostics);
        if (hasErrors(parsed.diagnostics))
            return Failure;
        m_profile = parsed.profile;
    }
    if (!m_options.identifier.isNull() && !selectFirst(m_options.identifier))
        return Failure;
    if (!m_options.record.isEmpty()) {
        m_recorder = std::make_unique<Recorder>(
            m_options.record, m_hasProfile ? &m_profile : nullptr, m_options.showText);
        const QString error = m_recorder->open();
        if (!error.isEmpty()) {
            complain(error);
            return Failure;
        }
    }
    return Success;
}

/// @return false, with a line on stderr, if there is no such identifier
bool LiveView::selectFirst(const QString &identifier)
{
    if (!m_hasProfile) {
        complain(QStringLiteral("--id selects one of a profile's identifiers; add --profile FILE"));
        return false;
    }
    const QStringList known = m_profile.identifiers();
    if (!known.contains(identifier)) {
        complain(QStringLiteral("the profile has no identifier %1%2")
                     .arg(quoted(identifier), suggestion(identifier, known)));
        return false;
    }
    m_profile.initial = identifier;
    return true;
}

void LiveView::onEntry(const SessionEntry &entry)
{
    // To a person the devices have been there all the time.
    if (m_isReloading && std::holds_alternative<DeviceChange>(entry.what)) {
        const auto &change = std::get<DeviceChange>(entry.what);
        if (!change.added || m_devicesBefore.value(change.device) == change.name) {
            m_devicesBefore.remove(change.device);
            return;
        }
    }
    if (m_recorder) {
        m_recorder->add(entry);
        endWithTheRecording();
    }
    show(entry);
    // Between the records of a batch the state is of no interest, and not a state that lasts.
    const bool mayChangeState = std::holds_alternative<RecordOutcome>(entry.what)
        || std::holds_alternative<DetectorStep>(entry.what);
    if (m_options.state && mayChangeState && m_devices) {
        QTimer::singleShot(0, m_devices.get(),
                           [devices = m_devices.get()] { devices->logChangedStates(); });
    }
}

// Whoever records a rare fault must not find out at the end that there is nothing of it.
void LiveView::endWithTheRecording()
{
    const QString error = m_recorder->error();
    if (error.isEmpty() || m_status == Failure)
        return;
    complain(QStringLiteral("%1; the recording ends here, and so does the monitor").arg(error));
    m_status = Failure;
    end();
}

void LiveView::show(const SessionEntry &entry)
{
    if (m_options.json) {
        print(stdout, toJsonLine(entry));
    } else {
        const QString line = m_text.line(entry);
        if (!line.isEmpty())
            printColoured(stdout, line);
        const QString identifier = m_devices ? m_devices->identifier() : m_profile.initial;
        const auto hint = m_hints.add(entry, m_hasProfile ? &m_profile : nullptr, identifier);
        if (hint)
            showHint(entry.time, *hint, identifier);
    }
    // A pipe's reader must see it live, too.
    if (!flush(stdout))
        end();
}

// Queued, because the event loop may not have begun.
void LiveView::end()
{
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
}

// The code on lines of its own, so that it can be copied.
void LiveView::showHint(qint64 time, const Hints::Hint &hint, const QString &identifier) const
{
    constexpr int timeWidth = 9;
    QString start = sessionSeconds(time).rightJustified(timeWidth) + QStringLiteral("  ");
    const QString place = m_hasProfile
        ? QStringLiteral(", not in the profile under %1").arg(quoted(identifier))
        : QString();
    const QString text = QStringLiteral("register for %1%2:").arg(hint.device, place);
    const QStringList lines =
        wrapped(printable(text), SessionPrinter::width - static_cast<int>(start.size()));
    for (const QString &line : lines) {
        printLine(stdout, start + line);
        start.fill(QLatin1Char(' '));
    }
    printIndented(hint.registration);
}

/*
 *  profile saved ─── it has errors: the previous one stays in use
 *        │
 *        ▼  m_isReloading
 *  the old product goes without a word
 *  the new one finds the devices ─── shown only if they are new or have another name
 *        │
 *        ▼  queued behind that
 *  devices that come and go are shown again
 */
void LiveView::useProfile(const Profile &profile)
{
    m_isReloading = m_devices != nullptr;
    if (m_devices)
        m_devicesBefore = m_devices->devices();
    m_devices.reset();
    m_devices = std::make_unique<Product>(profile, &m_log);
    QTimer::singleShot(0, m_devices.get(), [this] {
        m_isReloading = false;
        complainOfNodes();
        if (m_devices->devices().isEmpty())
            complain(QStringLiteral("no input device can be read; waiting for one to be plugged in "
                                    "(see: vorn-input devices)"));
    });
}

// What the library never looks at cannot be in the session.
void LiveView::complainOfNodes() const
{
    const QStringList paths = inputNodes();
    for (const QString &path : paths) {
        const QString number = path.mid(path.lastIndexOf(QLatin1Char('t')) + 1);
        if (number.toInt() >= nodeCount) {
            complain(QStringLiteral("%1 is not shown: the library looks at event0 to event%2 only")
                         .arg(path, QString::number(nodeCount - 1)));
        }
    }
}

void LiveView::onProfileChanged(const ParsedProfile &parsed)
{
    printDiagnostics(parsed.diagnostics);
    if (hasErrors(parsed.diagnostics)) {
        m_log.add(Remark{
            QStringLiteral("%1 has errors; keeping the previous profile").arg(m_options.profile)});
        return;
    }
    const QString identifier = m_devices->identifier();
    m_profile = parsed.profile;
    if (m_profile.identifiers().contains(identifier))
        m_profile.initial = identifier;
    m_hints = Hints();
    m_log.add(Remark{QStringLiteral("%1 reloaded").arg(m_options.profile)});
    useProfile(m_profile);
}

void LiveView::onProfilePresence(const QString &problem)
{
    m_log.add(Remark{problem.isEmpty() ? QStringLiteral("%1 is back").arg(m_options.profile)
                                       : QStringLiteral("%1 %2; keeping the previous profile")
                                             .arg(m_options.profile, problem)});
}

void LiveView::onKey(char key)
{
    const QStringList identifiers = m_profile.identifiers();
    const int index = key - '1';
    if (index >= 0 && index < identifiers.size() && key <= '9') {
        m_devices->selectHandler(identifiers.at(index));
    } else if (key == 'r') {
        m_text.setRecords(!m_text.records());
    } else if (key == 's') {
        m_devices->logStates();
    } else if (key == 'q') {
        QCoreApplication::quit();
    } else if (key == '?' || key == 'h') {
        showHelp();
    }
}

void LiveView::showHelp()
{
    QStringList items{QStringLiteral("q: quit"), QStringLiteral("r: show or hide records"),
                      QStringLiteral("s: state of the keys"), QStringLiteral("?: this help")};
    const QStringList identifiers = m_profile.identifiers();
    for (int i = 0; i < identifiers.size() && i < 9; ++i)
        items += QStringLiteral("%1: select '%2'").arg(i + 1).arg(printable(identifiers.at(i)));
    if (!SingleKeys::areOn())
        items += QStringLiteral("(each with Enter)");
    QString line = items.takeFirst();
    for (const QString &item : std::as_const(items)) {
        const QString longer = line + QStringLiteral("   ") + item;
        if (textWidth(longer) > SessionPrinter::width)
            printLine(stderr, line);
        line = textWidth(longer) > SessionPrinter::width ? item : longer;
    }
    printLine(stderr, line);
}

int LiveView::run()
{
    const Interruption interruption([] { QCoreApplication::quit(); });
    const OutputWatch output([] { QCoreApplication::quit(); });
    std::unique_ptr<Keyboard> keyboard;
    if (isTerminal(STDIN_FILENO) && !m_options.json) {
        keyboard = std::make_unique<Keyboard>(STDOUT_FILENO, [this](char key) { onKey(key); });
        showHelp();
    }
    std::unique_ptr<ProfileWatcher> watcher;
    // A pipe has been read to its end, and does not change.
    if (QFileInfo(m_options.profile).isFile()) {
        watcher = std::make_unique<ProfileWatcher>(
            m_options.profile, [this](const ParsedProfile &parsed) { onProfileChanged(parsed); },
            [this](const QString &problem) { onProfilePresence(problem); });
    }
    m_log.add(SessionStart{QStringLiteral("monitor"), m_options.profile, m_log.wallClockAtStart()});
    useProfile(m_profile);
    if (m_options.duration > 0) {
        // For the whole view: the devices go whenever the profile is reloaded.
        QTimer::singleShot(static_cast<int>(m_options.duration * 1000), Qt::PreciseTimer,
                           QCoreApplication::instance(), &QCoreApplication::quit);
    }
    QCoreApplication::exec();
    // Its devices go into the recording as long as that is open.
    m_devices.reset();
    if (m_recorder) {
        m_recorder->close();
        complain(m_recorder->summary());
    }
    return m_status;
}

} // namespace Vorn::Tools
