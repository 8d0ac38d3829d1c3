#include "Measure.h"
#include "Slot.h"

#include "BasicInputHandler.h"
#include "InputSubsystem.h"
#include "vorn.h"

#include <QCoreApplication>

#include <cerrno>

namespace {

using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

constexpr int clickedKey = KEY_OK;
constexpr int chordKey = KEY_PLAY;
// Above all registered keys.
constexpr int unmappedKey = KEY_MAX;
constexpr int usualKeys = 10;
constexpr int mostKeys = 767;

enum class Key {
    Unmapped,
    Immediate,
    Deferred,
    LongPress, ///< deferred and timed
    Chord,
};

/// The application: receives what is published.
class Application : public QObject
{
public:
    Application()
    {
        Vorn::connect(Input::instance(), &Input::inputEvent, this, [this](const InputEvent &event) {
            benchmark::DoNotOptimize(m_commands += event.command());
        });
    }

private:
    int m_commands = 0;
};

/// Registers @p count keys in the same way, clickedKey and chordKey first.
void registerKeys(BasicKeyInputHandler &handler, Key key, int count)
{
    QList<int> codes = {clickedKey, chordKey};
    for (int code = 0; codes.size() < mostKeys; ++code) {
        if (!codes.mid(0, 2).contains(code))
            codes.append(code);
    }
    for (int i = 0; i < count; ++i) {
        handler.registerKey(codes[i], InputEvent::Confirm, key == Key::Immediate);
        if (key == Key::LongPress)
            handler.enableLongPress(codes[i], true, {3'600'000, 200});
        if (key == Key::Chord && i > 0)
            handler.registerDoubleKey(clickedKey, codes[i], InputEvent::FactoryReset);
    }
    if (key == Key::Chord && count == 1)
        handler.registerDoubleKey(clickedKey, chordKey, InputEvent::FactoryReset);
}

void press(benchmark::State &state, Key key, Log log)
{
    const Logging logging(log);
    const Application application;
    BasicKeyInputHandler handler(QStringLiteral("front-panel"));
    registerKeys(handler, key, static_cast<int>(state.range(0)));
    QList<QList<input_event>> packets =
        clickPackets(key == Key::Unmapped ? unmappedKey : clickedKey);
    if (key == Key::Chord) {
        packets.insert(1, packet(EV_KEY, chordKey, 1));
        packets.append(packet(EV_KEY, chordKey, 0));
    }
    measure(state, key == Key::Chord ? "chord" : "click", 1, [&] {
        for (const QList<input_event> &batch : packets)
            handler.processEvent(batch);
    });
}

void registered(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("registered keys")->Arg(1)->Arg(usualKeys)->Arg(100)->Arg(mostKeys);
}

void usual(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("keys")->Arg(usualKeys);
}

#define PRESS(name, key) \
    BENCHMARK_CAPTURE(press, key##Growth, Key::key, Log::Off) \
        ->Name("KeyHandler/" name) \
        ->Apply(registered); \
    BENCHMARK_CAPTURE(press, key##Off, Key::key, Log::Off) \
        ->Name("KeyHandler/" name "/logging off") \
        ->Apply(usual); \
    BENCHMARK_CAPTURE(press, key##Debug, Key::key, Log::DebugToNull) \
        ->Name("KeyHandler/" name "/DEBUG to null") \
        ->Apply(usual)

PRESS("click, unmapped", Unmapped);
PRESS("click, immediate", Immediate);
PRESS("click, deferred", Deferred);
PRESS("click, deferred and timed", LongPress);
PRESS("chord", Chord);

void processBatch(benchmark::State &state, Key key)
{
    const Application application;
    BasicKeyInputHandler handler(QStringLiteral("front-panel"));
    registerKeys(handler, key, usualKeys);
    const auto count = static_cast<int>(state.range(0));
    const QList<QList<input_event>> batches =
        clickBatches(key == Key::Unmapped ? unmappedKey : clickedKey, count);
    measure(state, "record", batches.size() * count, [&] {
        for (const QList<input_event> &batch : batches)
            handler.processEvent(batch);
    });
}

// Up to 64, a full read on a 32-bit system.
void perBatch(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("records per read")->RangeMultiplier(2)->Range(1, 64);
}

BENCHMARK_CAPTURE(processBatch, unmapped, Key::Unmapped)
    ->Name("KeyHandler/batch of clicks, unmapped")
    ->Apply(perBatch);
BENCHMARK_CAPTURE(processBatch, immediate, Key::Immediate)
    ->Name("KeyHandler/batch of clicks, immediate")
    ->Apply(perBatch);
BENCHMARK_CAPTURE(processBatch, deferred, Key::Deferred)
    ->Name("KeyHandler/batch of clicks, deferred")
    ->Apply(perBatch);

void turnSwitch(benchmark::State &state, Log log)
{
    const Logging logging(log);
    const Application application;
    BasicSwInputHandler handler(QStringLiteral("front-panel"));
    handler.registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
    handler.registerSwitch(SW_LINEOUT_INSERT, InputEvent::SWLineOut);
    const QList<input_event> on = packet(EV_SW, SW_LINEIN_INSERT, 1);
    const QList<input_event> off = packet(EV_SW, SW_LINEIN_INSERT, 0);
    measure(state, "change", 2, [&] {
        handler.processEvent(on);
        handler.processEvent(off);
    });
}
BENCHMARK_CAPTURE(turnSwitch, off, Log::Off)->Name("SwitchHandler/change/logging off");
BENCHMARK_CAPTURE(turnSwitch, debug, Log::DebugToNull)->Name("SwitchHandler/change/DEBUG to null");

/// A device manager that has found the first @p nodes simulated nodes.
class Product : public BasicInputHandler
{
public:
    /// @param handlers whether each device gets handlers, with the identifiers "browse" and "text"
    Product(InputSubsystem &subsystem, int nodes, bool handlers = false)
        : m_hasHandlers(handlers)
        , m_pass(this, "on_inputWatcher_changed(QString)")
    {
        subsystem.setRecording(false);
        for (int number = 0; number < nodes; ++number) {
            subsystem.plug(number,
                           DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_OK})
                               .withSwitches({SW_LINEIN_INSERT}));
        }
        // The event loop makes the first pass.
        QCoreApplication::processEvents();
        if (m_devices != nodes)
            qFatal("%d of %d devices found", m_devices, nodes);
    }

    int devices() const { return m_devices; }

    /// Scans the nodes, as after a change of their directory.
    void pass() { m_pass(&m_directory); }

    void addDevice(const QString &device, const QString &name) override
    {
        ++m_devices;
        if (!m_hasHandlers)
            return;
        for (const QString &id : {QStringLiteral("browse"), QStringLiteral("text")}) {
            addKeyHandler(device, new BasicKeyInputHandler(name), id);
            addSwitchHandler(device, new BasicSwInputHandler(name), id);
        }
    }

    void removeDevice(const QString &device) override
    {
        --m_devices;
        BasicInputHandler::removeDevice(device);
    }

private:
    const bool m_hasHandlers;
    const Slot m_pass;
    QString m_directory = QStringLiteral("/dev/input/");
    int m_devices = 0;
};

void select(benchmark::State &state)
{
    InputSubsystem subsystem;
    Product product(subsystem, static_cast<int>(state.range(0)), true);
    const QString browse = QStringLiteral("browse");
    const QString text = QStringLiteral("text");
    measure(state, "selection", 2, [&] {
        product.selectHandler(text);
        product.selectHandler(browse);
    });
}
BENCHMARK(select)
    ->Name("DeviceManager/selectHandler")
    ->ArgName("devices")
    ->Arg(1)
    ->Arg(2)
    ->Arg(5)
    ->Arg(10);

// Includes the cost of the simulated nodes; the watch and the directory are the kernel's own.
void passWithoutChange(benchmark::State &state)
{
    InputSubsystem subsystem;
    Product product(subsystem, static_cast<int>(state.range(0)));
    measure(state, "pass", 1, [&product] { product.pass(); });
}
BENCHMARK(passWithoutChange)->Name("scan/no change")->ArgName("nodes")->Arg(0)->Arg(5)->Arg(10);

// The number of nodes includes the new one. It comes and goes by whether it can be opened: changes
// of the directory would fill the watcher's queue, which nobody reads here.
void passWithArrival(benchmark::State &state)
{
    InputSubsystem subsystem;
    const auto nodes = static_cast<int>(state.range(0));
    Product product(subsystem, nodes);
    InputNode &node = subsystem.node(nodes - 1);
    while (state.KeepRunning()) {
        state.PauseTiming();
        node.failOpen(ENOENT, InputNode::Forever);
        product.pass();
        node.clearFailures();
        if (product.devices() != nodes - 1)
            qFatal("the device did not go");
        state.ResumeTiming();
        product.pass();
    }
    if (product.devices() != nodes)
        qFatal("the device did not come back");
    state.SetLabel("pass");
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(passWithArrival)->Name("scan/one arrival")->ArgName("nodes")->Arg(1)->Arg(5)->Arg(10);

} // namespace
