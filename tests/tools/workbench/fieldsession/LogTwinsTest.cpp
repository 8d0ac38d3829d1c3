#include "LogTwins.h"

#include <linux/input.h>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::IsNull;
using testing::NotNull;

namespace {

class LogTwinsTest : public testing::Test
{
protected:
    LogRecordPtr add(int type, int code)
    {
        auto record = std::make_shared<LogRecord>();
        if (!m_read.origin)
            m_read.origin = LogOrigins::unnamed();
        record->origin = m_read.origin;
        record->type = type;
        record->code = code;
        record->value = type == EV_KEY ? 1 : 0;
        record->time = m_time.now;
        if (type == EV_KEY)
            m_read.records.push_back(record);
        m_twins.add(record, &m_read);
        return record;
    }

    LogRecordPtr press(int code)
    {
        LogRecordPtr record = add(EV_KEY, code);
        add(EV_SYN, SYN_REPORT);
        return record;
    }

    /// By both listeners, and a handler takes the record of the first.
    LogRecordPtr pressTwice(int code)
    {
        press(code)->isTaken = true;
        return press(code);
    }

    LineTime m_time;
    LogDevices m_devices;
    LogOrigins m_origins{&m_devices};
    LogTwins m_twins{&m_time, &m_devices, &m_origins};
    LogRead m_read;
};

} // namespace

TEST_F(LogTwinsTest, AreOfTheOtherListener)
{
    const LogRecordPtr first = press(KEY_A);
    const LogRecordPtr twin = press(KEY_A);
    EXPECT_EQ(twin->twin, first);
    EXPECT_TRUE(first->isPaired);
    EXPECT_TRUE(twin->origin->isSame(*first->origin));
    EXPECT_THAT(m_read.records, ElementsAre(first));
}

TEST_F(LogTwinsTest, DoNotExistIfEachDeviceHasOneListener)
{
    m_origins.setComplete(true);
    const LogRecordPtr first = press(KEY_A);
    const LogRecordPtr second = press(KEY_A);
    EXPECT_THAT(m_read.records, ElementsAre(first, second));
}

TEST_F(LogTwinsTest, AreTakenBackOnceTheirRecordIsTaken)
{
    const LogRecordPtr first = press(KEY_A);
    const LogRecordPtr twin = press(KEY_A);
    EXPECT_THAT(m_twins.takeBack(KEY_A, KeyValue::Press), IsNull());
    first->isTaken = true;
    EXPECT_EQ(m_twins.takeBack(KEY_A, KeyValue::Press), twin);
    EXPECT_TRUE(twin->isTaken);
    EXPECT_THAT(twin->twin, IsNull());
    EXPECT_FALSE(first->isPaired);
}

TEST_F(LogTwinsTest, AreTakenBackOnce)
{
    pressTwice(KEY_A);
    const LogRecordPtr other = pressTwice(KEY_B);
    EXPECT_THAT(m_twins.takeBack(KEY_A, KeyValue::Press), NotNull());
    EXPECT_EQ(m_twins.takeBack({}, KeyValue::Press), other);
    EXPECT_THAT(m_twins.takeBack({}, KeyValue::Any), IsNull());
}

TEST_F(LogTwinsTest, AreTakenBackIfTheyAreAmongTheLastSixteenRecords)
{
    // With the end of the packet they are seventeen.
    constexpr int last = KEY_1 + 15;
    for (int code = KEY_1; code < last; ++code)
        add(EV_KEY, code)->isTaken = true;
    press(last);
    for (int code = KEY_1; code < last; ++code)
        add(EV_KEY, code);
    press(last);
    EXPECT_THAT(m_twins.takeBack(KEY_1, KeyValue::Press), IsNull());
    EXPECT_THAT(m_twins.takeBack(KEY_1 + 1, KeyValue::Press), NotNull());
}

TEST_F(LogTwinsTest, EndAPacketThatIsTooLongForARead)
{
    for (std::size_t i = 0; i < LogRead::maxRecords; ++i)
        add(EV_KEY, KEY_A);
    EXPECT_TRUE(m_read.origin);
    add(EV_KEY, KEY_A);
    EXPECT_FALSE(m_read.origin);
}
