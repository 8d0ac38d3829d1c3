#include "LatencyReaders.h"

#include "Application.h"
#include "BasicInputHandler.h"
#include "Process.h"
#include "vorn.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <deque>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace Vorn::Bench {

namespace {

constexpr std::size_t readSize = 1024;

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

/// How long each record took, in nanoseconds. Printed only at the end, since printing takes time.
class Latencies
{
public:
    Latencies() { m_values.reserve(100'000); }

    /// To be called when a record is received.
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

/// The bare minimum of the library: a notifier, and the list its receivers get.
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

/// Keeps the timestamps of the key records, which the events do not carry.
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
                      // An immediate key gives one event per record, in order. Instead of a lost
                      // release, the library would report a synthetic one on the end key.
                      if (keys.stamps.empty())
                          qFatal("an event without a record");
                      latencies.add(keys.stamps.front());
                      keys.stamps.pop_front();
                  });
    announceReady();
    QCoreApplication::exec();
    latencies.print();
}

} // namespace

void runLatencyReader(const std::string &reader, const std::string &node)
{
    if (reader == bareLoop)
        runBareLoop(node);
    else if (reader == emptyQtShape)
        runEmptyQtShape(node);
    else if (reader == library)
        runLibrary(node);
    else
        throw std::runtime_error("unknown reader '" + reader + "'");
}

} // namespace Vorn::Bench
