#ifndef VORN_SIM_INPUTSUBSYSTEM_H
#define VORN_SIM_INPUTSUBSYSTEM_H

#include "DeviceDescription.h"
#include "InputNode.h"
#include "SystemCall.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <sys/types.h>

#include <functional>
#include <memory>

/// Simulated devices and virtual time, for executables that test a product.
namespace Vorn::Sim {

class SubsystemState;

/// @file
/// Simulated input devices for the tests of a product.

/// The Linux input subsystem inside a process: a /dev/input whose devices only this process sees,
/// for tests, tools and benchmarks of code that reads evdev nodes.
///
/// While it exists, it serves the process's own calls of `open`, `read`, `ioctl`, `close`, `stat`,
/// `access`, `inotify_add_watch` and so on for /dev, /dev/input and everything below /dev/input.
/// Other paths, such as /dev/null, are left alone. The code under test runs unmodified, and so does
/// Qt. The directories are real ones in a temporary folder, so inotify and `QFileSystemWatcher` see
/// every change. At the start, /dev/input exists and is empty.
///
/// Linking `vorn::sim` is all that an executable has to do. The constructor checks that the calls
/// really get here, and ends the process (`qFatal`) if they do not.
///
/// **Limits**: not simulated are `write` to a node, `epoll`'s hang-up flags, descriptors passed to
/// other processes, calls that bypass the C library's dynamic symbols (`fopen`, `std::ifstream`,
/// raw system calls), and paths that are relative, not normalised or reached through links. Queues
/// are unlimited: a slow reader sees `SYN_DROPPED` only if a test sends it or the reader changes
/// its clock.
///
/// **Thread**: use it on one thread, except for what InputNode allows on others. Only one may exist
/// per process; a second one is fatal. Nodes may be read on any thread, also while it is destroyed:
/// a `read` that waits then fails with `ENODEV`. Descriptors that are left open are reported in a
/// warning; they deliver nothing from then on, and their reads fail.
///
/// @code
/// InputSubsystem subsystem;
/// InputNode &panel = subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}));
/// LinuxInputListener listener(&receiver, panel.path(), LinuxInputListener::Key);
/// panel.press(KEY_OK);
/// @endcode
class InputSubsystem
{
public:
    /// When /dev/input itself exists.
    enum class Directory {
        /// Even while it is empty.
        Persistent,
        /// Only while it has nodes, as with devtmpfs. Missing at the start.
        ComesAndGoes,
    };

    /// What happens to records that are unread when their device is unplugged.
    enum class Unread {
        /// They can still be read, as when the reader is faster than the kernel.
        Delivered,
        /// They are lost, including the releases of held keys. This is what happens when the
        /// kernel is faster, so a product has to cope with both.
        Lost,
    };

    /// /dev/input is served from here on, and is empty.
    /// @param directory when it exists
    explicit InputSubsystem(Directory directory = Directory::Persistent);
    ~InputSubsystem();
    InputSubsystem(const InputSubsystem &) = delete;
    InputSubsystem &operator=(const InputSubsystem &) = delete;

    /// Plugs a device in: creates /dev/input/event@p number. Fatal if there is one already. While
    /// /dev/input is removed, the node only appears with createInputDirectory().
    /// @param number not negative; the library looks at 0 to 9
    /// @param description copied
    /// @return the node, owned by the subsystem
    InputNode &plug(int number, const DeviceDescription &description);

    /// Unplugs the device: releases its held keys for the readers, removes the node, and makes its
    /// descriptors fail with `ENODEV` from then on (`read` only after what is @p unread, unless
    /// that is lost). They stay readable. Fatal if no device is plugged in there.
    /// @param number of the node
    /// @param unread what happens to what was not read yet
    void unplug(int number, Unread unread = Unread::Delivered);

    /// Unplugs the device and plugs in another without a change that a watcher of the directory
    /// could see, as if both happened between two scans. The node keeps its access bits.
    /// @param number of the node
    /// @param description copied
    /// @return the node, owned by the subsystem
    InputNode &replace(int number, const DeviceDescription &description);

    /// The node of a number, with or without a device.
    /// @param number not negative
    /// @return owned by the subsystem
    InputNode &node(int number);

    /// Changes the node's access bits; watchers see a change of attributes. Without a read bit it
    /// cannot be opened, not even by root. Descriptors that are open already are not affected.
    /// @param number of the node
    /// @param mode as for `chmod`
    void setPermissions(int number, mode_t mode);

    /// Removes /dev/input and all nodes in it. The devices stay plugged in, and open descriptors
    /// keep working. Does nothing if it is missing.
    void removeInputDirectory();

    /// Creates /dev/input again, with the nodes of all plugged devices. Does nothing if it exists.
    void createInputDirectory();

    /// @return whether /dev/input is there
    bool inputDirectoryExists() const;

    /// @return path of the temporary folder that stands in for /dev
    QString folder() const;

    /// What is about to be done with /dev, /dev/input or a path below.
    enum class PathCall {
        Status, ///< `stat` and the like
        Open, ///< `open` and the like, of nodes and of directories
        Watch, ///< `inotify_add_watch`
    };

    /// Is called before each such call, on the caller's thread. Returns the error (`errno`) that it
    /// fails with, or 0 to let it go on.
    using PathHook = std::function<int(PathCall call, const QByteArray &path)>;

    /// Lets a test step in between two calls of the code under test: plug, unplug, remove the
    /// directory, or fail a call. Calls that the hook makes itself do not come back to it.
    /// @param hook an empty one ends that
    void setPathHook(const PathHook &hook);

    /// How many descriptors are open.
    /// @return on all nodes together, duplicates included
    int openDescriptors() const;

    /// @name Calls that were made
    /// @{

    /// Switches the recording of calls, which is on at the start. Turn it off for long runs.
    /// @param on what was recorded stays
    void setRecording(bool on);

    /// All recorded calls.
    /// @return oldest first
    QVector<SystemCall> systemCalls() const;

    /// Those of one path.
    /// @param path e.g. "/dev/input/event0"
    /// @return oldest first
    QVector<SystemCall> systemCalls(const QByteArray &path) const;

    /// Forgets the recorded calls; the counts stay.
    void clearSystemCalls();

    /// How many calls were made so far, recorded or not.
    /// @return on all nodes together
    CallCounts callCounts() const;
    /// @}

private:
    const std::unique_ptr<SubsystemState> m_state;
};

} // namespace Vorn::Sim

#endif
