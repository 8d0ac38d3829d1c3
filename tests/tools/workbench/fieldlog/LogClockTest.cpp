#include "LogClock.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using testing::HasSubstr;

namespace {

constexpr qint64 second = 1'000'000;

Vorn::Workbench::LogLine lineAt(qint64 time, std::optional<qint64> uptime = std::nullopt)
{
    Vorn::Workbench::LogLine line;
    line.time = time;
    line.hasDate = true;
    line.uptime = uptime;
    return line;
}

std::string remark(const LogClock::Reading &reading)
{
    return reading.remark.toStdString();
}

} // namespace

TEST(LogClock, CountsFromTheFirstLine)
{
    LogClock clock;
    EXPECT_EQ(clock.at(lineAt(100 * second)).time, 0);
    const LogClock::Reading reading = clock.at(lineAt(101 * second));
    EXPECT_EQ(reading.time, second);
    EXPECT_EQ(remark(reading), "");
}

TEST(LogClock, StandsStillWhereTheClockIsSetBackAndSaysSo)
{
    LogClock clock;
    clock.at(lineAt(7300 * second));
    LogClock::Reading reading = clock.at(lineAt(100 * second));
    EXPECT_EQ(reading.time, 0);
    EXPECT_EQ(remark(reading), "the clock was set back by 2 h, or the lines are out of order");
    reading = clock.at(lineAt(103 * second));
    EXPECT_EQ(reading.time, 3 * second);
    EXPECT_EQ(remark(reading), "");
}

TEST(LogClock, IgnoresThreadsThatGetIntoEachOthersWay)
{
    LogClock clock;
    clock.at(lineAt(second));
    EXPECT_EQ(remark(clock.at(lineAt(second - 5000))), "");
    EXPECT_EQ(clock.at(lineAt(second + 1000)).time, 1000) << "not the way back as well";
}

TEST(LogClock, TellsALeapWithoutAnOpinion)
{
    LogClock clock;
    clock.at(lineAt(0));
    const LogClock::Reading reading = clock.at(lineAt(50 * 3600 * second));
    EXPECT_EQ(reading.time, 50 * 3600 * second);
    EXPECT_EQ(remark(reading),
              "the time leaps by 2 d 2 h: nothing was logged, or the clock was set");
}

TEST(LogClock, LeavesOutLeapsThatNoSessionCanHold)
{
    LogClock clock;
    clock.at(lineAt(0));
    LogClock::Reading reading = clock.at(lineAt(20'000 * 86'400 * second));
    EXPECT_EQ(reading.time, 0);
    EXPECT_EQ(remark(reading),
              "the time leaps by 20000 d: the clock was set, or nothing was logged; the session "
              "goes on without a gap");
    reading = clock.at(lineAt((20'000 * 86'400 + 1) * second));
    EXPECT_EQ(reading.time, second);
    EXPECT_EQ(remark(reading), "");
}

TEST(LogClock, CountsFromTheFirstLineWithoutADate)
{
    for (const qint64 first : {100 * second, -5 * second}) {
        auto line = lineAt(first);
        line.hasDate = false;
        LogClock clock;
        const LogClock::Reading reading = clock.at(line);
        EXPECT_EQ(reading.time, 0);
        EXPECT_EQ(remark(reading), "");
        line.time = first + second;
        EXPECT_EQ(clock.at(line).time, second);
        EXPECT_EQ(remark(clock.at(line)), "");
    }
}

TEST(LogClock, TellsALeapByItsTwoLargestUnits)
{
    const auto told = [](qint64 leap) {
        LogClock clock;
        clock.at(lineAt(0));
        std::string text = remark(clock.at(lineAt(-leap)));
        const std::string front = "the clock was set back by ";
        const std::string end = ", or the lines are out of order";
        if (text.size() < front.size() + end.size())
            return text;
        return text.substr(front.size(), text.size() - front.size() - end.size());
    };
    EXPECT_EQ(told(second / 10), "") << "threads may get into each other's way";
    EXPECT_EQ(told(second / 10 + 1), "100 ms");
    EXPECT_EQ(told(second), "1 s");
    EXPECT_EQ(told(61'500'000), "1 min 1 s") << "not the milliseconds as well";
    EXPECT_EQ(told(60'500'000), "1 min") << "the unit in between counts, too";
    EXPECT_EQ(told(1'999'999), "1 s 999 ms");
    EXPECT_EQ(told(3661 * second), "1 h 1 min");
    EXPECT_EQ(told(3601 * second), "1 h");
    EXPECT_EQ(told(90'000 * second), "1 d 1 h");
    EXPECT_EQ(told(86'400 * second), "1 d");
    EXPECT_EQ(told(86'399 * second), "23 h 59 min");
}

TEST(LogClock, TellsLeapsOfMoreThanADay)
{
    const auto told = [](qint64 leap) {
        LogClock clock;
        clock.at(lineAt(0));
        return remark(clock.at(lineAt(leap)));
    };
    const qint64 day = 86'400 * second;
    EXPECT_EQ(told(day), "");
    EXPECT_THAT(told(day + 1), HasSubstr("nothing was logged, or the clock was set"));
    EXPECT_THAT(told(100 * day), HasSubstr("nothing was logged, or the clock was set"));
    EXPECT_THAT(told(100 * day + 1), HasSubstr("goes on without a gap"));
}

TEST(LogClock, LastsAsLongAsASessionCan)
{
    const qint64 hundredDays = 100 * 86'400 * second;
    LogClock clock;
    clock.at(lineAt(0));
    for (int i = 1; i < 365; ++i)
        clock.at(lineAt(i * hundredDays));
    EXPECT_EQ(clock.at(lineAt(365 * hundredDays)).time, 365 * hundredDays);
    EXPECT_EQ(clock.at(lineAt(366 * hundredDays)).time, 365 * hundredDays);
}

TEST(LogClock, ComparesTheUptimeToHalfASecond)
{
    LogClock clock;
    clock.at(lineAt(0, 10 * second));
    EXPECT_EQ(remark(clock.at(lineAt(second + second / 2, 11 * second))), "");
    EXPECT_EQ(remark(clock.at(lineAt(3 * second + 1, 12 * second))),
              "the clock was set forward by 500 ms");
    EXPECT_EQ(clock.at(lineAt(3 * second + 1, 12 * second)).time, 2 * second);
    EXPECT_EQ(clock.at(lineAt(5 * second)).time, 3'999'999) << "one without";
    EXPECT_EQ(clock.at(lineAt(6 * second, 90 * second)).time, 4'999'999);
}

TEST(LogClock, GoesOnAfterALineWithoutATime)
{
    LogClock clock;
    clock.at(lineAt(10 * second));
    EXPECT_EQ(clock.at({}).time, 0);
    EXPECT_EQ(remark(clock.at({})), "");
    const LogClock::Reading reading = clock.at(lineAt(12 * second));
    EXPECT_EQ(reading.time, 2 * second);
    EXPECT_EQ(remark(reading), "");
}

TEST(LogClock, KnowsFromTheUptimeHowMuchTimeHasPassed)
{
    LogClock clock;
    clock.at(lineAt(0, 10 * second));
    const LogClock::Reading reading = clock.at(lineAt(3600 * second, 12 * second));
    EXPECT_EQ(reading.time, 2 * second);
    EXPECT_EQ(remark(reading), "the clock was set forward by 59 min 58 s");
    EXPECT_EQ(remark(clock.at(lineAt(3500 * second, 13 * second))),
              "the clock was set back by 1 min 41 s");
    EXPECT_EQ(remark(clock.at(lineAt(3510 * second, 2 * second))), "")
        << "the system started again";
}

TEST(LogClock, DoesNotMixTimesWithAndWithoutADate)
{
    LogClock clock;
    clock.at(lineAt(1'000'000 * second));
    auto line = lineAt(3600 * second);
    line.hasDate = false;
    LogClock::Reading reading = clock.at(line);
    EXPECT_EQ(reading.time, 0);
    EXPECT_THAT(remark(reading), HasSubstr("cannot be compared"));
    line.time = 3601 * second;
    reading = clock.at(line);
    EXPECT_EQ(reading.time, second);
    EXPECT_EQ(remark(reading), "");
}

TEST(LogClock, StandsStillWithoutTimes)
{
    LogClock clock;
    EXPECT_EQ(clock.at({}).time, 0);
    const LogClock::Reading reading = clock.at({});
    EXPECT_EQ(reading.time, 0);
    EXPECT_EQ(remark(reading), "");
}
