#include "LogLineMaker.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

LogFields relative(qint64 milliseconds, std::string_view pid = {})
{
    LogFields fields;
    fields.sinceStart = milliseconds * 1000;
    fields.pid = pid;
    return fields;
}

std::string process(LogLineMaker *maker, const LogFields &fields)
{
    return maker->line(fields).process.toStdString();
}

} // namespace

TEST(LogLineMaker, KeepsWhatTheLineHas)
{
    LogFields fields;
    fields.level = LogLevel::Warn;
    fields.thread = "main";
    fields.logger = "Input";
    fields.message = "\xc3\xa4";
    fields.lost = 7;
    LogLineMaker maker(QTimeZone::utc());
    const LogLine line = maker.line(fields);
    EXPECT_EQ(line.level, LogLevel::Warn);
    EXPECT_EQ(line.thread, "main");
    EXPECT_EQ(line.logger, "Input");
    EXPECT_EQ(line.message, QString::fromUtf8("\xc3\xa4"));
    EXPECT_EQ(line.lost, 7);
    EXPECT_EQ(line.process, "");
    EXPECT_EQ(line.time, std::nullopt);
    EXPECT_EQ(line.uptime, std::nullopt);
    EXPECT_FALSE(line.hasDate);
}

TEST(LogLineMaker, PrefersTheTimeOfDayToOthers)
{
    LogStamp stamp;
    stamp.isSinceEpoch = true;
    stamp.microseconds = 5;
    LogFields fields;
    fields.stamp = stamp;
    fields.uptime = 6;
    fields.sinceStart = 7;
    LogLineMaker maker(QTimeZone::utc());
    LogLine line = maker.line(fields);
    EXPECT_EQ(line.time, 5);
    EXPECT_TRUE(line.hasDate);
    EXPECT_EQ(line.uptime, 6);
    fields.stamp.reset();
    line = maker.line(fields);
    EXPECT_EQ(line.time, 6);
    EXPECT_FALSE(line.hasDate);
    EXPECT_EQ(line.uptime, 6);
    fields.uptime.reset();
    EXPECT_EQ(maker.line(fields).time, 7);
    EXPECT_EQ(maker.line(fields).uptime, std::nullopt);
}

TEST(LogLineMaker, RemembersThatAYearWasGuessed)
{
    LogFields dated;
    LogStamp stamp;
    stamp.year = 2026;
    stamp.month = 1;
    stamp.day = 2;
    dated.stamp = stamp;
    LogFields withoutYear = dated;
    withoutYear.stamp->year = 0;
    LogLineMaker maker(QTimeZone::utc());
    maker.line(dated);
    EXPECT_FALSE(maker.hasGuessedYears());
    maker.line(withoutYear);
    EXPECT_TRUE(maker.hasGuessedYears());
    maker.line(dated);
    EXPECT_TRUE(maker.hasGuessedYears());
}

TEST(LogLineMaker, NamesAProcessByUnitAndNumber)
{
    LogLineMaker maker(QTimeZone::utc());
    LogFields fields;
    fields.pid = "7";
    EXPECT_EQ(process(&maker, fields), "7");
    fields.unit = "player";
    EXPECT_EQ(process(&maker, fields), "player[7]");
    fields.unit = "player[7]";
    EXPECT_EQ(process(&maker, fields), "player[7]");
    fields.unit = "player[8]";
    fields.pid = {};
    EXPECT_EQ(process(&maker, fields), "player[8]");
    fields.unit = "kernel";
    EXPECT_EQ(process(&maker, fields), "kernel");
}

TEST(LogLineMaker, CountsTheStartsOfEachProcess)
{
    LogLineMaker maker(QTimeZone::utc());
    EXPECT_EQ(process(&maker, relative(50'000, "7")), "7");
    EXPECT_EQ(process(&maker, relative(50'000, "8")), "8");
    EXPECT_EQ(process(&maker, relative(5, "7")), "7, start 2");
    EXPECT_EQ(process(&maker, relative(9000, "7")), "7, start 2");
    EXPECT_EQ(process(&maker, relative(60'000, "8")), "8");
    EXPECT_EQ(process(&maker, relative(10, "7")), "7, start 3");
    EXPECT_EQ(process(&maker, relative(70'000)), "");
    EXPECT_EQ(process(&maker, relative(0)), "start 2");
}

TEST(LogLineMaker, TakesALeapBackToTheFirstHalfForAStart)
{
    const auto isStart = [](qint64 before, qint64 after) {
        LogLineMaker maker(QTimeZone::utc());
        maker.line(relative(before));
        return process(&maker, relative(after)) == "start 2";
    };
    EXPECT_TRUE(isStart(1000, 499));
    EXPECT_FALSE(isStart(1000, 500)) << "the clock was set back";
    EXPECT_TRUE(isStart(150, 49));
    EXPECT_FALSE(isStart(150, 50)) << "threads that log at the same time";
    EXPECT_TRUE(isStart(1000, 0));
    EXPECT_FALSE(isStart(1000, -1)) << "a program does not start before its start";
}

TEST(LogLineMaker, CountsNoStartsWhereTimesSayWhenItIs)
{
    LogLineMaker maker(QTimeZone::utc());
    LogFields fields = relative(50'000);
    fields.stamp = LogStamp();
    EXPECT_EQ(process(&maker, fields), "");
    fields.sinceStart = 0;
    EXPECT_EQ(process(&maker, fields), "");
}

TEST(LogLineMaker, TellsManyThreadsAndLoggersApart)
{
    LogLineMaker maker(QTimeZone::utc());
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 20; ++i) {
            const std::string name = "t" + std::to_string(i);
            const std::string logger = "l" + std::to_string(i);
            LogFields fields;
            fields.thread = name;
            fields.logger = logger;
            EXPECT_EQ(maker.line(fields).thread.toStdString(), name);
            EXPECT_EQ(maker.line(fields).logger.toStdString(), logger);
            EXPECT_EQ(maker.line(LogFields()).thread, "");
        }
    }
}
