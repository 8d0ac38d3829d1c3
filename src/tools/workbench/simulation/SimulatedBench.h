#ifndef VORN_WORKBENCH_SIMULATEDBENCH_H
#define VORN_WORKBENCH_SIMULATEDBENCH_H

#include "Bench.h"
#include "Product.h"
#include "ScenarioLoader.h"
#include "SessionLog.h"
#include "SimulatedNodes.h"
#include "VirtualClock.h"

#include <memory>

namespace Vorn::Workbench {

/// The product that a profile describes, in this process and in virtual time.
///
/// Meanwhile the clocks and /dev/input of the whole process are simulated, so only one may exist,
/// and nothing else that depends on them. Needs a `QCoreApplication`.
class SimulatedBench : public Bench
{
public:
    SimulatedBench(const LoadedScenario &loaded, const SessionLog::Sink &sink);

    QString failure() const override { return {}; }

    qint64 now() const override { return m_clock.elapsed().count(); }
    void settle() override { m_clock.settle(); }
    void runUntil(qint64 end) override;
    void runUntil(qint64 end, const Condition &condition) override;

    void log(const Remark &remark) override { m_log.add(remark); }
    void log(const ExpectationChecked &checked) override { m_log.add(checked); }

    void plug(int node, const Sim::DeviceDescription &device) override
    {
        m_nodes.plug(node, device);
    }
    void unplug(int node, bool losingRecords) override { m_nodes.unplug(node, losingRecords); }
    void replace(int node, const Sim::DeviceDescription &device) override
    {
        m_nodes.replace(node, device);
    }
    void setMode(int node, mode_t mode) override { m_nodes.setMode(node, mode); }
    void setInputDirectory(bool exists) override { m_nodes.setInputDirectory(exists); }

    std::optional<int> changeKeys(int node, const QVector<int> &codes, int value) override
    {
        return m_nodes.changeKeys(node, codes, value);
    }
    void releaseKeys(int node) override { m_nodes.releaseKeys(node); }
    bool setSwitch(int node, int code, bool on) override
    {
        return m_nodes.setSwitch(node, code, on);
    }
    void send(int node, const QVector<RecordedEvent> &records, qint64 offset) override
    {
        m_nodes.send(node, records, offset);
    }

    void stepWallClock(qint64 delta) override;

    void select(const QString &identifier) override { m_product->selectHandler(identifier); }
    QString identifier() override { return m_product->identifier(); }

private:
    Sim::VirtualClock m_clock;
    SimulatedNodes m_nodes;
    SessionLog m_log;
    std::unique_ptr<Product> m_product;
};

} // namespace Vorn::Workbench

#endif
