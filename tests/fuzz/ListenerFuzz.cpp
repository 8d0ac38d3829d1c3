#include "FuzzedProcess.h"
#include "HandlerPair.h"
#include "InputSubsystem.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

/*
 *  Bytes of a node, read by a listener: whole records, torn ones, none. The receiver must get
 * exactly the whole records of each read, and do with them what the model does. Each read is a byte
 * of length and as many bytes.
 */

namespace {

using Model::Bytes;
using Model::HandlerPair;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

constexpr int LocalUI = 2;
constexpr int readSize = 1024;
/// Years beyond which the milliseconds of a stamp do not fit; the kernel's never get there.
constexpr std::int64_t latestSecond = 1LL << 40;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

InputNode &node()
{
    static auto *const subsystem = new InputSubsystem;
    if (!subsystem->node(0).isPlugged()) {
        subsystem->setRecording(false);
        subsystem->plug(
            0, DeviceDescription::keyboard("panel", BUS_HOST, {30, 31, 32}).withSwitches({0, 1}));
    }
    return subsystem->node(0);
}

/// Passes batches on to a handler, or keeps them.
class Receiver : public InputHandler
{
public:
    explicit Receiver(InputHandler *next)
        : m_next(next)
    { }

    void setId(const QString &) override { }
    void invalidate() override { }
    void processEvent(const QList<input_event> &events) override
    {
        batches.push_back(events);
        if (m_next)
            m_next->processEvent(events);
    }

    std::vector<QList<input_event>> batches;

private:
    InputHandler *m_next;
};

/// The whole records of a read, with times that can be calculated with.
QByteArray tamed(const std::vector<std::uint8_t> &bytes)
{
    QByteArray read(reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size()));
    constexpr int size = sizeof(input_event);
    for (int at = 0; at + size <= read.size(); at += size) {
        input_event record;
        std::memcpy(&record, read.constData() + at, sizeof record);
        record.input_event_sec = static_cast<decltype(record.input_event_sec)>(
            static_cast<std::int64_t>(record.input_event_sec) % latestSecond);
        std::memcpy(read.data() + at, &record, sizeof record);
    }
    return read;
}

void expectRead(const Receiver &receiver, const QByteArray &bytes)
{
    const auto count = bytes.size() / static_cast<int>(sizeof(input_event));
    require(receiver.batches.size() == (count > 0 ? 1U : 0U));
    if (count == 0)
        return;
    const QList<input_event> &batch = receiver.batches.front();
    require(batch.size() == count);
    for (int i = 0; i < count; ++i) {
        require(std::memcmp(&batch[i],
                            bytes.constData() + i * static_cast<int>(sizeof(input_event)),
                            sizeof(input_event))
                == 0);
    }
}

void play(const std::vector<std::uint8_t> &input)
{
    prepareFuzzedProcess();
    // Only here, since libFuzzer measures its own time.
    Vorn::Sim::VirtualClock clock;
    InputNode &panel = node();
    Bytes bytes(input);
    const auto type = static_cast<LinuxInputListener::Type>(bytes.below(3));
    LinuxInputListener listener(nullptr, panel.path(), type);
    HandlerPair pair(clock, &listener, LocalUI, bytes.below(4) == 0);
    for (int count = bytes.below(8); count > 0; --count)
        pair.call(keyCallFrom(bytes, 30));
    Receiver receiver(&pair.handler());
    listener.setHandler(&receiver);
    while (!bytes.isOver()) {
        std::vector<std::uint8_t> read;
        for (int length = bytes.below(256) * 5 % (readSize + 1); length > 0 && !bytes.isOver();
             --length)
            read.push_back(static_cast<std::uint8_t>(bytes.below(256)));
        const QByteArray sent = tamed(read);
        receiver.batches.clear();
        panel.sendBytes(sent);
        clock.settle();
        expectRead(receiver, sent);
        if (!receiver.batches.empty())
            pair.expect(Model::toRecords(receiver.batches.front()));
        pair.requireSame();
        if (bytes.below(4) == 3)
            pair.tick();
    }
    listener.setHandler(nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    play(std::vector<std::uint8_t>(data, data + size));
    return 0;
}
