#include "Commands.h"
#include "Figures.h"
#include "Process.h"
#include "Setup.h"
#include "UinputDevice.h"
#include "vorn.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <deque>
#include <map>
#include <random>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace Vorn::Bench {

namespace {

// The key that is measured, and the one that ends a run: it arrives also when others were lost.
constexpr unsigned int measuredKey = KEY_OK;
constexpr unsigned int endKey = KEY_STOP;
// Let the programs be loaded and the caches fill before it counts.
constexpr int warmUpRecords = 20;
constexpr std::size_t readSize = 1024;

const char *const bareLoop = "bare loop";
const char *const emptyQtShape = "empty Qt shape";
const char *const library = "library";

qint64 wallClock()
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<qint64>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

qint64 stampOf(const input_event &record)
{
    return static_cast<qint64>(record.input_event_sec) * 1'000'000'000
        + static_cast<qint64>(record.input_event_usec) * 1000;
}

/// How long each record took, in nanoseconds; printed when all is over, since that takes time, too.
class Latencies
{
public:
    Latencies() { m_values.reserve(100'000); }

    /// To be called where a record is received.
    void add(qint64 stamp) { m_values.push_back(wallClock() - stamp); }

    void print() const
    {
        for (qint64 value : m_values)
            std::printf("%lld\n", static_cast<long long>(value));
    }

private:
    std::vector<qint64> m_values;
};

int openNode(const std::string &node)
{
    const int fd = ::open(node.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), "cannot open " + node);
    return fd;
}

/// The records of one read.
QList<input_event> readBatch(int fd)
{
    char buffer[readSize];
    const ssize_t bytes = ::read(fd, buffer, sizeof(buffer));
    if (bytes < 0)
        qFatal("cannot read the device: %s", std::strerror(errno));
    const int count = static_cast<int>(static_cast<std::size_t>(bytes) / sizeof(input_event));
    QList<input_event> batch;
    batch.reserve(count);
    for (int i = 0; i < count; ++i) {
        input_event record;
        std::memcpy(&record, buffer + static_cast<std::size_t>(i) * sizeof(record), sizeof(record));
        batch.append(record);
    }
    return batch;
}

void runBareLoop(const std::string &node)
{
    Latencies latencies;
    pollfd ready = {openNode(node), POLLIN, 0};
    announceReady();
    for (bool isOver = false; !isOver;) {
        if (::poll(&ready, 1, -1) < 0)
            throw std::system_error(errno, std::generic_category(), "cannot wait");
        input_event records[readSize / sizeof(input_event)];
        const ssize_t bytes = ::read(ready.fd, records, sizeof(records));
        if (bytes < 0)
            throw std::system_error(errno, std::generic_category(), "cannot read the device");
        const auto count = static_cast<std::size_t>(bytes) / sizeof(input_event);
        for (std::size_t i = 0; i < count; ++i) {
            if (records[i].type != EV_KEY)
                continue;
            if (records[i].code == measuredKey)
                latencies.add(stampOf(records[i]));
            else
                isOver = true;
        }
    }
    latencies.print();
}

/// What the library cannot do without: a notifier, and the list that its receivers get.
void runEmptyQtShape(const std::string &node)
{
    const Application application;
    Latencies latencies;
    const int fd = openNode(node);
    QSocketNotifier notifier(fd, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&latencies, fd] {
        const auto batch = readBatch(fd);
        for (const input_event &record : batch) {
            if (record.type != EV_KEY)
                continue;
            if (record.code == measuredKey)
                latencies.add(stampOf(record));
            else
                QCoreApplication::quit();
        }
    });
    announceReady();
    QCoreApplication::exec();
    latencies.print();
}

/// Notes the stamps of the key records, which the events do not carry.
class StampingKeyHandler : public BasicKeyInputHandler
{
public:
    using BasicKeyInputHandler::BasicKeyInputHandler;

    void processEvent(const QList<input_event> &events) override
    {
        for (const input_event &event : events) {
            if (event.type == EV_KEY && event.code == measuredKey)
                stamps.push_back(stampOf(event));
        }
        BasicKeyInputHandler::processEvent(events);
    }

    std::deque<qint64> stamps;
};

void runLibrary(const std::string &node)
{
    const Application application;
    Latencies latencies;
    StampingKeyHandler keys(QStringLiteral("bench-panel"));
    keys.registerKey(measuredKey, InputEvent::Confirm, true);
    keys.registerKey(endKey, InputEvent::Stop, true);
    LinuxInputListener listener(&keys, QString::fromStdString(node), LinuxInputListener::Key);
    keys.setListener(&listener);
    const QObject receiver;
    Vorn::connect(Input::instance(), &Input::inputEvent, &receiver,
                  [&latencies, &keys](const InputEvent &event) {
                      if (event.command() != InputEvent::Confirm) {
                          QCoreApplication::quit();
                          return;
                      }
                      // One event for each record of an immediate key, in order. A release that
                      // was lost would be made up when the last key comes.
                      if (keys.stamps.empty())
                          qFatal("an event without a record");
                      latencies.add(keys.stamps.front());
                      keys.stamps.pop_front();
                  });
    announceReady();
    QCoreApplication::exec();
    latencies.print();
}

/// Has this process give way to whoever wakes up, while this lives: a key is no process, and does
/// not compete with its reader for a processor.
class GivingWay
{
public:
    GivingWay() { set(SCHED_IDLE); }
    ~GivingWay() { set(SCHED_OTHER); }
    GivingWay(const GivingWay &) = delete;
    GivingWay &operator=(const GivingWay &) = delete;

private:
    static void set(int policy)
    {
        const sched_param none = {};
        if (::sched_setscheduler(0, policy, &none) != 0)
            qFatal("cannot change how this process is scheduled: %s", std::strerror(errno));
    }
};

/// Sends a record and its synchronisation record at once, as a driver does.
void send(const UinputDevice &device, unsigned int code, int value)
{
    std::array<input_event, 2> records = {};
    records[0].type = EV_KEY;
    records[0].code = static_cast<decltype(records[0].code)>(code);
    records[0].value = value;
    if (::write(device.descriptor(), records.data(), sizeof(records)) != sizeof(records))
        throw std::system_error(errno, std::generic_category(), "no record on the device");
}

/// Presses and releases the key like a hand that is quick, so that each record finds its reader
/// asleep; each time the same way.
void writeClicks(const UinputDevice &device, int records)
{
    const GivingWay givingWay;
    // NOLINTNEXTLINE(cert-msc51-cpp,cert-msc32-c): the same for every subject
    std::mt19937 random(1);
    std::uniform_int_distribution<int> pause(5000, 15'000);
    for (int i = 0; i < records; ++i) {
        send(device, measuredKey, i % 2 == 0 ? 1 : 0);
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
    }
    send(device, endKey, 1);
    send(device, endKey, 0);
}

/// One run of one subject; the latencies in microseconds, in ascending order.
std::vector<double> measureOnce(const UinputDevice &device, const std::string &subject, int records)
{
    Process process(
        {ownPath(), "subject", "latency", "--reader", subject, device.node().toStdString()});
    process.waitUntilReady();
    writeClicks(device, warmUpRecords + records);
    std::vector<double> latencies = process.finish(std::chrono::seconds(20));
    const auto sent = static_cast<std::size_t>(warmUpRecords) + static_cast<std::size_t>(records);
    if (latencies.size() != sent) {
        throw std::runtime_error(subject + " has received " + std::to_string(latencies.size())
                                 + " of " + std::to_string(sent) + " records");
    }
    latencies.erase(latencies.begin(), latencies.begin() + warmUpRecords);
    for (double &latency : latencies)
        latency /= 1000;
    std::sort(latencies.begin(), latencies.end());
    return latencies;
}

} // namespace

void runLatencySubject(const std::string &subject, const std::string &node)
{
    if (subject == bareLoop)
        runBareLoop(node);
    else if (subject == emptyQtShape)
        runEmptyQtShape(node);
    else if (subject == library)
        runLibrary(node);
    else
        throw std::runtime_error("there is no subject '" + subject + "'");
}

void measureLatency(const Options &options)
{
    const char *const subjects[] = {bareLoop, emptyQtShape, library};
    const std::pair<const char *, double> figures[] = {{"p50", 50}, {"p99", 99}, {"max", 100}};
    std::map<std::string, std::map<std::string, std::vector<double>>> results;
    const auto device = makeDevice();
    for (int run = 1; run <= options.runs; ++run) {
        // In turn, so that what else the machine does strikes all of them.
        for (const char *subject : subjects) {
            const std::vector<double> latencies = measureOnce(*device, subject, options.records);
            for (const auto &[name, percent] : figures)
                results[subject][name].push_back(percentile(latencies, percent));
            std::fprintf(stderr, "latency, run %d of %d, %s: p50 %.1f us of %zu records\n", run,
                         options.runs, subject, results[subject]["p50"].back(), latencies.size());
        }
    }

    for (const char *subject : subjects) {
        Figure row = {"latency", subject, "clicks", "2", dispatcher(), {}, "us"};
        for (const auto &[name, percent] : figures) {
            row.figure = name;
            print(row, results[subject][name]);
        }
        if (subject == bareLoop)
            continue;
        // Of the same round, for how far apart they are at most.
        const std::vector<double> &own = results[subject]["p50"];
        const std::vector<double> &bare = results[bareLoop]["p50"];
        std::vector<double> ratios;
        for (std::size_t i = 0; i < own.size(); ++i)
            ratios.push_back(own[i] / bare[i]);
        const auto [low, high] = std::minmax_element(ratios.begin(), ratios.end());
        row.figure = "p50 to bare loop";
        row.unit = "ratio";
        print(row, median(own) / median(bare), *low, *high, ratios.size());
    }
}

} // namespace Vorn::Bench
