#include "LogSessions.h"

#include "LogLine.h"
#include "WrittenLog.h"

#include <gmock/gmock.h>

#include <linux/input.h>

#include <stdexcept>

using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr const char *listeners = WrittenLog::listeners;
constexpr const char *detectors = WrittenLog::detectors;

LogLine line(const char *logger, const char *message)
{
    LogLine made;
    made.number = 1;
    made.logger = QString::fromLatin1(logger);
    made.message = QString::fromLatin1(message);
    return made;
}

LogLine record()
{
    return line(listeners, " type: 1 code:30 value:1");
}

LogLine lost(int count)
{
    LogLine made;
    made.lost = count;
    return made;
}

class LogSessionsTest : public testing::Test
{
protected:
    std::vector<std::string> remarks()
    {
        m_sessions.finish();
        std::vector<std::string> texts;
        for (const SessionEntry &entry : m_entries) {
            if (const auto *remark = std::get_if<Remark>(&entry.what))
                texts.push_back(remark->text.toStdString());
        }
        return texts;
    }

    std::vector<SessionEntry> m_entries;
    LogSessions m_sessions{"a.log",
                           [this](const SessionEntry &entry) { m_entries.push_back(entry); }};
};

} // namespace

TEST_F(LogSessionsTest, SayHowTheLogIsRead)
{
    m_sessions.add(record());
    EXPECT_EQ(remarks().front(),
              "read from a log; it has no times: the order is right, and all times are 0");
}

TEST_F(LogSessionsTest, SayWhichLayoutItHas)
{
    m_sessions.setLayout([] { return QStringLiteral("pattern '%m'"); });
    LogLine timed = record();
    timed.time = 5;
    m_sessions.add(timed);
    EXPECT_EQ(remarks().front(),
              "read from a log with pattern '%m'; records have the times of their lines");
}

TEST_F(LogSessionsTest, UnderstandLinesWithoutALogger)
{
    m_sessions.add(line("", " type: 1 code:30 value:1"));
    m_sessions.add(line("", "Vorn::InputEvent(16) press"));
    m_sessions.add(line("", "hello"));
    m_sessions.add(line("player", "Vorn::InputEvent(16) press"));
    EXPECT_EQ(m_sessions.understood(), 2);
    EXPECT_THAT(remarks(), testing::Not(testing::Contains(HasSubstr("none of the library's"))));
}

TEST_F(LogSessionsTest, KeepTheDateAsTheTimeOfRecords)
{
    LogLine dated = record();
    dated.time = 1'767'348'000'000'000;
    dated.hasDate = true;
    m_sessions.add(dated);
    *dated.time += 1000;
    m_sessions.add(dated);
    m_sessions.finish();
    ASSERT_GT(m_entries.size(), 2U);
    EXPECT_EQ(std::get<SessionStart>(m_entries[0].what).wallClock, 1'767'348'000'000'000);
    std::vector<qint64> stamps;
    for (const SessionEntry &entry : m_entries) {
        if (const auto *read = std::get_if<RecordRead>(&entry.what))
            stamps.push_back(read->stamp);
    }
    EXPECT_THAT(stamps, ElementsAre(1'767'348'000'000'000, 1'767'348'000'001'000));
}

TEST_F(LogSessionsTest, BeginWhenTheFirstLineSaysSo)
{
    LogLine dated = record();
    dated.time = 1'767'348'000'000'000;
    dated.hasDate = true;
    dated.uptime = 1'000'000;
    m_sessions.add(dated);
    *dated.time += 3'600'000'000;
    *dated.uptime += 1000;
    m_sessions.add(dated);
    m_sessions.finish();
    EXPECT_EQ(std::get<SessionStart>(m_entries.front().what).wallClock, 1'767'348'000'000'000)
        << "the clock was set later";
}

TEST_F(LogSessionsTest, TakeATimeWithoutADateForNoTimeOfDay)
{
    LogLine dateless = record();
    dateless.time = 36'000'000'000;
    m_sessions.add(dateless);
    *dateless.time += 1000;
    m_sessions.add(dateless);
    m_sessions.finish();
    EXPECT_EQ(std::get<SessionStart>(m_entries.front().what).wallClock, 0);
    std::vector<qint64> stamps;
    for (const SessionEntry &entry : m_entries) {
        if (const auto *read = std::get_if<RecordRead>(&entry.what))
            stamps.push_back(read->stamp);
    }
    EXPECT_THAT(stamps, ElementsAre(1, 1000)) << "0 is that of a position that was asked for";
}

TEST_F(LogSessionsTest, TellWhatTheJournalHasDropped)
{
    m_sessions.add(lost(7));
    m_sessions.add(line("KeyProcessing", "?"));
    LogLine first = record();
    first.process = "1";
    m_sessions.add(first);
    LogLine second = record();
    second.process = "2";
    m_sessions.add(second);
    m_sessions.add(lost(12));
    std::vector<std::string> told;
    for (const std::string &remark : remarks()) {
        if (remark.find("journal") != std::string::npos)
            told.push_back(remark);
    }
    EXPECT_THAT(told,
                ElementsAre("the journal has dropped 12 messages here",
                            "the journal has dropped 12 messages here"))
        << "of each process";
    EXPECT_EQ(m_sessions.understood(), 2);
}

TEST_F(LogSessionsTest, TellTheFirstLinesThatAreNotTheLibrarys)
{
    m_sessions.add(line(detectors, "before the session"));
    m_sessions.add(record());
    for (int number = 2; number <= 6; ++number) {
        LogLine unknown = line(detectors, "x");
        unknown.number = number;
        m_sessions.add(unknown);
    }
    const std::string rest = " of logger KeyProcessing is none of the library's: 'x'";
    std::vector<std::string> told;
    for (const std::string &remark : remarks()) {
        if (remark.find("library's") != std::string::npos)
            told.push_back(remark);
    }
    EXPECT_THAT(told,
                ElementsAre("line 2" + rest, "line 3" + rest, "line 4" + rest,
                            "2 more lines are none of the library's"));
}

TEST_F(LogSessionsTest, TellOfThreeSuchLinesOnlyThese)
{
    m_sessions.add(record());
    for (int i = 0; i < 3; ++i)
        m_sessions.add(line(detectors, "x"));
    EXPECT_THAT(remarks(), testing::Not(testing::Contains(HasSubstr("more lines"))));
}

TEST_F(LogSessionsTest, CountSuchLinesAnewForEachStart)
{
    const auto start = [this] {
        m_sessions.add(line("BasicInputHandler", "Enter BasicInputHandler: "));
        m_sessions.add(record());
        for (int i = 0; i < 4; ++i)
            m_sessions.add(line(detectors, "x"));
    };
    start();
    start();
    const std::vector<std::string> told = remarks();
    EXPECT_EQ(std::count(told.begin(), told.end(), "1 more lines are none of the library's"), 2);
    EXPECT_EQ(std::count(told.begin(), told.end(),
                         "line 1 of logger KeyProcessing is none of the library's: 'x'"),
              6);
}

TEST_F(LogSessionsTest, BeginEachStartAtZero)
{
    LogLine timed = line("BasicInputHandler", "Enter BasicInputHandler: ");
    timed.time = 1'000'000;
    m_sessions.add(timed);
    LogLine key = record();
    key.time = 1'500'000;
    m_sessions.add(key);
    timed.time = 3'000'000;
    m_sessions.add(timed);
    key.time = 3'250'000;
    m_sessions.add(key);
    m_sessions.finish();
    std::vector<qint64> times;
    for (const SessionEntry &entry : m_entries) {
        if (std::holds_alternative<RecordRead>(entry.what))
            times.push_back(entry.time);
    }
    EXPECT_THAT(times, ElementsAre(500'000, 250'000));
}

TEST_F(LogSessionsTest, TellThatTheClockWasSet)
{
    LogLine timed = record();
    timed.time = 7'200'000'000;
    m_sessions.add(timed);
    timed.time = 0;
    m_sessions.add(timed);
    EXPECT_THAT(remarks(),
                testing::Contains("the clock was set back by 2 h, or the lines are out of order"));
}

TEST_F(LogSessionsTest, SayThatProcessesCannotBeKeptApart)
{
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", "/dev/null");
    LogLine first = record();
    first.process = "1";
    m_sessions.add(first);
    LogLine second = record();
    second.process = "2";
    std::string error;
    try {
        m_sessions.add(second);
    } catch (const std::runtime_error &caught) {
        error = caught.what();
    }
    if (before.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", before);
    EXPECT_THAT(error,
                testing::StartsWith("the log is of several processes, and what they say cannot be "
                                    "kept apart: "));
}
