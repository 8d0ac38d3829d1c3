#ifndef VORN_SIM_SYSTEMCALL_H
#define VORN_SIM_SYSTEMCALL_H

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>

namespace Vorn::Sim {

/// @file
/// What InputSubsystem records of calls on its nodes.

/// One system call on a node in /dev/input, as its caller saw it.
///
/// `open` is recorded for every path below /dev/input, whether or not a device is plugged in there;
/// the other calls only for descriptors of simulated devices. What duplicates descriptors, and what
/// closes them by other means than `close`, is not recorded.
struct SystemCall
{
    /// The calls that are recorded.
    enum class Kind {
        Open,
        Read,
        Ioctl,
        Close,
    };

    /// Which call it was.
    Kind kind = Kind::Open;
    /// The path that was opened, e.g. "/dev/input/event0".
    QByteArray path;
    /// The descriptor; -1 for an `open` that failed.
    int fd = -1;
    /// `ioctl` only: the request, including its size.
    unsigned long request = 0;
    /// `read`: the size of the caller's buffer. `ioctl`: the size encoded in the request.
    std::size_t size = 0;
    /// What the call returned.
    long result = 0;
    /// `errno` of a call that failed, 0 otherwise.
    int error = 0;
    /// `open` only: the flags.
    int openFlags = 0;
};

/// How often each call was made, whether or not calls are recorded.
struct CallCounts
{
    quint64 opens = 0; ///< `open` and the like
    quint64 reads = 0; ///< `read`
    quint64 ioctls = 0; ///< `ioctl`
    quint64 closes = 0; ///< `close`
};

} // namespace Vorn::Sim

Q_DECLARE_TYPEINFO(Vorn::Sim::SystemCall, Q_MOVABLE_TYPE);

#endif
