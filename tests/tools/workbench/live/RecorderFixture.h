#ifndef RECORDERFIXTURE_H
#define RECORDERFIXTURE_H

#include "BusNames.h"
#include "InputSubsystem.h"
#include "Recorder.h"
#include "Recording.h"
#include "RecordingLoader.h"
#include "Session.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <linux/input.h>

#include <string>

namespace Vorn::Workbench {

/// A recorder in a temporary folder, and what it writes.
class RecorderFixture : public testing::Test
{
protected:
    static constexpr qint64 wallClock = 1'795'246'800'000'000;
    const QString device = QStringLiteral("/dev/input/event0");
    const Sim::DeviceDescription remote =
        Sim::DeviceDescription::keyboard("remote", BUS_I2C, {KEY_2, KEY_Q, KEY_A, KEY_S, KEY_OK})
            .withEventTypes({EV_MSC});

    RecorderFixture() { m_subsystem.setRecording(false); }

    QString folder() const { return m_temporary.filePath(QStringLiteral("session")); }

    QByteArray contentOf(const QString &name) const
    {
        QFile file(folder() + QLatin1Char('/') + name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    /// All bytes of all files.
    std::string everything() const
    {
        QByteArray all;
        for (const QString &name : QDir(folder()).entryList(QDir::Files | QDir::Hidden))
            all += "== " + name.toUtf8() + '\n' + contentOf(name);
        return all.toStdString();
    }

    void start(const Profile *profile, bool showText = false)
    {
        m_recorder = std::make_unique<Recorder>(folder(), profile, showText);
        ASSERT_EQ(m_recorder->open().toStdString(), "");
        m_recorder->add({0, SessionStart{"monitor", "", wallClock}});
    }

    void plug(const Sim::DeviceDescription &description, int number = 0)
    {
        const Sim::InputNode &node = m_subsystem.plug(number, description);
        add(DeviceChange{node.path(), QString::fromUtf8(description.name),
                         libraryBus(description.id.bustype, QString::fromUtf8(description.name)),
                         true});
    }

    template <typename What>
    void add(const What &what)
    {
        m_recorder->add({m_time, what});
    }

    /// A record 300 µs before now, with its end of the batch.
    void record(int type, int code, int value)
    {
        const qint64 stamp = wallClock + m_time - 300;
        add(RecordRead{device, type, code, value, stamp});
        add(RecordRead{device, EV_SYN, SYN_REPORT, 0, stamp});
    }

    void event(InputEvent::Command command, InputEvent::State state, int code)
    {
        add(EventPublished{command, state, InputEvent::Bus::I2C, device, EV_KEY, {code}, 300});
    }

    /// A key stroke with what the library makes of it.
    void type(int code, InputEvent::Command command)
    {
        record(EV_MSC, MSC_SCAN, 0x70000 + code);
        record(EV_KEY, code, 1);
        event(command, InputEvent::KeyPressed, code);
        m_time += 100'000;
        record(EV_KEY, code, 0);
        event(command, InputEvent::KeyReleased, code);
        m_time += 100'000;
    }

    ParsedRecording load() const { return loadRecording(folder() + "/session.umockdev"); }

    std::vector<int> codesOf(int value) const
    {
        std::vector<int> codes;
        const ParsedRecording recording = load();
        for (const RecordedEvent &recorded : recording.nodes.first().events) {
            if (recorded.type == EV_KEY && recorded.value == value)
                codes.push_back(recorded.code);
        }
        return codes;
    }

    std::vector<std::string> expectations() const
    {
        std::vector<std::string> lines;
        for (const QByteArray &line : contentOf("session.expect").split('\n')) {
            if (line.startsWith("expect "))
                lines.push_back(line.mid(7).toStdString());
        }
        return lines;
    }

    QTemporaryDir m_temporary;
    Sim::InputSubsystem m_subsystem;
    std::unique_ptr<Recorder> m_recorder;
    qint64 m_time = 1'000'000;
};

} // namespace Vorn::Workbench

#endif
