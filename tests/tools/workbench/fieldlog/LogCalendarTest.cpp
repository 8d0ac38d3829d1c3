#include "LogCalendar.h"

#include <QDateTime>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

constexpr qint64 second = 1'000'000;

class Calendar
{
public:
    explicit Calendar(const char *format, const QTimeZone &zone = QTimeZone::utc())
        : m_format(*TimeFormat::compile(format, &m_error))
        , m_calendar(zone)
    {
        m_calendar.setLastDay({2026, 3, 1});
    }

    /// "2026-01-02T10:00:00.123Z"
    std::string date(std::string_view text)
    {
        return QDateTime::fromMSecsSinceEpoch(time(text) / 1000, Qt::UTC)
            .toString(Qt::ISODateWithMs)
            .toStdString();
    }

    qint64 time(std::string_view text) { return read(text).microseconds; }

    LogCalendar::Time read(std::string_view text)
    {
        LogStamp stamp;
        EXPECT_TRUE(m_format.take(&text, &stamp)) << text;
        EXPECT_EQ(text, "");
        return m_calendar.toTime(stamp);
    }

private:
    TimeFormat::Error m_error;
    TimeFormat m_format;
    LogCalendar m_calendar;
};

} // namespace

TEST(LogCalendar, AgreesWithQtOnEveryDay)
{
    Calendar calendar("%Y-%m-%d");
    for (QDate date(1969, 1, 1); date < QDate(2105, 1, 1); date = date.addDays(13)) {
        const std::string text = date.toString(Qt::ISODate).toStdString();
        ASSERT_EQ(calendar.date(text), text + "T00:00:00.000Z");
    }
}

TEST(LogCalendar, ReadsTheFormsThatTimesHave)
{
    EXPECT_EQ(Calendar("%Y-%m-%dT%H:%M:%S.%q%z").date("2026-01-02T10:00:00.123+0130"),
              "2026-01-02T08:30:00.123Z");
    EXPECT_EQ(Calendar("%F %T%z").date("2026-01-02 10:00:00-05:00"), "2026-01-02T15:00:00.000Z");
    EXPECT_EQ(Calendar("%F %T %Z").date("2026-01-02 10:00:00 UTC"), "2026-01-02T10:00:00.000Z");
    EXPECT_EQ(Calendar("%s.%Q").time("1767348000.123.456"), 1'767'348'000'123'456);
    EXPECT_EQ(Calendar("%I:%M %p").time("12:30 AM"), 30 * 60 * second);
    EXPECT_EQ(Calendar("%I:%M %p").time("12:30 PM"), (12 * 60 + 30) * 60 * second);
    EXPECT_EQ(Calendar("%y %j").date("26 060"), "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(Calendar("%y %j").date("99 001"), "1999-01-01T00:00:00.000Z");
    EXPECT_EQ(Calendar("%S.%f").time("01.5"), 1'500'000);
    EXPECT_EQ(Calendar("%S.%f").time("01.123456789"), 1'123'456);
}

TEST(LogCalendar, TakesTimesWithoutAZoneInTheGivenOne)
{
    Calendar calendar("%F %T", QTimeZone("Europe/Berlin"));
    EXPECT_EQ(calendar.date("2026-01-02 10:00:00"), "2026-01-02T09:00:00.000Z");
    EXPECT_EQ(calendar.date("2026-07-02 10:00:00"), "2026-07-02T08:00:00.000Z");
    EXPECT_EQ(calendar.date("2026-07-02 10:59:00"), "2026-07-02T08:59:00.000Z");
    EXPECT_EQ(Calendar("%F %T%z", QTimeZone("Europe/Berlin")).date("2026-01-02 10:00:00Z"),
              "2026-01-02T10:00:00.000Z");
}

TEST(LogCalendar, GoesOnToTheNextDayAtMidnight)
{
    Calendar calendar("%H:%M:%S");
    EXPECT_EQ(calendar.time("23:59:59"), 86'399 * second);
    EXPECT_EQ(calendar.time("00:00:01"), 86'401 * second);
    EXPECT_EQ(calendar.time("21:00:00"), (86'400 + 21 * 3600) * second) << "a quiet day";
    EXPECT_EQ(calendar.time("20:00:00"), (86'400 + 20 * 3600) * second)
        << "an hour back is the end of summer time";
}

TEST(LogCalendar, FindsTheYearsThatDatesLack)
{
    Calendar calendar("%b %e %H:%M:%S");
    EXPECT_EQ(calendar.date("Dec 31 23:59:59"), "2025-12-31T23:59:59.000Z")
        << "the file was last written in March 2026";
    EXPECT_EQ(calendar.date("Jan  1 00:00:01"), "2026-01-01T00:00:01.000Z");
    EXPECT_EQ(calendar.date("Dec 31 23:59:59"), "2025-12-31T23:59:59.000Z") << "out of order";
    EXPECT_EQ(Calendar("%b %e").date("Mar  1"), "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(Calendar("%b %e").date("Feb 29"), "2024-02-29T00:00:00.000Z");
    EXPECT_EQ(Calendar("%b %e").date("Mar  2"), "2026-03-02T00:00:00.000Z") << "of another zone";
    EXPECT_EQ(Calendar("%b %e").date("Mar  3"), "2025-03-03T00:00:00.000Z");
    EXPECT_EQ(Calendar("%j").date("060"), "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(Calendar("%j").date("365"), "2025-12-31T00:00:00.000Z");
}

TEST(LogCalendar, TakesEachDateNearTheOneBefore)
{
    Calendar calendar("%b %e");
    EXPECT_EQ(calendar.date("Jul 10"), "2025-07-10T00:00:00.000Z");
    EXPECT_EQ(calendar.date("Dec 31"), "2025-12-31T00:00:00.000Z");
    EXPECT_EQ(calendar.date("Feb  1"), "2026-02-01T00:00:00.000Z");
    EXPECT_EQ(calendar.date("Jul 10"), "2026-07-10T00:00:00.000Z") << "the next one";
    EXPECT_EQ(calendar.date("Dec 31"), "2026-12-31T00:00:00.000Z");
    EXPECT_EQ(calendar.date("Jan  1"), "2027-01-01T00:00:00.000Z");
}

TEST(LogCalendar, TakesTheYearOfTheDateBeforeIfTheNextOneIsAsNear)
{
    TimeFormat::Error error;
    const TimeFormat format = *TimeFormat::compile("%b %e", &error);
    LogCalendar calendar(QTimeZone::utc());
    calendar.setLastDay({2023, 12, 31});
    const auto dateOf = [&](std::string_view text) {
        LogStamp stamp;
        EXPECT_TRUE(format.take(&text, &stamp));
        return QDateTime::fromMSecsSinceEpoch(calendar.toTime(stamp).microseconds / 1000, Qt::UTC)
            .date();
    };
    EXPECT_EQ(dateOf("Dec 31"), QDate(2023, 12, 31));
    EXPECT_EQ(dateOf("Jul  1"), QDate(2023, 7, 1)) << "183 days either way, as 2024 is a leap year";
}

TEST(LogCalendar, LooksForALeapYearForTheLeapDayOnly)
{
    EXPECT_EQ(Calendar("%b %e").date("Jan 29"), "2026-01-29T00:00:00.000Z");
    EXPECT_EQ(Calendar("%b %e").date("Apr 29"), "2025-04-29T00:00:00.000Z");
    EXPECT_EQ(Calendar("%b %e").date("Feb 28"), "2026-02-28T00:00:00.000Z");
    EXPECT_EQ(Calendar("%j").date("029"), "2026-01-29T00:00:00.000Z");
    EXPECT_EQ(Calendar("%j").date("062"), "2025-03-03T00:00:00.000Z") << "after the last day";
}

TEST(LogCalendar, DoesNotTakeADateWithAYearForTheOneBefore)
{
    TimeFormat::Error error;
    const auto stampOf = [&error](const char *format, std::string_view text) {
        LogStamp stamp;
        EXPECT_TRUE(TimeFormat::compile(format, &error)->take(&text, &stamp));
        return stamp;
    };
    LogCalendar calendar(QTimeZone::utc());
    calendar.setLastDay({2026, 3, 1});
    calendar.toTime(stampOf("%F", "2001-01-01"));
    EXPECT_EQ(calendar.toTime(stampOf("%b %e", "Feb  1")).microseconds / second,
              QDateTime(QDate(2026, 2, 1), QTime(0, 0), Qt::UTC).toSecsSinceEpoch());
}

TEST(LogCalendar, SaysWhichPartsOfATimeTheLogHas)
{
    const auto parts = [](const char *format, std::string_view text) {
        const LogCalendar::Time time = Calendar(format).read(text);
        return std::string(time.hasDate ? "date" : "no date")
            + (time.isYearGuessed ? ", year guessed" : "");
    };
    EXPECT_EQ(parts("%F", "2026-01-02"), "date");
    EXPECT_EQ(parts("%b %e", "Jan  2"), "date, year guessed");
    EXPECT_EQ(parts("%T", "10:00:00"), "no date");
    EXPECT_EQ(parts("%s", "1767348000"), "date");
}

TEST(LogCalendar, TakesBackAnHourAndAHalf)
{
    Calendar calendar("%H:%M:%S");
    EXPECT_EQ(calendar.time("03:00:00"), 3 * 3600 * second);
    EXPECT_EQ(calendar.time("01:30:00"), 5400 * second);
    EXPECT_EQ(calendar.time("00:00:00"), 0);
    EXPECT_EQ(calendar.time("23:59:59"), -second) << "out of order";
    Calendar other("%H:%M:%S");
    EXPECT_EQ(other.time("03:00:00"), 3 * 3600 * second);
    EXPECT_EQ(other.time("01:29:59"), (86'400 + 5399) * second) << "the next day";
}
