#ifndef VORN_WORKBENCH_RECORDER_H
#define VORN_WORKBENCH_RECORDER_H

#include "Profile.h"
#include "RecordedDevice.h"
#include "Session.h"
#include "TextBlanking.h"

#include <QFile>
#include <QString>

#include <map>
#include <memory>

namespace Vorn::Workbench {

/// Keeps a session in a folder, in the formats that umockdev-run, evemu-play and
/// `vorn-input simulate` read:
///
/// | file | what |
/// |---|---|
/// | `session.umockdev` | the nodes |
/// | `eventN.ioctl` | what a node answers |
/// | `eventN.evemu` | its description and what it sent |
/// | `session.expect` | the published events, as expectations |
/// | `session.jsonl` | everything, see toJsonLine() |
/// | `replay.sh` | plays the session on a program, by umockdev-run |
/// | `README` | how to replay it |
///
/// What was recorded is on disk after each entry, so that nothing is lost with the process. Typed
/// text is made unreadable, see TextBlanking, unless it is to be shown.
class Recorder
{
public:
    /// @param profile of the product; null without one. It may change, and must live longer.
    /// @param showText whether typed text is kept as it is
    Recorder(const QString &folder, const Profile *profile, bool showText);
    ~Recorder();
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    /// Makes the folder, unless it is there, and begins the files.
    /// @return why that is not possible; empty if it was. A folder that holds a session is refused.
    QString open();

    /// Keeps an entry. A device that arrives is asked what it is.
    void add(const SessionEntry &entry);

    /// Ends the files.
    /// @return the first thing that could not be written since open(); empty if all was
    QString close();

private:
    struct Node
    {
        RecordedDevice device;
        std::unique_ptr<QFile> events;
        qint64 lastTime = 0;
    };

    QString path(const QString &name) const;
    std::unique_ptr<QFile> create(const QString &name, const QByteArray &start);
    void append(QFile *file, const QByteArray &text);
    void replace(const QString &name, const QByteArray &content);
    void fail(const QString &error);

    void keep(const SessionEntry &entry);
    void addNode(const DeviceChange &change, qint64 time);
    void writeDevices();
    void writeRecord(const RecordRead &record, qint64 time);
    void writeExpectation(const EventPublished &event);
    void writeProfile(const QString &profile);

    const QString m_folder;
    const bool m_showsText;
    TextBlanking m_blanking;
    QString m_error;
    qint64 m_wallClock = 0;
    std::unique_ptr<QFile> m_session;
    std::unique_ptr<QFile> m_expectations;
    std::map<int, Node> m_nodes;
};

} // namespace Vorn::Workbench

#endif
