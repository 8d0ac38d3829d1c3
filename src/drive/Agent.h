#ifndef VORN_DRIVE_AGENT_H
#define VORN_DRIVE_AGENT_H

#include "AgentSocket.h"
#include "LoopWatch.h"
#include "Operation.h"
#include "ProgramObserver.h"
#include "SessionLog.h"
#include "SimulatedNodes.h"
#include "VirtualClock.h"

#include <QHash>
#include <QObject>

#include <memory>
#include <optional>

namespace Vorn::Drive {

/// Does in a program what the driver says, inside the program's own event loop, and tells what
/// happens. It decides nothing.
class Agent : public QObject, private LoopWatch::Listener
{
public:
    /// @param descriptor the socket to the driver
    explicit Agent(int descriptor);

    /// Takes the first operation and makes the devices and the clock. To be called when there is a
    /// QCoreApplication.
    void start();

private:
    void begin(const Operations::Begin &operation);
    void readOperations();
    void run(const Operation &operation);
    void answer(const Answer &given = {});
    void end();

    void onIdle() override;
    void onPoll(bool isReady) override;
    bool isTimeHeld() const override;
    qint64 limit() const override;
    bool isWaitOver() const;

    void operator()(const Operations::Begin &operation);
    void operator()(const Operations::AwaitManager &operation);
    void operator()(const Operations::Settle &operation);
    void operator()(const Operations::Wait &operation);
    void operator()(const Operations::Plug &operation);
    void operator()(const Operations::Unplug &operation);
    void operator()(const Operations::Replace &operation);
    void operator()(const Operations::SetMode &operation);
    void operator()(const Operations::SetInputDirectory &operation);
    void operator()(const Operations::ChangeKeys &operation);
    void operator()(const Operations::ReleaseKeys &operation);
    void operator()(const Operations::SetSwitch &operation);
    void operator()(const Operations::Send &operation);
    void operator()(const Operations::StepWallClock &operation);
    void operator()(const Operations::Select &operation);
    void operator()(const Operations::AskIdentifier &operation);
    void operator()(const Operations::End &operation);

    QString deviceName(const QString &path) const;

    AgentSocket m_socket;
    std::unique_ptr<Sim::VirtualClock> m_clock; ///< null in real time
    std::unique_ptr<Workbench::SimulatedNodes> m_nodes;
    std::unique_ptr<Workbench::SessionLog> m_log;
    std::unique_ptr<ProgramObserver> m_observer;
    std::unique_ptr<LoopWatch> m_watch;
    QHash<int, QByteArray> m_names; ///< of devices, by node
    /// That waits for the loop to be idle, or for a time.
    std::optional<Operation> m_pending;
    int m_quietPolls = 0; ///< in a row, of a loop that is not idle
    bool m_isManaged = false; ///< the scenario runs
    bool m_hasEnded = false;
};

} // namespace Vorn::Drive

#endif
