#include "LogLayout.h"

#include "KnownLayouts.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

LogPattern pattern(const char *text)
{
    LogPattern::Error error;
    return *LogPattern::compile(text, &error);
}

LogLayout plain(const char *text)
{
    return {std::nullopt, pattern(text)};
}

/// In lines of the journal like this one.
LogLayout inside(std::string_view line, const char *text)
{
    return {JournalLayout::of(line), pattern(text)};
}

constexpr std::string_view shortLine = "Jan 02 10:00:00 h player[7]: x";
constexpr qint64 tenOClock = 36'000'000'000;

/// The time of day of a line whose program logged another one.
qint64 refined(const std::string &outer, const std::string &inner)
{
    LogLayout layout = inside(shortLine, "%D{%H:%M:%S.%q} %m");
    const std::string line = "Jan 02 " + outer + " h player[7]: " + inner + " x";
    LogFields fields;
    EXPECT_EQ(layout.parse(line, &fields), LogLayout::Fit::Whole);
    EXPECT_EQ(fields.stamp->day, 2);
    return fields.stamp->microseconds - tenOClock;
}

constexpr qint64 second = 1'000'000;

} // namespace

TEST(LogLayout, FitsInPartsOrNotAtAll)
{
    LogLayout alone = plain("%p %m");
    LogFields fields;
    EXPECT_EQ(alone.parse("INFO x", &fields), LogLayout::Fit::Whole);
    EXPECT_EQ(alone.parse("x", &fields), LogLayout::Fit::None);
    LogLayout layout = inside(shortLine, "%p %m");
    EXPECT_EQ(layout.parse("INFO x", &fields), LogLayout::Fit::None);
    fields = {};
    EXPECT_EQ(layout.parse("Jan 02 10:00:00 h player[7]: x", &fields), LogLayout::Fit::OuterOnly);
    EXPECT_EQ(fields.message, "x");
    fields = {};
    EXPECT_EQ(layout.parse("Jan 02 10:00:00 h player[7]: INFO x", &fields), LogLayout::Fit::Whole);
    EXPECT_EQ(fields.message, "x");
    EXPECT_EQ(fields.level, LogLevel::Info);
    EXPECT_EQ(
        layout.parse("Jan 02 10:00:00 h systemd-journald[7]: Suppressed 12 messages", &fields),
        LogLayout::Fit::OuterOnly);
    EXPECT_EQ(fields.lost, 12);
}

TEST(LogLayout, AddsWhatTheMessageHas)
{
    LogLayout layout = inside(shortLine, "%i [%t] %p %c %m");
    LogFields fields;
    ASSERT_EQ(layout.parse("Jan 02 10:00:00 h player: 8 [main] INFO Input x", &fields),
              LogLayout::Fit::Whole);
    EXPECT_EQ(fields.pid, "8");
    EXPECT_EQ(fields.thread, "main");
    EXPECT_EQ(fields.level, LogLevel::Info);
    EXPECT_EQ(fields.logger, "Input");
    EXPECT_EQ(fields.message, "x");
    EXPECT_EQ(fields.unit, "player");
    fields = {};
    ASSERT_EQ(layout.parse("Jan 02 10:00:00 h player[7]: 8 [main] INFO Input x", &fields),
              LogLayout::Fit::Whole);
    EXPECT_EQ(fields.pid, "7") << "the journal knows better";
    LogLayout uneven = inside(shortLine, "%-5p|%m");
    fields = {};
    ASSERT_EQ(uneven.parse("Jan 02 10:00:00 h player[7]: INFO|x", &fields), LogLayout::Fit::Whole);
    EXPECT_TRUE(fields.isUnevenlyFilled);
}

TEST(LogLayout, TakesThePartsOfAQuarterFromTheMoreExactTime)
{
    EXPECT_EQ(refined("10:00:00", "10:00:00.250"), second / 4);
    EXPECT_EQ(refined("10:00:00", "09:59:59.750"), -second / 4);
    EXPECT_EQ(refined("10:00:00", "11:00:00.250"), second / 4) << "another zone";
    EXPECT_EQ(refined("10:00:00", "05:30:00.250"), second / 4);
    EXPECT_EQ(refined("10:00:00", "15:44:59.750"), -second / 4);
    EXPECT_EQ(refined("10:00:00", "02:14:59.750"), -second / 4);
    EXPECT_EQ(refined("10:00:00", "10:07:30.000"), 450 * second);
    EXPECT_EQ(refined("10:00:00", "10:07:30.001"), -450 * second + 1000);
    EXPECT_EQ(refined("10:00:00", "09:52:30.000"), -450 * second);
    EXPECT_EQ(refined("10:00:00", "09:52:29.999"), 450 * second - 1000);
}

TEST(LogLayout, KeepsTheTimeThatIsMoreExact)
{
    const auto time = [](std::string_view of, const char *inner, const std::string &line) {
        LogLayout layout = inside(of, inner);
        LogFields fields;
        EXPECT_EQ(layout.parse(line, &fields), LogLayout::Fit::Whole) << line;
        return std::to_string(fields.stamp ? fields.stamp->day : -1) + " "
            + std::to_string(fields.stamp ? fields.stamp->microseconds : -1);
    };
    const std::string outer = "Jan 02 10:00:00 h player[7]: ";
    EXPECT_EQ(time(shortLine, "%D{%b %d %H:%M:%S.%q} %m", outer + "Jan 03 11:00:00.500 x"),
              "3 39600500000");
    EXPECT_EQ(time(shortLine, "%D{%s.%q} %m", outer + "1767348000.500 x"), "0 1767348000500000");
    EXPECT_EQ(time(shortLine, "%D{%b %d %H:%M:%S} %m", outer + "Jan 03 11:00:00 x"),
              "2 36000000000")
        << "as exact";
    const std::string precise = "Jan 02 10:00:00.123456 h player[7]: ";
    EXPECT_EQ(time(precise + "x", "%D{%H:%M:%S.%q} %m", precise + "10:00:00.500 x"),
              "2 36000123456");
    const std::string monotonic = "[   12.345678] h player[7]: ";
    EXPECT_EQ(time(monotonic + "x", "%D{%H:%M:%S} %m", monotonic + "10:00:00 x"), "0 36000000000");
}

TEST(LogLayout, SaysWhatItIs)
{
    EXPECT_EQ(plain("%p %m").text(), "pattern '%p %m'");
    EXPECT_EQ(inside(shortLine, "%p %m").text(), "journal (short), in it the pattern '%p %m'");
    EXPECT_FALSE(plain("%p %m").hasTime());
    EXPECT_TRUE(plain("%d %m").hasTime());
    EXPECT_TRUE(inside(shortLine, "%p %m").hasTime());
    EXPECT_TRUE(plain("%c %m").hasLogger());
    EXPECT_FALSE(inside(shortLine, "%p %m").hasLogger());
}

TEST(KnownLayouts, AreEachTriedUntilOneFits)
{
    KnownLayouts layouts;
    EXPECT_TRUE(layouts.isEmpty());
    EXPECT_TRUE(layouts.add(plain("[%p] %m")));
    EXPECT_FALSE(layouts.add(plain("[%p] %m"))) << "known already";
    EXPECT_TRUE(layouts.add(inside(shortLine, "%p %m")));
    EXPECT_TRUE(layouts.add(plain("%p: %m")));
    EXPECT_EQ(layouts.texts().join("; ").toStdString(),
              "pattern '[%p] %m'; journal (short), in it the pattern '%p %m'; pattern '%p: %m'");
    EXPECT_EQ(layouts.current().text(), "pattern '%p: %m'");

    LogFields fields;
    EXPECT_EQ(layouts.parse("[INFO] x", &fields), LogLayout::Fit::Whole);
    EXPECT_EQ(fields.message, "x");
    EXPECT_EQ(layouts.current().text(), "pattern '[%p] %m'");
    fields = {};
    EXPECT_EQ(layouts.parse("y", &fields), LogLayout::Fit::None);
    EXPECT_EQ(layouts.current().text(), "pattern '[%p] %m'");
    fields = {};
    EXPECT_EQ(layouts.parse("Jan 02 10:00:00 h player[7]: z", &fields), LogLayout::Fit::OuterOnly);
    EXPECT_EQ(fields.message, "z");
    EXPECT_EQ(layouts.current().text(), "pattern '[%p] %m'") << "of another program";
    fields = {};
    EXPECT_EQ(layouts.parse("WARN: x", &fields), LogLayout::Fit::Whole);
    EXPECT_EQ(fields.level, LogLevel::Warn);
    EXPECT_EQ(layouts.current().text(), "pattern '%p: %m'");
}

TEST(KnownLayouts, HaveWhatAnyOfThemHas)
{
    KnownLayouts layouts;
    layouts.add(plain("%p %m"));
    EXPECT_FALSE(layouts.haveTimes() || layouts.haveLoggers() || layouts.areDaysOpen());
    LogLayout open = plain("%d %m");
    open.setDayOpen(true);
    layouts.add(open);
    EXPECT_TRUE(layouts.haveTimes());
    EXPECT_TRUE(layouts.areDaysOpen());
    EXPECT_FALSE(layouts.haveLoggers());
    layouts.add(plain("%c %m"));
    EXPECT_TRUE(layouts.haveLoggers());
    for (const char *text : {"1%m", "2%m", "3%m", "4%m"})
        layouts.add(plain(text));
    EXPECT_FALSE(layouts.isFull());
    layouts.add(plain("5%m"));
    EXPECT_TRUE(layouts.isFull()) << "eight";
}
