#ifndef IDLEBENCH_H
#define IDLEBENCH_H

#include "Bench.h"

/// Does nothing. A test overrides what it is about.
class IdleBench : public Vorn::Workbench::Bench
{
public:
    QString failure() const override { return {}; }
    qint64 now() const override { return 0; }
    void settle() override { }
    void runUntil(qint64) override { }
    void runUntil(qint64, const Condition &) override { }
    void log(const Vorn::Workbench::Remark &) override { }
    void log(const Vorn::Workbench::ExpectationChecked &) override { }
    void plug(int, const Vorn::Sim::DeviceDescription &) override { }
    void unplug(int, bool) override { }
    void replace(int, const Vorn::Sim::DeviceDescription &) override { }
    void setMode(int, mode_t) override { }
    void setInputDirectory(bool) override { }
    std::optional<int> changeKeys(int, const QVector<int> &, int) override { return {}; }
    void releaseKeys(int) override { }
    bool setSwitch(int, int, bool) override { return true; }
    void send(int, const QVector<Vorn::Workbench::RecordedEvent> &, qint64) override { }
    void stepWallClock(qint64) override { }
    void select(const QString &) override { }
    QString identifier() override { return {}; }
};

#endif
