#ifndef VORN_SIM_INPUTSUBSYSTEM_H
#define VORN_SIM_INPUTSUBSYSTEM_H

#include "DeviceDescription.h"
#include "InputNode.h"
#include "SystemCall.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <sys/types.h>

#include <memory>

namespace Vorn::Sim {

class SubsystemState;

/// The Linux input subsystem inside a process: /dev/input with devices that exist only for this
/// process, for tests, tools and benchmarks of code that reads evdev nodes.
///
/// While it is alive, the process's own `open`, `read`, `ioctl`, `close`, `stat`, `access`,
/// `inotify_add_watch` … are served by it where they concern /dev, /dev/input and everything below
/// /dev/input; no other path (/dev/null) is touched. The code under test, Qt included, runs
/// unmodified. The directories are real ones in a temporary folder, so that inotify and
/// `QFileSystemWatcher` see every change. /dev/input exists and is empty at the start.
///
/// An executable gets all that by linking `vorn::sim`. The constructor checks that the calls
/// really arrive here and ends the process (`qFatal`) if they do not.
///
/// **Limits**: duplicated descriptors (`dup`), `write` to a node, `epoll`'s hang-up flags, calls
/// that bypass the C library's dynamic symbols (`fopen`, `std::ifstream`, raw system calls) and
/// paths that are relative, unnormalised or reached through links are not simulated. Queues have
/// no limit: a reader that is too slow sees no `SYN_DROPPED` but those that are sent.
///
/// **Thread**: to be used on one thread, but for what InputNode allows on others. One at a time
/// per process; a second one is fatal. Close all descriptors of nodes before it goes: those left
/// open are named in a warning and read nothing any more.
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
    /// What becomes of /dev/input itself.
    enum class Directory {
        /// Stays when it is empty.
        Persistent,
        /// Goes with its last node and comes with the next, as with devtmpfs. Missing at start.
        ComesAndGoes,
    };

    /// What becomes of records that are unread when their device goes.
    enum class Unread {
        /// They are read first, as when the reader is quicker than the unplugging.
        Delivered,
        /// They are lost, and with them the releases of held keys. A kernel does so whenever it is
        /// the quicker one, so a product has to live with either.
        Lost,
    };

    explicit InputSubsystem(Directory directory = Directory::Persistent);
    ~InputSubsystem();
    InputSubsystem(const InputSubsystem &) = delete;
    InputSubsystem &operator=(const InputSubsystem &) = delete;

    /// Plugs a device in: makes /dev/input/event@p number. Fatal if one is plugged there. While
    /// /dev/input is removed the node comes into being with createInputDirectory().
    InputNode &plug(int number, const DeviceDescription &description);

    /// Unplugs the device: its held keys are released for whoever reads, the node goes, and its
    /// descriptors fail with `ENODEV` from then on (`read` after what is @p unread, unless that is
    /// lost). They stay readable. Fatal if none is plugged there.
    void unplug(int number, Unread unread = Unread::Delivered);

    /// Unplugs the device and plugs in another, with no change to the directory that a watcher
    /// could see, as between two scans. The node keeps its access bits.
    InputNode &replace(int number, const DeviceDescription &description);

    /// The node of @p number, plugged or not; 0 and above.
    InputNode &node(int number);

    /// Changes the node's access bits, which watchers see as a change of attributes. Without a
    /// read bit it cannot be opened, not even by root; descriptors open by then stay as they are.
    void setPermissions(int number, mode_t mode);

    /// Removes /dev/input and all nodes in it. The devices stay plugged and whoever reads them
    /// goes on. Nothing if it is missing.
    void removeInputDirectory();

    /// Makes /dev/input again, with the nodes of all plugged devices. Nothing if it exists.
    void createInputDirectory();

    bool inputDirectoryExists() const;

    /// The folder that stands for /dev.
    QString folder() const;

    /// Descriptors that are open on all nodes together.
    int openDescriptors() const;

    /// @name What was called
    /// @{
    /// Whether calls are recorded; on at start. Turn it off where many are made.
    void setRecording(bool on);

    /// All recorded calls, oldest first.
    QVector<SystemCall> systemCalls() const;

    /// Those of one path, e.g. "/dev/input/event0".
    QVector<SystemCall> systemCalls(const QByteArray &path) const;

    /// Forgets the recorded calls; the counts stay.
    void clearSystemCalls();

    /// How many calls were made since the start, on all nodes together.
    CallCounts callCounts() const;
    /// @}

private:
    const std::unique_ptr<SubsystemState> m_state;
};

} // namespace Vorn::Sim

#endif
