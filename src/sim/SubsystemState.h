#ifndef VORN_SIM_SUBSYSTEMSTATE_H
#define VORN_SIM_SUBSYSTEMSTATE_H

#include "CallLog.h"
#include "ClientTable.h"
#include "InputDirectory.h"
#include "InputSubsystem.h"
#include "NodeMap.h"
#include "ServedCalls.h"

#include <map>
#include <memory>
#include <mutex>

namespace Vorn::Sim {

class NodeState;

/// The parts of a subsystem, and the process's calls connected to them for as long as it lives.
class SubsystemState
{
public:
    explicit SubsystemState(InputSubsystem::Directory directoryKind);
    ~SubsystemState();
    SubsystemState(const SubsystemState &) = delete;
    SubsystemState &operator=(const SubsystemState &) = delete;

    /// The public object of a number; made on first use.
    InputNode &handle(int number);

    /// Makes /dev/input, with the nodes of all plugged devices.
    void createDirectory();

    /// Removes /dev/input with its nodes.
    void removeDirectory();

    /// Guards everything below.
    std::mutex lock;
    const InputSubsystem::Directory kind;
    InputDirectory directory;
    NodeMap nodes;
    ClientTable clients;
    CallLog log;
    InputSubsystem::PathHook hook;

private:
    void checkInterposition() const;

    std::map<int, std::unique_ptr<InputNode>> m_handles;
    ServedCalls m_calls;
};

} // namespace Vorn::Sim

#endif
