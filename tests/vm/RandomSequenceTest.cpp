#include "GuestTest.h"
#include "KeyHandlerModel.h"
#include "LibraryKeys.h"
#include "LibraryProbe.h"
#include "Registrations.h"
#include "UinputDevice.h"

#include <QDateTime>
#include <QEvent>

#include <unistd.h>

#include <array>
#include <iostream>
#include <random>
#include <set>
#include <utility>

/*
 *  Random presses on a kernel device, in real time, for each of the model's registrations. The
 * model is told what the kernel delivered and when the timer ticked, and must see the same as the
 * library. VORN_RANDOM_SEED repeats a run's presses, VORN_RANDOM_SECONDS makes it longer.
 */

namespace {

using Model::KeyHandlerModel;
using Vorn::InputProbe;

constexpr int LocalUI = 2;

/// The model of a handler in real time. A tick reads the clock in the library at an instant that is
/// known only to lie between two; models that differ by this are kept until one proves wrong.
class RealTimeModel
{
public:
    explicit RealTimeModel(KeyHandlerModel model)
        : m_models{std::move(model)}
    { }

    /// @return the differences to what was seen; empty if there is a model without
    std::string process(const std::vector<Model::Record> &records, const Model::Trace &seen)
    {
        return step(seen, [&](const KeyHandlerModel &model, auto keep) {
            KeyHandlerModel next = model;
            Model::Trace expected(false);
            next.process(records, expected);
            keep(std::move(next), std::move(expected));
        });
    }

    std::string tick(qint64 earliest, qint64 latest, const Model::Trace &seen)
    {
        return step(seen, [&](const KeyHandlerModel &model, auto keep) {
            for (qint64 now = earliest; now <= latest; ++now) {
                KeyHandlerModel next = model;
                Model::Trace expected(false);
                next.tick(now, {}, expected);
                expected.sortTick();
                keep(std::move(next), std::move(expected));
            }
        });
    }

private:
    template <typename Next>
    std::string step(const Model::Trace &seen, Next next)
    {
        std::string differences;
        std::set<std::string> states;
        std::vector<KeyHandlerModel> models;
        for (const KeyHandlerModel &model : m_models) {
            next(model, [&](KeyHandlerModel candidate, const Model::Trace &expected) {
                if (!(expected.observations() == seen.observations()))
                    differences = "model:\n" + Model::text(expected.observations());
                else if (states.insert(candidate.state(0)).second)
                    models.push_back(std::move(candidate));
            });
        }
        if (models.empty())
            return "library:\n" + Model::text(seen.observations()) + differences;
        m_models = std::move(models);
        return {};
    }

    std::vector<KeyHandlerModel> m_models;
};

/// Tells what it has handled.
class WatchedKeys : public BasicKeyInputHandler
{
public:
    using BasicKeyInputHandler::BasicKeyInputHandler;

    void processEvent(const QList<input_event> &events) override
    {
        before();
        BasicKeyInputHandler::processEvent(events);
        after(Model::toRecords(events));
    }

    std::function<void()> before;
    std::function<void(const std::vector<Model::Record> &)> after;
};

class RandomSequenceTest : public GuestTest
{
protected:
    void run(const Model::Registrations &registrations, qint64 msecs);

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }
    void act(const UinputDevice &panel);
    void send(const UinputDevice &panel, const std::vector<std::pair<int, int>> &keys);
    void wait(int msecs);

    std::mt19937 m_random;
    std::array<bool, Model::KeyCount> m_isDown{};
    std::vector<std::pair<int, int>> m_sent; ///< what the kernel should deliver: code and value
    int m_ticks = 0;
    int m_events = 0;
};

/// Sees the ticks of one timer before they happen.
class TickFilter : public QObject
{
public:
    TickFilter(QObject *timer, std::function<void()> before)
        : m_timer(timer)
        , m_before(std::move(before))
    {
        m_timer->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_timer && event->type() == QEvent::Timer)
            m_before();
        return false;
    }

private:
    QObject *m_timer;
    std::function<void()> m_before;
};

void RandomSequenceTest::send(const UinputDevice &panel,
                              const std::vector<std::pair<int, int>> &keys)
{
    std::vector<input_event> packet(keys.size() + 1);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto [code, value] = keys[i];
        packet[i].type = EV_KEY;
        packet[i].code = static_cast<decltype(packet[i].code)>(code);
        packet[i].value = value;
        // The kernel passes on changes, and every auto-repeat.
        bool &isDown = m_isDown.at(static_cast<std::size_t>(code - Model::FirstCode));
        if (value == 2 || isDown != (value == 1))
            m_sent.emplace_back(code, value);
        if (value != 2)
            isDown = value == 1;
    }
    const auto size = static_cast<ssize_t>(packet.size() * sizeof(input_event));
    ASSERT_EQ(::write(panel.descriptor(), packet.data(), static_cast<std::size_t>(size)), size);
}

void RandomSequenceTest::act(const UinputDevice &panel)
{
    std::vector<std::pair<int, int>> keys;
    for (int count = 1 + below(4) / 3; count > 0; --count) {
        const int key = below(Model::KeyCount);
        const bool isDown = m_isDown.at(static_cast<std::size_t>(key));
        keys.emplace_back(Model::FirstCode + key, below(8) == 0 ? 2 : isDown ? 0 : 1);
    }
    send(panel, keys);
    // Enough for a long press now and then.
    wait(below(4) == 0 ? 50 + below(200) : below(30));
}

void RandomSequenceTest::wait(int msecs)
{
    QElapsedTimer elapsed;
    elapsed.start();
    const bool isOver = waitFor([&] { return elapsed.elapsed() >= msecs; });
    EXPECT_TRUE(isOver);
}

void RandomSequenceTest::run(const Model::Registrations &registrations, qint64 msecs)
{
    m_isDown = {};
    m_sent.clear();
    Model::Trace seen(false);
    const Model::BusAndLog observed(seen);
    const UinputDevice panel({"panel", BUS_HOST, {30, 31, 32}, {}});
    Devices devices;
    WatchedKeys *keys = nullptr;
    devices.onAdd = [&](const QString &node, const QString &name) {
        keys = new WatchedKeys(name);
        devices.addKeyHandler(node, keys, QString());
    };
    ASSERT_TRUE(waitFor([&] { return keys != nullptr; }));

    KeyHandlerModel registered("panel");
    registered.setBus(LocalUI);
    for (const Model::KeyCall &call : registrations.calls) {
        registered.call(call, seen);
        Model::call(*keys, call);
    }
    Model::observeDetectors(*keys, seen);
    RealTimeModel model(registered);
    std::vector<std::pair<int, int>> delivered;
    std::string difference;
    const auto judge = [&](const std::string &found) {
        m_events += static_cast<int>(seen.observations().size());
        if (difference.empty())
            difference = found;
    };
    keys->before = [&] { seen.clear(); };
    keys->after = [&](const std::vector<Model::Record> &records) {
        for (const Model::Record &record : records) {
            if (record.type == EV_KEY)
                delivered.emplace_back(record.code, record.value);
        }
        judge(model.process(records, seen));
    };
    qint64 earliest = 0;
    QTimer *const timer = InputProbe::timer(*keys);
    const TickFilter filter(timer, [&] {
        seen.clear();
        earliest = QDateTime::currentMSecsSinceEpoch();
    });
    QObject::connect(timer, &QTimer::timeout, keys, [&] {
        ++m_ticks;
        seen.sortTick();
        judge(model.tick(earliest, QDateTime::currentMSecsSinceEpoch(), seen));
    });

    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < msecs && difference.empty())
        act(panel);
    // The library takes an auto-repeat of a key that is up for its press, so press all of them.
    for (const int value : {1, 0}) {
        for (int key = 0; key < Model::KeyCount; ++key)
            send(panel, {{Model::FirstCode + key, value}});
    }
    EXPECT_TRUE(waitFor([&] { return delivered.size() >= m_sent.size() && !timer->isActive(); }));
    EXPECT_EQ(delivered, m_sent) << "the kernel delivered something else";
    EXPECT_EQ(difference, "");
}

TEST_F(RandomSequenceTest, TheLibraryDoesWhatTheModelDoes)
{
    const QByteArray seedGiven = qgetenv("VORN_RANDOM_SEED");
    const unsigned seed = seedGiven.isEmpty() ? std::random_device()() : seedGiven.toUInt();
    const int seconds = qEnvironmentVariableIntValue("VORN_RANDOM_SECONDS");
    std::cout << "VORN_RANDOM_SEED=" << seed << std::endl;
    m_random.seed(seed);
    const auto &all = Model::allRegistrations();
    const qint64 share = (seconds > 0 ? seconds : 9) * 1000 / static_cast<qint64>(all.size());
    for (const Model::Registrations &registrations : all) {
        SCOPED_TRACE(registrations.name);
        run(registrations, share);
    }
    std::cout << m_ticks << " ticks, " << m_events << " signals and events\n";
    EXPECT_GT(m_ticks, 0);
    EXPECT_GT(m_events, 0);
}

} // namespace
