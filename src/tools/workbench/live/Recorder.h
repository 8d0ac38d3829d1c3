#ifndef VORN_WORKBENCH_RECORDER_H
#define VORN_WORKBENCH_RECORDER_H

#include "Profile.h"
#include "RecordedDevice.h"
#include "RecordingFolder.h"
#include "Session.h"
#include "TextBlanking.h"

#include <QFile>
#include <QString>

#include <map>
#include <memory>
#include <set>

namespace Vorn::Workbench {

/// Records a session to a folder, in the formats that umockdev-run, evemu-play and
/// `vorn-input simulate` read:
///
/// | file | content |
/// |---|---|
/// | `session.umockdev` | the nodes |
/// | `eventN.ioctl` | what a node answers |
/// | `eventN.evemu` | its description and what it sent |
/// | `session.expect` | the published events, as expectations |
/// | `session.jsonl` | everything that happened, see toJsonLine() |
/// | `replay.sh` | replays the session to a program, with umockdev-run |
/// | `README` | how to replay it |
///
/// Each entry is on disk when add() returns, so that nothing is lost if the process ends. With the
/// first that cannot be written the recording ends. Typed text is made unreadable, see
/// TextBlanking, unless it is to be shown.
class Recorder
{
public:
    /// @param profile of the product; null without one. It may change, and must live longer.
    /// @param showText whether typed text is kept as it is
    Recorder(const QString &folder, const Profile *profile, bool showText);
    ~Recorder();
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    /// Makes the folder if it does not exist, and starts the files.
    /// @return why that is not possible, and then nothing is left behind; empty if it was. A
    /// folder that holds a recording is refused.
    QString open();

    /// Records an entry. A device that arrives is asked for its description.
    void add(const SessionEntry &entry);

    /// Why the recording has ended; empty while everything is written.
    QString error() const { return m_folder.error(); }

    /// Closes the files.
    /// @return error()
    QString close();

    /// What whoever passes it on has to know: where it is, and which keys are readable in it.
    QString summary() const;

private:
    struct Node
    {
        RecordedDevice device;
        std::unique_ptr<QFile> events;
        qint64 lastTime = 0;
    };

    void closeFiles();
    void noteKeys(const SessionEntry &entry);
    void keep(const SessionEntry &entry);
    void addNode(const DeviceChange &change, qint64 time);
    void writeDevices();
    void writeRecord(const RecordRead &record, qint64 time);
    void writeExpectation(const EventPublished &event);
    void writeProfile(const QString &profile);

    RecordingFolder m_folder;
    const bool m_showsText;
    TextBlanking m_blanking;
    qint64 m_wallClock = 0;
    std::unique_ptr<QFile> m_session;
    std::unique_ptr<QFile> m_expectations;
    std::map<int, Node> m_nodes;
    std::set<int> m_keysKept;
    int m_blankedPresses = 0;
};

} // namespace Vorn::Workbench

#endif
