#ifndef VORN_WORKBENCH_DRIVENBENCH_H
#define VORN_WORKBENCH_DRIVENBENCH_H

#include "Bench.h"
#include "Operation.h"
#include "ProgramRun.h"
#include "ScenarioLoader.h"
#include "SessionLog.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Vorn::Workbench {

/// A program that was not made for it, with an agent inside that does what is said here.
class DrivenBench : public Bench
{
public:
    struct Settings
    {
        bool virtualTime = false;
        qint64 timeout = 10'000; ///< how long the program may take to answer, in ms of real time
        QString version; ///< of this program
    };

    /// @param program must live longer, as what @p sink needs must
    DrivenBench(ProgramRun *program, const Settings &settings, SessionLog::Sink sink);

    /// Waits until the program has made its device manager. Otherwise failure() says why, and the
    /// program could not be driven at all.
    void begin(const LoadedScenario &loaded);
    /// Has the program end its event loop.
    void end();

    /// The temporary folder that a program leaves behind that does not end by itself.
    QString folder() const { return m_folder; }

    QString failure() const override { return m_failure; }

    qint64 now() const override;
    void settle() override;
    void runUntil(qint64 end) override;
    void runUntil(qint64 end, const Condition &condition) override;

    void log(const Remark &remark) override { m_sink({m_time, remark}); }
    void log(const ExpectationChecked &checked) override { m_sink({m_time, checked}); }

    void plug(int node, const Sim::DeviceDescription &device) override;
    void unplug(int node, bool losingRecords) override;
    void replace(int node, const Sim::DeviceDescription &device) override;
    void setMode(int node, mode_t mode) override;
    void setInputDirectory(bool exists) override;

    std::optional<int> changeKeys(int node, const QVector<int> &codes, int value) override;
    void releaseKeys(int node) override;
    bool setSwitch(int node, int code, bool on) override;
    void send(int node, const QVector<RecordedEvent> &records, qint64 offset) override;

    void stepWallClock(qint64 delta) override;

    void select(const QString &identifier) override;
    QString identifier() override;

private:
    Drive::Answer ask(const Drive::Operation &operation, qint64 patience = 0);
    void sendLine(const QByteArray &line);
    std::optional<Drive::Answer> waitForAnswer(qint64 patience);
    QString whyThereIsNoAnswer(ProgramRun::Ready ready);
    void take(const QByteArray &line);
    void receive();
    void wait(qint64 end, qint64 events);
    void fail(const QString &failure);
    QString howItEnded();

    ProgramRun *const m_program;
    const Settings m_settings;
    const SessionLog::Sink m_sink;
    QByteArray m_received;
    QString m_failure;
    QString m_folder;
    QString m_phase; ///< what the program had to do, for a failure before the scenario
    qint64 m_start = 0; ///< of the session, by the monotonic clock, µs
    qint64 m_time = 0; ///< of the last entry or answer, µs of the session
    qint64 m_events = 0; ///< published so far
    std::optional<Drive::Answer> m_answer;
};

} // namespace Vorn::Workbench

#endif
