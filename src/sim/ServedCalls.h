#ifndef VORN_SIM_SERVEDCALLS_H
#define VORN_SIM_SERVEDCALLS_H

#include "FileCalls.h"
#include "InputSubsystem.h"

#include <cstddef>
#include <functional>
#include <mutex>

#include <sys/types.h>

namespace Vorn::Sim {

class CallLog;
class ClientTable;
class InputDirectory;
class NodeMap;

/// Serves the process's calls from the tables of a subsystem, and logs them.
class ServedCalls : public FileCalls
{
public:
    /// What the calls are served from, all guarded by @p lock.
    struct Tables
    {
        std::mutex &lock;
        const InputDirectory &directory;
        NodeMap &nodes;
        ClientTable &clients;
        CallLog &log;
        InputSubsystem::PathHook &hook;
    };

    explicit ServedCalls(const Tables &tables);

    void translate(const char *path, char *buffer, std::size_t size) const override;
    int beforeStatus(const char *path) override;
    int beforeWatch(const char *path) override;
    bool open(const char *path, int flags, mode_t mode, int &result) override;
    bool read(int fd, void *buffer, std::size_t size, ssize_t &result) override;
    bool ioctl(int fd, unsigned long request, void *argument, int &result) override;
    bool close(int fd, int &result) override;
    bool duplicate(int fd, const std::function<int()> &call, int &result) override;
    bool closeRange(unsigned int first, unsigned int last, const std::function<int()> &call,
                    int &result) override;
    bool access(const char *path, int mode, int &result) override;
    bool attributes(const char *path, Attributes &result) override;
    bool attributes(int fd, Attributes &result) override;

private:
    int errorFromHook(InputSubsystem::PathCall call, const char *path) const;

    const Tables m_tables;
};

} // namespace Vorn::Sim

#endif
