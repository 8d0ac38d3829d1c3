#ifndef VORN_SIM_SUBSYSTEMSTATE_H
#define VORN_SIM_SUBSYSTEMSTATE_H

#include "InputNode.h"
#include "InputSubsystem.h"
#include "FileCalls.h"
#include "SimulatedDevice.h"
#include "SystemCall.h"

#include <QByteArray>
#include <QTemporaryDir>
#include <QVector>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Vorn::Sim {

/// A failure that was asked for.
struct ScriptedFailure
{
    int error = 0;
    int times = 0;
    int after = 0;

    /// The error that the next call fails with; 0 for none.
    int next();
};

/// What belongs to one number, whichever device is plugged there. Guarded by the lock of the
/// subsystem.
class NodeState
{
public:
    NodeState(std::mutex &subsystemLock, int nodeNumber);

    std::mutex &lock;
    const int number;
    const QByteArray path;
    /// Null while none is plugged.
    std::shared_ptr<SimulatedDevice> device;
    mode_t mode = 0;
    ScriptedFailure openFailure;
    /// By request without its size.
    std::map<unsigned long, ScriptedFailure> ioctlFailures;
    /// What every read fails with once its queue is empty; 0 for none.
    int readError = 0;
    /// Open descriptors of all devices that have been plugged here.
    std::vector<Client *> clients;

    /// Whether a `read` has something to say, be it a failure.
    bool isReadable(const Client &client) const;
};

/// The part of an `ioctl` request that tells what it asks for.
unsigned long withoutSize(unsigned long request);

/// The tables of the simulation, and the calls that are served from them.
class SubsystemState : public FileCalls
{
public:
    explicit SubsystemState(InputSubsystem::Directory directory);
    ~SubsystemState() override;

    InputNode &node(int number);
    void plug(int number, const DeviceDescription &description);
    void unplug(int number, InputSubsystem::Unread unread);
    void replace(int number, const DeviceDescription &description);
    void setPermissions(int number, mode_t mode);
    void removeDirectory();
    void createDirectory();
    bool directoryExists() const;
    QString folder() const;
    int openDescriptors() const;
    void setRecording(bool on);
    QVector<SystemCall> systemCalls() const;
    void clearSystemCalls();
    CallCounts callCounts() const;

    void translate(const char *path, char *buffer, std::size_t size) const override;
    bool open(const char *path, int flags, mode_t mode, int &result) override;
    bool read(int fd, void *buffer, std::size_t size, ssize_t &result) override;
    bool ioctl(int fd, unsigned long request, void *argument, int &result) override;
    bool close(int fd, int &result) override;
    bool access(const char *path, int mode, int &result) override;
    bool attributes(const char *path, Attributes &result) override;
    bool attributes(int fd, Attributes &result) override;

private:
    using Lock = std::unique_lock<std::mutex>;

    struct Entry
    {
        std::shared_ptr<NodeState> state;
        std::unique_ptr<InputNode> handle;
    };

    void checkInterposition() const;
    Entry &entry(int number);
    NodeState &pluggedNode(int number);
    NodeState *visibleNode(const char *path);
    std::shared_ptr<Client> findClient(int fd) const;
    std::shared_ptr<SimulatedDevice> makeDevice(const DeviceDescription &description);
    QByteArray realPath(const char *path) const;
    void makeNode(const NodeState &node);
    void makeDirectory();
    void removeRealDirectory();

    long openNode(NodeState &node, int flags);
    long readNode(Lock &lock, Client &client, void *buffer, std::size_t size);
    long answer(Client &client, unsigned long request, void *argument);
    long answerSized(Client &client, unsigned long request, void *argument);
    void record(SystemCall call, long outcome);

    mutable std::mutex m_lock;
    const InputSubsystem::Directory m_directory;
    QTemporaryDir m_temporary;
    QByteArray m_folder;
    bool m_directoryExists = false;
    std::map<int, Entry> m_nodes;
    std::vector<std::shared_ptr<Client>> m_clients;
    bool m_isRecording = true;
    QVector<SystemCall> m_calls;
    CallCounts m_counts;
};

} // namespace Vorn::Sim

#endif
