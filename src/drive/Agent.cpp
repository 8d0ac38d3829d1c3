#include "Agent.h"

#include "Input.h"
#include "LibraryCalls.h"
#include "SessionWriter.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <chrono>

namespace Vorn::Drive {

using namespace Workbench;

namespace {

qint64 monotonicClock()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

constexpr int quietPollsOfIdleLoop = 5;

/// What the library asks the kernel for, with its terminator.
constexpr int nameSize = 255;

} // namespace

Agent::Agent(int descriptor)
    : m_socket(descriptor)
{ }

void Agent::start()
{
    const std::optional<QByteArray> line = m_socket.waitForLine();
    const std::optional<Operation> first = line ? operationFrom(*line) : std::nullopt;
    const auto *operation = first ? std::get_if<Operations::Begin>(&*first) : nullptr;
    // Whoever sent something else is no driver.
    if (operation)
        begin(*operation);
}

void Agent::begin(const Operations::Begin &operation)
{
    Answer hello;
    if (operation.version != QLatin1String(VORN_INPUT_VERSION))
        hello.error = QStringLiteral("the preloaded library is of version %1, not %2; install them "
                                     "together")
                          .arg(QStringLiteral(VORN_INPUT_VERSION), operation.version);
    else
        hello.error = watchLibrary();
    if (!hello.error.isEmpty()) {
        m_socket.send(toLine(hello));
        return;
    }
    if (operation.virtualTime) {
        // As in a simulation: the order of keys that are due at the same tick.
        qSetGlobalQHashSeed(0);
        m_clock = std::make_unique<Sim::VirtualClock>(operation.wallClock);
    }
    m_nodes = std::make_unique<SimulatedNodes>();
    // At once: of a program that crashes, the last entries are the interesting ones.
    m_log = std::make_unique<SessionLog>(
        [this](const SessionEntry &entry) { m_socket.send(toJsonLine(entry)); },
        SessionLog::Holding::No);
    m_observer = std::make_unique<ProgramObserver>(
        m_log.get(), [this](const QString &path) { return deviceName(path); });
    // NOLINTNEXTLINE(modernize-make-unique): that it listens is private.
    m_watch.reset(new LoopWatch(m_socket.descriptor(), this));
    auto *notifier = new QSocketNotifier(m_socket.descriptor(), QSocketNotifier::Read, this);
    Vorn::connect(notifier, &QSocketNotifier::activated, this, [this] { readOperations(); });
    hello.folder = m_nodes->folder();
    hello.wallClock = m_log->wallClockAtStart();
    hello.monotonicClock = monotonicClock() - m_log->now();
    answer(hello);
}

void Agent::readOperations()
{
    while (const std::optional<QByteArray> line = m_socket.takeLine()) {
        if (const std::optional<Operation> operation = operationFrom(*line))
            run(*operation);
        else
            answer(Answer{0, -1, {}, {}, 0, 0, QStringLiteral("an operation without a meaning")});
    }
    // Without its driver the program would go on for ever, with devices that nobody moves.
    if (!m_socket.isOpen() && !m_hasEnded)
        end();
}

void Agent::run(const Operation &operation)
{
    m_quietPolls = 0;
    std::visit([this](const auto &kind) { (*this)(kind); }, operation);
}

void Agent::answer(const Answer &given)
{
    Answer stamped = given;
    stamped.time = m_log->now();
    m_socket.send(toLine(stamped));
}

void Agent::end()
{
    m_hasEnded = true;
    const QList<QSocketNotifier *> notifiers = findChildren<QSocketNotifier *>();
    for (QSocketNotifier *notifier : notifiers)
        notifier->setEnabled(false);
    QCoreApplication::quit();
}

void Agent::onIdle()
{
    if (m_hasEnded)
        return;
    m_observer->lookForDevices();
    if (!m_pending)
        return;
    Answer given;
    if (std::holds_alternative<Operations::AwaitManager>(*m_pending)) {
        if (!m_observer->hasLooked() && !m_observer->hasForeignManager())
            return;
        m_isManaged = true;
        if (!m_observer->hasLooked())
            given.error = QStringLiteral("its device manager works in another thread than its "
                                         "QCoreApplication");
    } else if (std::holds_alternative<Operations::Wait>(*m_pending) && !isWaitOver()) {
        return;
    }
    m_pending.reset();
    answer(given);
}

// A loop that is never idle must not stop real time. What the last operation led to is done when
// nothing was ready for some rounds; virtual time stands still for such a loop, whatever is said.
void Agent::onPoll(bool isReady)
{
    m_quietPolls = isReady ? 0 : m_quietPolls + 1;
    if (!m_clock && m_quietPolls >= quietPollsOfIdleLoop)
        onIdle();
}

bool Agent::isTimeHeld() const
{
    return m_isManaged && !m_hasEnded && !m_pending;
}

qint64 Agent::limit() const
{
    const auto *wait = m_pending ? std::get_if<Operations::Wait>(&*m_pending) : nullptr;
    if (!wait || m_hasEnded)
        return -1;
    return qMax<qint64>(0, wait->until * 1000 - m_log->now()) * 1000;
}

bool Agent::isWaitOver() const
{
    const auto &wait = std::get<Operations::Wait>(*m_pending);
    return m_log->now() >= wait.until * 1000
        || (wait.events >= 0 && m_observer->events() > wait.events);
}

void Agent::operator()(const Operations::Begin &)
{
    answer(Answer{0, -1, {}, {}, 0, 0, QStringLiteral("the session has begun already")});
}

void Agent::operator()(const Operations::AwaitManager &operation)
{
    m_pending = operation;
}

void Agent::operator()(const Operations::Settle &operation)
{
    m_pending = operation;
}

void Agent::operator()(const Operations::Wait &operation)
{
    m_pending = operation;
}

void Agent::operator()(const Operations::Plug &operation)
{
    m_names.insert(operation.node, operation.device.name);
    m_nodes->plug(operation.node, operation.device);
    answer();
}

void Agent::operator()(const Operations::Unplug &operation)
{
    m_nodes->unplug(operation.node, operation.losingRecords);
    answer();
}

void Agent::operator()(const Operations::Replace &operation)
{
    m_names.insert(operation.node, operation.device.name);
    m_nodes->replace(operation.node, operation.device);
    answer();
}

void Agent::operator()(const Operations::SetMode &operation)
{
    m_nodes->setMode(operation.node, static_cast<mode_t>(operation.mode));
    answer();
}

void Agent::operator()(const Operations::SetInputDirectory &operation)
{
    m_nodes->setInputDirectory(operation.exists);
    answer();
}

void Agent::operator()(const Operations::ChangeKeys &operation)
{
    Answer given;
    given.refused =
        m_nodes->changeKeys(operation.node, operation.codes, operation.value).value_or(-1);
    answer(given);
}

void Agent::operator()(const Operations::ReleaseKeys &operation)
{
    m_nodes->releaseKeys(operation.node);
    answer();
}

void Agent::operator()(const Operations::SetSwitch &operation)
{
    Answer given;
    if (!m_nodes->setSwitch(operation.node, operation.code, operation.on))
        given.refused = operation.code;
    answer(given);
}

void Agent::operator()(const Operations::Send &operation)
{
    m_nodes->send(operation.node, operation.records, operation.offset);
    answer();
}

void Agent::operator()(const Operations::StepWallClock &operation)
{
    if (m_clock)
        m_clock->stepWallClock(std::chrono::milliseconds(operation.delta));
    else
        m_watch->stepWallClock(operation.delta);
    answer();
}

void Agent::operator()(const Operations::Select &operation)
{
    m_observer->select(operation.identifier);
    answer();
}

void Agent::operator()(const Operations::AskIdentifier &)
{
    Answer given;
    given.identifier = m_observer->identifier();
    answer(given);
}

void Agent::operator()(const Operations::End &)
{
    answer();
    end();
}

QString Agent::deviceName(const QString &path) const
{
    const int node = path.section(QStringLiteral("event"), -1).toInt();
    return QString::fromUtf8(m_names.value(node).left(nameSize - 1));
}

} // namespace Vorn::Drive
