#ifndef MODEL_LIBRARYPRODUCT_H
#define MODEL_LIBRARYPRODUCT_H

#include "Devices.h"
#include "InputSubsystem.h"
#include "LibraryKeys.h"
#include "ProductCall.h"
#include "Script.h"
#include "VirtualClock.h"

#include <array>
#include <memory>
#include <vector>

namespace Model {

/// A product of the library on simulated devices, in virtual time.
class LibraryProduct
{
public:
    explicit LibraryProduct(ProductPlan plan);
    ~LibraryProduct();
    LibraryProduct(const LibraryProduct &) = delete;
    LibraryProduct &operator=(const LibraryProduct &) = delete;

    void perform(const Step &step);
    Trace &trace() { return m_trace; }
    std::int64_t now() const { return m_clock.now(); }
    /// The codes notified in the last step, one after the other; for want of more, those that were
    /// held before it, in the order of the library's table.
    std::vector<int> notified() const;

private:
    /// Leaves out what depends on descriptors and on how often the folder was looked through.
    class Application : public ScriptedTrace
    {
    public:
        using ScriptedTrace::ScriptedTrace;
        void onLine(const std::string &logger, int level, const std::string &line) override;
    };

    void act(const ProductCall &call);
    void add(int node);
    void addKeys(int node, BasicKeyInputHandler *handler, const QString &id);
    void addSwitches(int node, BasicSwInputHandler *handler, const QString &id);
    void newReceiver();
    void forget(int node);
    void callKeys(const ProductCall &call);
    void send(const ProductCall &call);
    BasicKeyInputHandler *keys(const ProductCall &call) const;
    BasicSwInputHandler *switches(const ProductCall &call) const;

    const ProductPlan m_plan;
    Application m_trace{true};
    Vorn::Sim::VirtualClock m_clock;
    Vorn::Sim::InputSubsystem m_subsystem;
    BusAndLog m_observed{m_trace};
    std::array<std::vector<BasicKeyInputHandler *>, NodeCount> m_keys;
    std::vector<BasicSwInputHandler *> m_switches;
    std::vector<int> m_held;
    std::unique_ptr<QObject> m_receiver;
    std::unique_ptr<Devices> m_manager;
};

} // namespace Model

#endif
