#include "DrivenBench.h"

#include "Diagnostic.h"
#include "Durations.h"
#include "SessionReader.h"

#include <QDeadlineTimer>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

namespace Vorn::Workbench {

using namespace Drive;

namespace {

qint64 monotonicClock()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

} // namespace

DrivenBench::DrivenBench(ProgramRun *program, const Settings &settings, SessionLog::Sink sink)
    : m_program(program)
    , m_settings(settings)
    , m_sink(std::move(sink))
{ }

void DrivenBench::begin(const LoadedScenario &loaded)
{
    m_phase = QStringLiteral("has made no QCoreApplication");
    const Answer hello =
        ask(Operations::Begin{m_settings.version, m_settings.virtualTime, loaded.scenario.start});
    if (!m_failure.isEmpty())
        return;
    m_folder = hello.folder;
    m_start = hello.monotonicClock;
    SessionStart start;
    start.source = loaded.source;
    start.profile = QFileInfo(loaded.profileFile).fileName();
    start.wallClock = hello.wallClock;
    m_sink({0, start});
    m_phase = QStringLiteral("has made no device manager of the library's, or has not come to "
                             "its event loop,");
    ask(Operations::AwaitManager());
    m_phase.clear();
}

void DrivenBench::end()
{
    if (m_failure.isEmpty())
        ask(Operations::End());
}

// In virtual time the program's clock stands still while it is not asked.
qint64 DrivenBench::now() const
{
    return (m_settings.virtualTime ? m_time : monotonicClock() - m_start) / 1000;
}

void DrivenBench::settle()
{
    ask(Operations::Settle());
}

void DrivenBench::runUntil(qint64 end)
{
    wait(end, -1);
}

void DrivenBench::runUntil(qint64 end, const Condition &condition)
{
    while (m_failure.isEmpty() && !condition() && now() < end)
        wait(end, m_events);
}

void DrivenBench::wait(qint64 end, qint64 events)
{
    const qint64 patience = m_settings.virtualTime ? 0 : std::max<qint64>(0, end - now());
    ask(Operations::Wait{end, events}, patience);
}

void DrivenBench::plug(int node, const Sim::DeviceDescription &device)
{
    ask(Operations::Plug{node, device});
}

void DrivenBench::unplug(int node, bool losingRecords)
{
    ask(Operations::Unplug{node, losingRecords});
}

void DrivenBench::replace(int node, const Sim::DeviceDescription &device)
{
    ask(Operations::Replace{node, device});
}

void DrivenBench::setMode(int node, mode_t mode)
{
    ask(Operations::SetMode{node, static_cast<int>(mode)});
}

void DrivenBench::setInputDirectory(bool exists)
{
    ask(Operations::SetInputDirectory{exists});
}

std::optional<int> DrivenBench::changeKeys(int node, const QVector<int> &codes, int value)
{
    const Answer answer = ask(Operations::ChangeKeys{node, codes, value});
    return answer.refused < 0 ? std::nullopt : std::make_optional(answer.refused);
}

void DrivenBench::releaseKeys(int node)
{
    ask(Operations::ReleaseKeys{node});
}

bool DrivenBench::setSwitch(int node, int code, bool on)
{
    return ask(Operations::SetSwitch{node, code, on}).refused < 0;
}

void DrivenBench::send(int node, const QVector<RecordedEvent> &records, qint64 offset)
{
    ask(Operations::Send{node, records, offset});
}

void DrivenBench::stepWallClock(qint64 delta)
{
    ask(Operations::StepWallClock{delta});
}

void DrivenBench::select(const QString &identifier)
{
    ask(Operations::Select{identifier});
}

QString DrivenBench::identifier()
{
    return ask(Operations::AskIdentifier()).identifier;
}

/// @param patience ms that it may take beyond the usual
Answer DrivenBench::ask(const Operation &operation, qint64 patience)
{
    if (!m_failure.isEmpty())
        return {};
    sendLine(toLine(operation));
    const std::optional<Answer> answer = waitForAnswer(patience + m_settings.timeout);
    if (!answer)
        return {};
    m_time = std::max(m_time, answer->time);
    if (!answer->error.isEmpty())
        fail(QStringLiteral("the program cannot be driven: ") + answer->error);
    return *answer;
}

void DrivenBench::sendLine(const QByteArray &line)
{
    const QDeadlineTimer deadline(m_settings.timeout);
    int sent = 0;
    while (sent < line.size()) {
        const ssize_t count = ::send(m_program->socket(), line.constData() + sent,
                                     static_cast<std::size_t>(line.size() - sent), MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<int>(count);
        } else if (errno == EAGAIN && !deadline.hasExpired()) {
            pollfd socket{m_program->socket(), POLLOUT, 0};
            ::poll(&socket, 1, 100);
        } else if (errno != EINTR) {
            // It has gone. What it said last is still to be read, and so is how it ended.
            return;
        }
    }
}

std::optional<Answer> DrivenBench::waitForAnswer(qint64 patience)
{
    m_answer.reset();
    const QDeadlineTimer deadline(patience);
    while (m_failure.isEmpty() && !m_answer) {
        const qint64 left =
            std::min<qint64>(deadline.remainingTime(), std::numeric_limits<int>::max());
        const ProgramRun::Ready ready = m_program->wait(static_cast<int>(left));
        if (ready == ProgramRun::Ready::Socket)
            receive();
        else
            fail(whyThereIsNoAnswer(ready));
    }
    return m_answer;
}

QString DrivenBench::whyThereIsNoAnswer(ProgramRun::Ready ready)
{
    if (ready == ProgramRun::Ready::Interrupted)
        return QStringLiteral("interrupted");
    if (ready != ProgramRun::Ready::TimedOut)
        return howItEnded();
    const QString timeout = durationText(m_settings.timeout);
    return m_phase.isEmpty()
        ? QStringLiteral("the program has not answered for %1: its event loop hangs or is never "
                         "idle (--timeout)")
              .arg(timeout)
        : QStringLiteral("the program %1 within %2 (--timeout)").arg(m_phase, timeout);
}

void DrivenBench::receive()
{
    char buffer[16 * 1024];
    const ssize_t count = ::recv(m_program->socket(), buffer, sizeof buffer, MSG_DONTWAIT);
    if (count <= 0)
        return;
    m_received.append(buffer, static_cast<int>(count));
    QByteArray::size_type begin = 0;
    for (auto end = m_received.indexOf('\n'); end >= 0; end = m_received.indexOf('\n', begin)) {
        take(m_received.mid(begin, end + 1 - begin));
        begin = end + 1;
    }
    m_received.remove(0, begin);
}

void DrivenBench::take(const QByteArray &line)
{
    if (const std::optional<Answer> answer = answerFrom(line)) {
        m_answer = answer;
        return;
    }
    const ParsedSession parsed = parseSession(line, QStringLiteral("agent"));
    if (parsed.entries.size() != 1)
        fail(QStringLiteral("the program sends something that is no entry of a session"));
    for (const SessionEntry &entry : parsed.entries) {
        m_time = std::max(m_time, entry.time);
        m_events += std::holds_alternative<EventPublished>(entry.what) ? 1 : 0;
        m_sink(entry);
    }
}

void DrivenBench::fail(const QString &failure)
{
    if (m_failure.isEmpty())
        m_failure = failure;
}

QString DrivenBench::howItEnded()
{
    const QString before =
        m_phase.isEmpty() ? QString() : QStringLiteral(" before it could be driven");
    return m_program->isRunning()
        ? QStringLiteral("the program has closed its connection%1, but goes on").arg(before)
        : QStringLiteral("the program %1%2").arg(m_program->ending(), before);
}

} // namespace Vorn::Workbench
