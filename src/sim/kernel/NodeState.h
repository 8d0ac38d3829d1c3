#ifndef VORN_SIM_NODESTATE_H
#define VORN_SIM_NODESTATE_H

#include "ScriptedFailure.h"

#include <QByteArray>

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Vorn::Sim {

struct Client;
class SimulatedDevice;

/// What belongs to one number, whichever device is plugged in there. Guarded by the subsystem's
/// lock.
class NodeState
{
public:
    NodeState(std::mutex &subsystemLock, int nodeNumber);

    /// Takes over the access bits of @p bits.
    void setMode(mode_t bits);

    /// Whether the access bits allow @p access, a combination of R_OK, W_OK and X_OK. Nobody is
    /// privileged: tests often run as root, to whom every real file is accessible.
    bool allows(int access) const;

    /// How many descriptors are open, duplicates included.
    std::size_t openDescriptors() const;

    /// The minor device number.
    unsigned int minorNumber() const;

    std::mutex &lock;
    const int number;
    const QByteArray path;
    /// Null while no device is plugged in.
    std::shared_ptr<SimulatedDevice> device;
    mode_t mode = 0;
    ScriptedFailure openFailure;
    /// By request without its size.
    std::map<unsigned long, ScriptedFailure> ioctlFailures;
    /// What every read fails with once its queue is empty; 0 for none.
    int readError = 0;
    /// Open files of all devices that have been plugged in here.
    std::vector<Client *> clients;
};

} // namespace Vorn::Sim

#endif
