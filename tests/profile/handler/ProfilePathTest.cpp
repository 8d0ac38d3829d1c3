// What a record costs does not depend on who made the registrations.

#include "AllocationCounter.h"
#include "ClockCalls.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "ProfileInputHandler.h"
#include "ProfileReader.h"
#include "Records.h"
#include "VirtualClock.h"

#include <QCoreApplication>

#include <log4cplus/logger.h>

#include <gmock/gmock.h>

#include <memory>
#include <tuple>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::SystemCall;

constexpr char toml[] = R"(
[[device]]
[device.handler.keys]
KEY_A = { command = "Confirm", immediate = true, long-press = [600, 200], repeat = true }
KEY_B = "Stop"
KEY_C = "StartPlay"
[device.handler.chords]
"KEY_B+KEY_C" = "FactoryReset"
[device.handler.switches]
SW_LINEIN_INSERT = "SWLineIn"
)";

Vorn::Profile profile()
{
    const Vorn::ParsedProfile parsed = Vorn::parseProfile(toml, QStringLiteral("panel.toml"));
    EXPECT_TRUE(parsed.diagnostics.isEmpty());
    return parsed.profile;
}

/// The same registrations in code, as products used to have them.
class Panel : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &name) override
    {
        auto *keys = new BasicKeyInputHandler(name);
        addKeyHandler(device, keys, QString());
        keys->registerKey(KEY_A, InputEvent::Confirm, true);
        keys->enableLongPress(KEY_A, true, {600, 200});
        keys->registerKey(KEY_B, InputEvent::Stop, false);
        keys->registerKey(KEY_C, InputEvent::StartPlay, false);
        keys->registerDoubleKey(KEY_B, KEY_C, InputEvent::FactoryReset);
        auto *switches = new BasicSwInputHandler(name);
        switches->registerSwitch(SW_LINEIN_INSERT, InputEvent::SWLineIn);
        addSwitchHandler(device, switches, QString());
    }
};

struct Counts
{
    int allocations = 0;
    int deallocations = 0;
    std::size_t bytes = 0;
    int events = 0;
    quint64 wakeUps = 0;
    int clockReads = 0;
    /// Kind, size and result of each, on the device's node.
    std::vector<std::tuple<SystemCall::Kind, std::size_t, long>> calls;
};

const std::vector<QList<input_event>> batches{
    {keyRecord(KEY_A, 1), record(EV_SYN, SYN_REPORT, 0)}, // held by the pause that follows
    {keyRecord(KEY_A, 0), record(EV_SYN, SYN_REPORT, 0)},
    {keyRecord(KEY_B, 1), keyRecord(KEY_B, 0)},
    {keyRecord(KEY_B, 1), keyRecord(KEY_C, 1), keyRecord(KEY_B, 0), keyRecord(KEY_C, 0)},
    {switchRecord(SW_LINEIN_INSERT, 1), record(EV_SYN, SYN_REPORT, 0)},
    {keyRecord(KEY_D, 1), keyRecord(KEY_D, 0)}, // means nothing
};

/// Counts how often a clock is read, on its way to the virtual one.
class ClockReads : public Vorn::Sim::ClockCalls
{
public:
    ClockReads() { Vorn::Sim::serveClocks(this); }
    ~ClockReads() override { Vorn::Sim::serveClocks(m_clock); }
    ClockReads(const ClockReads &) = delete;
    ClockReads &operator=(const ClockReads &) = delete;

    bool get(clockid_t clock, std::chrono::nanoseconds &result) override
    {
        ++count;
        return m_clock->get(clock, result);
    }
    bool poll(const Poll &call, int &result) override { return m_clock->poll(call, result); }

    int count = 0;

private:
    ClockCalls *const m_clock = Vorn::Sim::clockCalls();
};

/// Plays the batches to a product, a device manager and the subsystem that it reads from.
class Player
{
public:
    template <typename Make>
    explicit Player(Make make)
        : m_subsystem(Vorn::Sim::InputSubsystem::Directory::Persistent)
        , m_node(m_subsystem.plug(
              0,
              DeviceDescription::keyboard("panel", BUS_HOST, {KEY_A, KEY_B, KEY_C, KEY_D})
                  .withSwitches({SW_LINEIN_INSERT})))
        , m_product(make())
    {
        QObject::connect(Input::instance(), &Input::inputEvent, &m_context,
                         [this](const InputEvent &) { ++m_events; });
        m_clock.settle();
    }

    void play()
    {
        for (const QList<input_event> &batch : batches) {
            QList<input_event> stamped = batch;
            const auto seconds = m_clock.now() / 1000;
            for (input_event &each : stamped)
                each.input_event_sec = static_cast<decltype(each.input_event_sec)>(seconds);
            m_node.send(stamped);
            m_clock.advance(1s);
        }
    }

    /// Of a second round, when everything permanent has been allocated.
    Counts counts()
    {
        m_subsystem.setRecording(false);
        play();
        m_events = 0;
        const quint64 wakeUps = m_clock.wakeUps();
        const ClockReads clock;
        const AllocationCounter counter;
        play();
        Counts counts{counter.allocations(),
                      counter.deallocations(),
                      counter.bytes(),
                      m_events,
                      m_clock.wakeUps() - wakeUps,
                      clock.count,
                      {}};
        m_subsystem.setRecording(true);
        play();
        for (const SystemCall &call : m_subsystem.systemCalls())
            counts.calls.emplace_back(call.kind, call.size, call.result);
        return counts;
    }

private:
    Vorn::Sim::VirtualClock m_clock;
    Vorn::Sim::InputSubsystem m_subsystem;
    Vorn::Sim::InputNode &m_node;
    std::unique_ptr<BasicInputHandler> m_product;
    QObject m_context;
    int m_events = 0;
};

std::unique_ptr<BasicInputHandler> byHand()
{
    return std::make_unique<Panel>();
}

std::unique_ptr<BasicInputHandler> byProfile()
{
    return std::make_unique<ProfileInputHandler>(profile());
}

/// What the library logs about the records, from TRACE up.
std::vector<LogLine> logOf(std::unique_ptr<BasicInputHandler> (*make)())
{
    Player player(make);
    const LogRecorder log;
    player.play();
    return log.lines();
}

} // namespace

TEST(ProfilePath, CostsWhatRegistrationsByHandCost)
{
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::WARN_LOG_LEVEL);
    const Counts hand = Player(byHand).counts();
    const Counts read = Player(byProfile).counts();
    // The press, three long presses and the release of A, and two each of the others.
    EXPECT_EQ(hand.events, 10);
    EXPECT_GT(hand.allocations, hand.events);
    EXPECT_FALSE(hand.calls.empty());
    EXPECT_EQ(read.events, hand.events);
    EXPECT_EQ(read.allocations, hand.allocations);
    EXPECT_EQ(read.deallocations, hand.deallocations);
    EXPECT_EQ(read.bytes, hand.bytes);
    EXPECT_EQ(read.wakeUps, hand.wakeUps);
    EXPECT_GT(hand.clockReads, hand.events);
    EXPECT_EQ(read.clockReads, hand.clockReads);
    EXPECT_EQ(read.calls, hand.calls);
}

TEST(ProfilePath, LogsWhatRegistrationsByHandLog)
{
    const std::vector<LogLine> hand = logOf(byHand);
    EXPECT_GT(hand.size(), 20U);
    EXPECT_EQ(logOf(byProfile), hand);
}
