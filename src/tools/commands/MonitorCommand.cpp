#include "Commands.h"
#include "Diagnostic.h"
#include "Hints.h"
#include "Interruption.h"
#include "Keyboard.h"
#include "Product.h"
#include "ProfileReader.h"
#include "ProfileWatcher.h"
#include "Recorder.h"
#include "Session.h"
#include "SessionLog.h"
#include "SessionPrinter.h"
#include "SessionWriter.h"
#include "Suggestion.h"
#include "Terminal.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <cstdio>
#include <memory>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

void complain(const QString &text)
{
    std::fprintf(stderr, "vorn-input monitor: %s\n", qPrintable(text));
}

void print(const Diagnostics &diagnostics)
{
    for (const Diagnostic &diagnostic : diagnostics)
        std::fprintf(stderr, "%s\n", qPrintable(diagnostic.toString()));
}

/// The live view: one session, through as many versions of the profile as there are.
class LiveView
{
public:
    explicit LiveView(const MonitorOptions &options);

    /// @return the exit status, other than Success if there is nothing to run
    int prepare();
    int run();

private:
    void onEntry(const SessionEntry &entry);
    void show(const SessionEntry &entry);
    void onKey(char key);
    void onProfileChanged(const ParsedProfile &parsed);
    void useProfile(const Profile &profile);
    void showHelp();

    const MonitorOptions m_options;
    const bool m_hasProfile;
    Profile m_profile;
    SessionPrinter m_text;
    Hints m_hints;
    std::unique_ptr<Recorder> m_recorder;
    bool m_isReloading = false;
    SessionLog m_log;
    std::unique_ptr<Product> m_devices;
    QMap<QString, QString> m_devicesBefore;
};

SessionPrinter::Options textOptions(const MonitorOptions &options)
{
    SessionPrinter::Options text;
    // Without a profile there is nothing but records to see.
    text.records = options.raw || options.profile.isEmpty();
    text.latency = true;
    text.coloured = isColoured(options.colour, 1);
    return text;
}

LiveView::LiveView(const MonitorOptions &options)
    : m_options(options)
    , m_hasProfile(!options.profile.isEmpty())
    , m_text(textOptions(options))
    , m_log([this](const SessionEntry &entry) { onEntry(entry); })
{ }

int LiveView::prepare()
{
    if (m_hasProfile) {
        const ParsedProfile parsed = loadProfile(m_options.profile);
        print(parsed.diagnostics);
        if (hasErrors(parsed.diagnostics))
            return Failure;
        m_profile = parsed.profile;
    }
    if (!m_options.identifier.isEmpty())
        m_profile.initial = m_options.identifier;
    if (m_hasProfile && !m_profile.identifiers().contains(m_profile.initial)) {
        complain(
            QStringLiteral("the profile has no handler under '%1'%2")
                .arg(m_profile.initial, suggestion(m_profile.initial, m_profile.identifiers())));
    }
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

void LiveView::onEntry(const SessionEntry &entry)
{
    // Under a new version of the profile the same devices come again, which is no news.
    if (m_isReloading && std::holds_alternative<DeviceChange>(entry.what)) {
        const auto &change = std::get<DeviceChange>(entry.what);
        if (!change.added || m_devicesBefore.value(change.device) == change.name) {
            m_devicesBefore.remove(change.device);
            return;
        }
    }
    if (m_recorder)
        m_recorder->add(entry);
    show(entry);
}

void LiveView::show(const SessionEntry &entry)
{
    if (m_options.json) {
        const QByteArray line = toJsonLine(entry);
        std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    } else {
        const QString line = m_text.line(entry);
        if (!line.isEmpty())
            std::fprintf(stdout, "%s\n", line.toUtf8().constData());
        const QString identifier = m_devices ? m_devices->identifier() : m_profile.initial;
        for (const QString &hint :
             m_hints.add(entry, m_hasProfile ? &m_profile : nullptr, identifier)) {
            const QString place = m_hasProfile
                ? QStringLiteral(" (not in the profile under '%1')").arg(identifier)
                : QString();
            std::fprintf(stdout, "             register: %s%s\n", hint.toUtf8().constData(),
                         qPrintable(place));
        }
    }
    // Whoever reads a pipe is to be in time, too.
    std::fflush(stdout);
}

void LiveView::useProfile(const Profile &profile)
{
    m_isReloading = m_devices != nullptr;
    if (m_devices)
        m_devicesBefore = m_devices->devices();
    m_devices.reset();
    m_devices = std::make_unique<Product>(profile, &m_log);
    // Queued behind the library's look at the devices.
    QTimer::singleShot(0, m_devices.get(), [this] {
        m_isReloading = false;
        if (m_devices->devices().isEmpty())
            complain(QStringLiteral("no input device can be read; waiting for one to be plugged in "
                                    "(see: vorn-input devices)"));
    });
}

void LiveView::onProfileChanged(const ParsedProfile &parsed)
{
    print(parsed.diagnostics);
    if (hasErrors(parsed.diagnostics)) {
        m_log.add(Remark{
            QStringLiteral("%1 has mistakes, the map stays as it was").arg(m_options.profile)});
        return;
    }
    const QString identifier = m_devices->identifier();
    m_profile = parsed.profile;
    if (m_profile.identifiers().contains(identifier))
        m_profile.initial = identifier;
    m_hints = Hints();
    m_log.add(Remark{QStringLiteral("%1 was loaded again").arg(m_options.profile)});
    useProfile(m_profile);
}

void LiveView::onKey(char key)
{
    const QStringList identifiers = m_profile.identifiers();
    const int index = key - '1';
    if (index >= 0 && index < identifiers.size() && key <= '9') {
        m_devices->select(identifiers.at(index));
    } else if (key == 'r') {
        m_text.setRecords(!m_text.records());
    } else if (key == 'q') {
        QCoreApplication::quit();
    } else if (key == '?' || key == 'h') {
        showHelp();
    }
}

void LiveView::showHelp()
{
    std::fputs("q: quit   r: records on or off   ?: this help", stderr);
    const QStringList identifiers = m_profile.identifiers();
    for (int i = 0; i < identifiers.size() && i < 9; ++i)
        std::fprintf(stderr, "   %d: select '%s'", i + 1, qPrintable(identifiers.at(i)));
    std::fputs("\n", stderr);
}

int LiveView::run()
{
    const Interruption interruption([] { QCoreApplication::quit(); });
    std::unique_ptr<Keyboard> keyboard;
    if (isTerminal(0) && !m_options.json) {
        keyboard = std::make_unique<Keyboard>([this](char key) { onKey(key); });
        showHelp();
    }
    std::unique_ptr<ProfileWatcher> watcher;
    if (m_hasProfile) {
        watcher = std::make_unique<ProfileWatcher>(
            m_options.profile, [this](const ParsedProfile &parsed) { onProfileChanged(parsed); });
    }
    m_log.add(SessionStart{QStringLiteral("monitor"), m_options.profile, m_log.wallClockAtStart()});
    useProfile(m_profile);
    if (m_options.duration > 0) {
        QTimer::singleShot(static_cast<int>(m_options.duration * 1000), Qt::PreciseTimer,
                           m_devices.get(), &QCoreApplication::quit);
    }
    QCoreApplication::exec();
    m_devices.reset();
    if (m_recorder) {
        const QString error = m_recorder->close();
        if (!error.isEmpty()) {
            complain(error);
            return Failure;
        }
    }
    return Success;
}

} // namespace

int monitor(const MonitorOptions &options)
{
    LiveView view(options);
    const int status = view.prepare();
    return status == Success ? view.run() : status;
}

} // namespace Vorn::Tools
