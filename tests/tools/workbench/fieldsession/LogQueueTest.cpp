#include "LogQueue.h"

#include <linux/input.h>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *path = "/dev/input/event0";
constexpr qint64 second = 1'000'000;

class LogQueueTest : public testing::Test
{
protected:
    static LogDevicePtr device(bool hasSwitches)
    {
        auto made = std::make_shared<LogDevice>();
        made->path = path;
        made->bus = InputEvent::Bus::USB;
        made->readsKeys = true;
        made->readsSwitches = hasSwitches;
        return made;
    }

    static LogOriginPtr reader(int descriptor, bool hasSwitches = true)
    {
        auto origin = std::make_shared<LogOrigin>(descriptor);
        origin->setDevice(device(hasSwitches));
        return origin;
    }

    LogRecordPtr add(const LogOriginPtr &origin, int code, qint64 time = 0, int type = EV_KEY)
    {
        auto record = std::make_shared<LogRecord>();
        record->origin = origin;
        record->type = type;
        record->code = code;
        record->value = 1;
        record->time = time;
        m_queue.addRecord(record, time);
        return record;
    }

    void tell(const LogRecordPtr &record, LogQueue::Doubt doubt = LogQueue::Doubt::Unread)
    {
        m_queue.addOutcome(0, record, {}, doubt);
    }

    void have(LibraryLogger logger, const LibraryMessage &what)
    {
        m_coverage.add({logger, LogLevel::Debug, what});
    }

    /// "event0 30": the records that came out.
    std::vector<std::string> records()
    {
        m_queue.finish();
        std::vector<std::string> texts;
        for (const SessionEntry &entry : m_entries) {
            if (const auto *record = std::get_if<RecordRead>(&entry.what))
                texts.push_back(record->device.section('/', -1).toStdString() + " "
                                + std::to_string(record->code));
        }
        return texts;
    }

    std::vector<std::string> outcomes()
    {
        m_queue.finish();
        std::vector<std::string> texts;
        for (const SessionEntry &entry : m_entries) {
            if (const auto *outcome = std::get_if<RecordOutcome>(&entry.what))
                texts.push_back(std::to_string(outcome->code) + " "
                                + std::to_string(static_cast<int>(outcome->what)) + " "
                                + outcome->reason.toStdString());
        }
        return texts;
    }

    LogCoverage m_coverage;
    std::vector<SessionEntry> m_entries;
    LogQueue m_queue{&m_coverage,
                     [this](const SessionEntry &entry) { m_entries.push_back(entry); }};
};

} // namespace

TEST_F(LogQueueTest, HoldsBackWhatIsOfAnUnknownDevice)
{
    const LogOriginPtr open = std::make_shared<LogOrigin>(5);
    m_queue.add(1, Remark{"a"});
    add(open, 30);
    m_queue.add(2, Remark{"b"});
    m_queue.passOn();
    EXPECT_EQ(m_entries.size(), 1U);
    open->setLabel("panel");
    m_queue.passOn();
    EXPECT_EQ(m_entries.size(), 3U);
    EXPECT_THAT(records(), ElementsAre("panel 30"));
}

TEST_F(LogQueueTest, DoesNotHoldBackForEver)
{
    add(std::make_shared<LogOrigin>(5), 30);
    for (int i = 1; i < 19'999; ++i)
        m_queue.add(0, Remark());
    m_queue.passOn();
    EXPECT_THAT(m_entries, IsEmpty());
    m_queue.add(0, Remark());
    m_queue.passOn();
    EXPECT_EQ(m_entries.size(), 20'000U);
    EXPECT_THAT(records(), ElementsAre("descriptor 5 30"));
}

TEST_F(LogQueueTest, BeginsOnceItHasShownWhatTheLogHas)
{
    for (int i = 0; i < 1'999; ++i)
        m_queue.add(0, Remark());
    EXPECT_FALSE(m_queue.mayBegin());
    m_queue.add(0, Remark());
    EXPECT_TRUE(m_queue.mayBegin());
    EXPECT_FALSE(m_queue.hasBegun());
    m_queue.begin();
    EXPECT_TRUE(m_queue.hasBegun());
}

TEST_F(LogQueueTest, HasTimesThatDoNotGoBack)
{
    for (const qint64 time : {5, 3, 7})
        m_queue.add(time, Remark());
    m_queue.finish();
    std::vector<qint64> times;
    for (const SessionEntry &entry : m_entries)
        times.push_back(entry.time);
    EXPECT_THAT(times, ElementsAre(5, 5, 7));
}

TEST_F(LogQueueTest, NamesTheDeviceOfAnEvent)
{
    m_queue.add(0, EventPublished(), reader(5));
    m_queue.add(0, EventPublished(), std::make_shared<LogOrigin>(5));
    m_queue.add(0, EventPublished(), std::make_shared<LogOrigin>(std::nullopt));
    m_queue.add(0, DetectorStep(), reader(5));
    m_queue.finish();
    std::vector<std::string> devices;
    for (const SessionEntry &entry : m_entries) {
        if (const auto *event = std::get_if<EventPublished>(&entry.what))
            devices.push_back(event->device.toStdString() + " "
                              + std::to_string(static_cast<int>(event->bus)));
    }
    EXPECT_THAT(devices, ElementsAre("/dev/input/event0 4", "descriptor 5 0", " 0"));
    EXPECT_EQ(std::get<DetectorStep>(m_entries.back().what).device, path);
}

TEST_F(LogQueueTest, PassesOnOnceWhatTwoReadersHaveRead)
{
    const LogOriginPtr keys = reader(5);
    const LogOriginPtr switches = reader(6);
    add(keys, 30);
    add(keys, 48);
    add(switches, 30);
    add(switches, 48);
    add(switches, 46);
    add(keys, 46);
    add(keys, 30);
    add(keys, 30);
    EXPECT_THAT(records(),
                ElementsAre("event0 30", "event0 48", "event0 46", "event0 30", "event0 30"));
}

TEST_F(LogQueueTest, PassesOnAllThatASingleReaderHasRead)
{
    add(reader(5, false), 30);
    add(reader(6, false), 30);
    EXPECT_THAT(records(), ElementsAre("event0 30", "event0 30"));
}

TEST_F(LogQueueTest, BeginsAnewWhereTheReadersDiffer)
{
    const LogOriginPtr keys = reader(5);
    const LogOriginPtr switches = reader(6);
    add(keys, 30);
    add(keys, 48);
    add(switches, 46);
    add(keys, 46);
    add(switches, 48);
    add(keys, 48);
    EXPECT_THAT(records(), ElementsAre("event0 30", "event0 48", "event0 46", "event0 48"));
}

TEST_F(LogQueueTest, WaitsASecondForTheOtherReader)
{
    const LogOriginPtr keys = reader(5);
    const LogOriginPtr switches = reader(6);
    add(keys, 30, 0);
    add(switches, 30, second);
    add(keys, 48, 2 * second);
    add(switches, 48, 3 * second + 1);
    EXPECT_THAT(records(), ElementsAre("event0 30", "event0 48", "event0 48"));
}

TEST_F(LogQueueTest, RemembersAThousandRecordsOfOneReader)
{
    const LogOriginPtr keys = reader(5);
    const LogOriginPtr switches = reader(6);
    for (int code = 0; code < 1'000; ++code)
        add(keys, code);
    add(switches, 0);
    EXPECT_EQ(records().size(), 1'000U);
    m_queue.add(0, DeviceChange{path, {}, InputEvent::Bus::NoBus, false});
    m_entries.clear();
    for (int code = 0; code < 1'002; ++code)
        add(keys, code);
    add(switches, 0);
    EXPECT_EQ(records().size(), 1'003U) << "the first one is forgotten";
}

TEST_F(LogQueueTest, ForgetsWhatADeviceHasReadThatIsGone)
{
    add(reader(5), 30);
    m_queue.add(0, DeviceChange{path, {}, InputEvent::Bus::NoBus, false});
    add(reader(6), 30);
    EXPECT_THAT(records(), ElementsAre("event0 30", "event0 30"));
}

TEST_F(LogQueueTest, TellsOneOutcomeOfARecord)
{
    have(LibraryLogger::Input, Said::EventOnBus());
    have(LibraryLogger::KeyProcessing, Said::KeysStored());
    const LogRecordPtr first = add(reader(5), 30);
    const LogRecordPtr other = add(reader(6), 30);
    tell(first);
    tell(other, LogQueue::Doubt::None);
    tell(other, LogQueue::Doubt::None);
    tell(first);
    EXPECT_THAT(outcomes(), ElementsAre("30 0 "));
}

TEST_F(LogQueueTest, TellsThatBothReadersLeftARecordToEachOther)
{
    have(LibraryLogger::Input, Said::EventOnBus());
    have(LibraryLogger::KeyProcessing, Said::KeysStored());
    const LogRecordPtr first = add(reader(5), 30);
    const LogRecordPtr other = add(reader(6), 30);
    tell(first);
    tell(other);
    const LogRecordPtr alone = add(reader(5), 48);
    tell(alone);
    EXPECT_THAT(outcomes(),
                ElementsAre("30 5 no key handler took it: the listener had no receiver"));
}

TEST_F(LogQueueTest, SaysWhatItCanOfARecordThatNobodyTook)
{
    const auto told = [this](LogQueue::Doubt doubt, int type = EV_KEY, bool isKnown = true) {
        m_entries.clear();
        tell(add(isKnown ? reader(5, false) : std::make_shared<LogOrigin>(5), 1, 0, type), doubt);
        return outcomes().back();
    };
    using Doubt = LogQueue::Doubt;
    EXPECT_EQ(told(Doubt::None), "1 0 ");
    EXPECT_EQ(told(Doubt::Unread), "1 7 the log does not say: it has no events");
    EXPECT_EQ(told(Doubt::Unmapped), "1 7 the log does not say: it has no events");
    have(LibraryLogger::Input, Said::EventOnBus());
    EXPECT_EQ(told(Doubt::Unmapped), "1 4 ");
    EXPECT_EQ(told(Doubt::Unread),
              "1 7 the log has no event that follows from it, and no steps of the detectors");
    EXPECT_EQ(told(Doubt::Unread, EV_SW),
              "1 7 nothing was published: it has no handler, or the handler has no command for it");
    EXPECT_EQ(told(Doubt::Unread, EV_KEY, false),
              "1 7 the log has no event that follows from it, and no steps of the detectors");
    have(LibraryLogger::KeyProcessing, Said::KeysStored());
    EXPECT_EQ(told(Doubt::Unread), "1 5 no key handler took it: the listener had no receiver");
    EXPECT_EQ(told(Doubt::Unread, EV_KEY, false),
              "1 7 no key handler took it: the listener had no receiver, or it is that of the "
              "switches of a device");
    EXPECT_EQ(told(Doubt::Unread, EV_SW, false),
              "1 7 nothing was published: it has no handler, or the handler has no command for it");
}
