#include "GuestTest.h"
#include "UinputDevice.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <iostream>
#include <thread>

namespace {

/// The records that the kernel delivered to the library, as read() returned them.
struct Delivered
{
    std::atomic<bool> isRecording{false};
    std::vector<input_event> records;
} delivered;

} // namespace

// Replaces that of the C library in this process, for the library and Qt as well.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): reserved in the header
extern "C" __attribute__((visibility("default"))) ssize_t read(int fd, void *buffer, size_t size)
{
    const ssize_t result = syscall(SYS_read, fd, buffer, size);
    // Only the listener reads nodes with this size.
    if (result > 0 && size == 1024 && delivered.isRecording) {
        const auto *records = static_cast<const input_event *>(buffer);
        delivered.records.insert(delivered.records.end(), records,
                                 records + static_cast<std::size_t>(result) / sizeof(input_event));
    }
    return result;
}

namespace {

using testing::IsEmpty;

constexpr int keyRecords = 200'000;

struct Counts
{
    int keys = 0;
    int drops = 0; ///< how often the kernel reported that it had dropped records
};

Counts count(const std::vector<input_event> &records)
{
    Counts counts;
    for (const input_event &record : records) {
        counts.keys += record.type == EV_KEY ? 1 : 0;
        counts.drops += record.type == EV_SYN && record.code == SYN_DROPPED ? 1 : 0;
    }
    return counts;
}

std::ostream &operator<<(std::ostream &stream, const Counts &counts)
{
    return stream << counts.keys << " of " << keyRecords << " key records delivered, "
                  << keyRecords - counts.keys << " dropped in " << counts.drops << " SYN_DROPPED";
}

/// Reads a node with only poll() and read(), until told to stop and nothing is left.
class BareReader
{
public:
    explicit BareReader(const QString &node)
        : m_fd(::open(node.toUtf8().constData(), O_RDONLY | O_CLOEXEC))
        , m_thread([this] { run(); })
    { }
    ~BareReader() { ::close(m_fd); }
    BareReader(const BareReader &) = delete;
    BareReader &operator=(const BareReader &) = delete;

    const std::vector<input_event> &finish()
    {
        m_isEnding = true;
        m_thread.join();
        return m_records;
    }

private:
    void run()
    {
        std::array<input_event, 64> batch;
        pollfd ready = {m_fd, POLLIN, 0};
        for (;;) {
            const bool isEnding = m_isEnding;
            if (::poll(&ready, 1, 50) == 1) {
                const long size = syscall(SYS_read, m_fd, batch.data(), sizeof(batch));
                if (size <= 0)
                    return;
                m_records.insert(m_records.end(), batch.data(),
                                 batch.data() + static_cast<std::size_t>(size) / sizeof(batch[0]));
            } else if (isEnding) {
                return;
            }
        }
    }

    const int m_fd;
    std::atomic<bool> m_isEnding{false};
    std::vector<input_event> m_records;
    std::thread m_thread;
};

/// Clicks a key as fast as the kernel accepts it.
void flood(const UinputDevice &device)
{
    std::array<input_event, 4> click = {};
    click[0].type = EV_KEY;
    click[0].code = KEY_OK;
    click[0].value = 1;
    click[2].type = EV_KEY;
    click[2].code = KEY_OK;
    for (int i = 0; i < keyRecords / 2; ++i) {
        if (::write(device.descriptor(), click.data(), sizeof(click)) != sizeof(click))
            qFatal("the kernel accepts no more records: %s", std::strerror(errno));
    }
}

/// Keeps a copy of every record before it handles it.
class KeepingKeyHandler : public BasicKeyInputHandler
{
public:
    using BasicKeyInputHandler::BasicKeyInputHandler;

    void processEvent(const QList<input_event> &events) override
    {
        for (const input_event &event : events)
            records.push_back(event);
        BasicKeyInputHandler::processEvent(events);
    }

    std::vector<input_event> records;
};

/// What should be published for the records of one immediate key, 1 for a press. If the kernel
/// dropped a press, the library drops the release, which belongs to no press.
std::vector<int> publishedFor(const std::vector<input_event> &records)
{
    std::vector<int> published;
    bool isDown = false;
    for (const input_event &record : records) {
        if (record.type != EV_KEY || record.code != KEY_OK)
            continue;
        if (record.value != 0 || isDown)
            published.push_back(record.value);
        isDown = record.value != 0;
    }
    return published;
}

class LoadTest : public GuestTest
{ };

TEST_F(LoadTest, EveryDeliveredRecordIsReportedInOrder)
{
    UinputDevice panel({"front-panel", BUS_HOST, {KEY_OK, KEY_INFO}, {}});
    Devices devices;
    KeepingKeyHandler *keys = nullptr;
    devices.onAdd = [&](const QString &node, const QString &name) {
        keys = new KeepingKeyHandler(name);
        devices.addKeyHandler(node, keys, QString());
        keys->registerKey(KEY_OK, InputEvent::Confirm, true);
        keys->registerKey(KEY_INFO, InputEvent::Info, true);
    };
    ASSERT_TRUE(waitFor([&] { return keys != nullptr; }));
    // As in a product, which logs only problems.
    const LogRecorder warnings(log4cplus::WARN_LOG_LEVEL);
    constexpr std::size_t withSynchronisation = 3UL * keyRecords;
    delivered.records.reserve(withSynchronisation);
    keys->records.reserve(withSynchronisation);
    std::vector<int> published;
    published.reserve(keyRecords);
    bool isOver = false;
    const QMetaObject::Connection connection =
        QObject::connect(Input::instance(), &Input::inputEvent, [&](const InputEvent &event) {
            if (event.command() == InputEvent::Confirm)
                published.push_back(event.state() == InputEvent::KeyPressed ? 1 : 0);
            else
                isOver = true;
        });

    delivered.isRecording = true;
    BareReader bare(panel.node());
    std::atomic<bool> isWritten{false};
    std::thread writer([&] {
        flood(panel);
        isWritten = true;
    });
    EXPECT_TRUE(waitFor([&] { return isWritten.load(); }, 90'000));
    writer.join();
    const Counts bareCounts = count(bare.finish());
    std::size_t size = 0;
    do {
        size = delivered.records.size();
        const bool isMore = waitFor([&] { return delivered.records.size() > size; }, 300);
        Q_UNUSED(isMore)
    } while (delivered.records.size() > size);
    // If the last release was dropped, the key seems to be held and would form a chord with the
    // next one, so click it once more.
    panel.press(KEY_OK);
    panel.release(KEY_OK);
    panel.press(KEY_INFO);
    EXPECT_TRUE(waitFor([&] { return isOver; }));
    delivered.isRecording = false;
    QObject::disconnect(connection);

    Counts counts = count(delivered.records);
    counts.keys -= 3; // those after the flood
    std::cout << "library:   " << counts << "\nbare loop: " << bareCounts << '\n';
    // Records are missing only if the kernel reported that it dropped some.
    EXPECT_EQ(counts.keys<keyRecords, counts.drops> 0);
    EXPECT_EQ(bareCounts.keys<keyRecords, bareCounts.drops> 0);

    ASSERT_EQ(keys->records.size(), delivered.records.size());
    EXPECT_EQ(std::memcmp(keys->records.data(), delivered.records.data(),
                          delivered.records.size() * sizeof(input_event)),
              0);
    const std::vector<int> expected = publishedFor(delivered.records);
    std::cout << counts.keys + 2 - static_cast<int>(expected.size())
              << " releases without a press\n";
    EXPECT_EQ(published.size(), expected.size());
    EXPECT_TRUE(published == expected) << "in another order";
    EXPECT_THAT(warnings.texts(), IsEmpty());
}

} // namespace
