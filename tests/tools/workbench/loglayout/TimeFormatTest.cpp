#include "TimeFormat.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

/// "2026-01-02 3600000000 +3600 | rest": date, microseconds, offset, and what is left of the text.
std::string taken(const char *format, std::string_view text)
{
    TimeFormat::Error error;
    const std::optional<TimeFormat> compiled = TimeFormat::compile(format, &error);
    if (!compiled)
        return "no format";
    LogStamp stamp;
    std::string_view rest = text;
    if (!compiled->take(&rest, &stamp))
        return rest == text ? "none" : "none, but the text has changed";
    std::string result = std::to_string(stamp.year) + "-" + std::to_string(stamp.month) + "-"
        + std::to_string(stamp.day) + " " + std::to_string(stamp.microseconds);
    if (stamp.isSinceEpoch)
        result += " since the epoch";
    if (stamp.offset)
        result += (*stamp.offset < 0 ? " " : " +") + std::to_string(*stamp.offset);
    return rest.empty() ? result : result + " | " + std::string(rest);
}

/// "5: no such …"
std::string errorOf(std::string_view format)
{
    TimeFormat::Error error;
    if (TimeFormat::compile(format, &error))
        return "none";
    return std::to_string(error.offset) + ": " + error.message.toStdString();
}

bool hasFraction(const char *format)
{
    TimeFormat::Error error;
    return TimeFormat::compile(format, &error)->hasFraction();
}

std::string hours(int count)
{
    return "0-0-0 " + std::to_string(qint64{count} * 3'600'000'000);
}

} // namespace

TEST(TimeFormat, TakesDatesThatThereAre)
{
    EXPECT_EQ(taken("%Y", "1899"), "none");
    EXPECT_EQ(taken("%Y", "1900"), "1900-0-0 0");
    EXPECT_EQ(taken("%Y", "2110"), "2110-0-0 0");
    EXPECT_EQ(taken("%Y", "2111"), "none");
    EXPECT_EQ(taken("%Y", "202"), "none");
    EXPECT_EQ(taken("%Y", "20 6"), "none");
    EXPECT_EQ(taken("%Y", "202:"), "none") << "the character behind 9";
    EXPECT_EQ(taken("%Y", "/026"), "none") << "the character before 0";
    EXPECT_EQ(taken("%Y", "20269"), "2026-0-0 0 | 9");
    EXPECT_EQ(taken("%y", "00"), "2000-0-0 0");
    EXPECT_EQ(taken("%y", "68"), "2068-0-0 0");
    EXPECT_EQ(taken("%y", "69"), "1969-0-0 0");
    EXPECT_EQ(taken("%y", "99"), "1999-0-0 0");
    EXPECT_EQ(taken("%y", "9"), "none");
    EXPECT_EQ(taken("%m", "00"), "none");
    EXPECT_EQ(taken("%m", "01"), "0-1-0 0");
    EXPECT_EQ(taken("%m", "12"), "0-12-0 0");
    EXPECT_EQ(taken("%m", "13"), "none");
    EXPECT_EQ(taken("%d", "00"), "none");
    EXPECT_EQ(taken("%d", "01"), "0-0-1 0");
    EXPECT_EQ(taken("%d", "31"), "0-0-31 0");
    EXPECT_EQ(taken("%d", "32"), "none");
    EXPECT_EQ(taken("%d", " 1"), "none");
    EXPECT_EQ(taken("%e", " 0"), "none");
    EXPECT_EQ(taken("%e", " 1"), "0-0-1 0");
    EXPECT_EQ(taken("%e", "01"), "0-0-1 0");
    EXPECT_EQ(taken("%e", "31"), "0-0-31 0");
    EXPECT_EQ(taken("%e", "32"), "none");
    EXPECT_EQ(taken("%e", ""), "none");
    EXPECT_EQ(taken("%e", " "), "none");
    EXPECT_EQ(taken("%e", " 12"), "0-0-1 0 | 2");
    EXPECT_EQ(taken("%j", "000"), "none");
    EXPECT_EQ(taken("%j", "001"), "0-0-1 0");
    EXPECT_EQ(taken("%j", "366"), "0-0-366 0");
    EXPECT_EQ(taken("%j", "367"), "none");
}

TEST(TimeFormat, KnowsTheNamesOfMonthsAndDays)
{
    const char *months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    int month = 0;
    for (const char *name : months) {
        const std::string date = "0-" + std::to_string(++month) + "-0 0";
        EXPECT_EQ(taken("%b", name), date) << name;
        EXPECT_EQ(taken("%h", name), date) << name;
        EXPECT_EQ(taken("%a", name), "none") << name;
    }
    for (const char *name : {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"}) {
        EXPECT_EQ(taken("%a", std::string(name) + "day"), "0-0-0 0 | day");
        EXPECT_EQ(taken("%b", name), "none") << name;
    }
    EXPECT_EQ(taken("%b", "Ja"), "none");
    EXPECT_EQ(taken("%b", "jan"), "none");
    EXPECT_EQ(taken("%a", ""), "none");
}

TEST(TimeFormat, TakesTimesThatThereAre)
{
    EXPECT_EQ(taken("%H", "00"), hours(0));
    EXPECT_EQ(taken("%H", "23"), hours(23));
    EXPECT_EQ(taken("%H", "24"), "none");
    EXPECT_EQ(taken("%H", " 1"), "none");
    EXPECT_EQ(taken("%k", " 0"), hours(0));
    EXPECT_EQ(taken("%k", " 9"), hours(9));
    EXPECT_EQ(taken("%k", "23"), hours(23));
    EXPECT_EQ(taken("%k", "24"), "none");
    EXPECT_EQ(taken("%M", "00"), "0-0-0 0");
    EXPECT_EQ(taken("%M", "59"), "0-0-0 3540000000");
    EXPECT_EQ(taken("%M", "60"), "none");
    EXPECT_EQ(taken("%S", "00"), "0-0-0 0");
    EXPECT_EQ(taken("%S", "60"), "0-0-0 60000000") << "a leap second";
    EXPECT_EQ(taken("%S", "61"), "none");
}

TEST(TimeFormat, AddsTheHalfOfTheDay)
{
    EXPECT_EQ(taken("%I", "00"), "none");
    EXPECT_EQ(taken("%I", "01"), hours(1));
    EXPECT_EQ(taken("%I", "12"), hours(12));
    EXPECT_EQ(taken("%I", "13"), "none");
    EXPECT_EQ(taken("%l", " 0"), "none");
    EXPECT_EQ(taken("%l", " 1"), hours(1));
    EXPECT_EQ(taken("%l", "12"), hours(12));
    EXPECT_EQ(taken("%l", "13"), "none");
    for (const char *format : {"%I %p", "%l %p"}) {
        EXPECT_EQ(taken(format, "12 AM"), hours(0)) << format;
        EXPECT_EQ(taken(format, "11 AM"), hours(11)) << format;
        EXPECT_EQ(taken(format, "12 PM"), hours(12)) << format;
        EXPECT_EQ(taken(format, "11 PM"), hours(23)) << format;
        EXPECT_EQ(taken(format, "11 XM"), "none") << format;
        EXPECT_EQ(taken(format, "11 P"), "none") << format;
    }
    EXPECT_EQ(taken("%p %I", "PM 01"), hours(13));
    EXPECT_EQ(taken("%p %I", "AM 12"), hours(0));
    EXPECT_EQ(taken("%p%I", "PM01x"), hours(13) + " | x");
}

TEST(TimeFormat, LeavesHoursOfTheWholeDayAsTheyAre)
{
    EXPECT_EQ(taken("%H %p", "13 PM"), hours(13));
    EXPECT_EQ(taken("%k %p", " 0 AM"), hours(0));
    EXPECT_EQ(taken("%p %H", "PM 12"), hours(12));
}

TEST(TimeFormat, TakesFractionsOfASecond)
{
    EXPECT_EQ(taken("%q", "012"), "0-0-0 12000");
    EXPECT_EQ(taken("%q", "01"), "none");
    EXPECT_EQ(taken("%S,%q", "01,002"), "0-0-0 1002000");
    EXPECT_EQ(taken("%S.%Q", "01.002.003"), "0-0-0 1002003");
    EXPECT_EQ(taken("%Q", "002,003"), "none");
    EXPECT_EQ(taken("%Q", "002.03"), "none");
    EXPECT_EQ(taken("%Q", "02.003"), "none");
    EXPECT_EQ(taken("%S.%f", "01.5"), "0-0-0 1500000");
    EXPECT_EQ(taken("%f", "123456789"), "0-0-0 123456");
    EXPECT_EQ(taken("%f", "1234567890"), "0-0-0 123456 | 0");
    EXPECT_EQ(taken("%f", "9:"), "0-0-0 900000 | :");
    EXPECT_EQ(taken("%f", std::string_view("129", 2)), "0-0-0 120000") << "where the text ends";
    EXPECT_EQ(taken("%q", std::string_view("129", 2)), "none");
    EXPECT_EQ(taken("%s", std::string_view("129", 2)), "0-0-0 12000000 since the epoch");
    EXPECT_EQ(taken("%f", "x"), "none");
    EXPECT_EQ(taken("%f", ""), "none");
    EXPECT_TRUE(hasFraction("%S.%q"));
    EXPECT_TRUE(hasFraction("%S.%Q"));
    EXPECT_TRUE(hasFraction("%S.%f"));
    EXPECT_FALSE(hasFraction("%F %T"));
    EXPECT_FALSE(hasFraction("q"));
}

TEST(TimeFormat, TakesSecondsSinceTheEpoch)
{
    EXPECT_EQ(taken("%s", "0"), "0-0-0 0 since the epoch");
    EXPECT_EQ(taken("%s.%q", "1767348000.250"), "0-0-0 1767348000250000 since the epoch");
    EXPECT_EQ(taken("%s", "4449513599"), "0-0-0 4449513599000000 since the epoch");
    EXPECT_EQ(taken("%s", "4449513600"), "none") << "in 2111";
    EXPECT_EQ(taken("%s", "000000000012"), "0-0-0 12000000 since the epoch");
    EXPECT_EQ(taken("%s", "0000000000123"), "0-0-0 12000000 since the epoch | 3");
    EXPECT_EQ(taken("%s", "x"), "none");
    EXPECT_EQ(taken("%s", ""), "none");
}

TEST(TimeFormat, TakesZones)
{
    EXPECT_EQ(taken("%z", "Z"), "0-0-0 0 +0");
    EXPECT_EQ(taken("%z", "+0000"), "0-0-0 0 +0");
    EXPECT_EQ(taken("%z", "+0130"), "0-0-0 0 +5400");
    EXPECT_EQ(taken("%z", "-0130"), "0-0-0 0 -5400");
    EXPECT_EQ(taken("%z", "+05:45"), "0-0-0 0 +20700");
    EXPECT_EQ(taken("%z", "+2359"), "0-0-0 0 +86340");
    EXPECT_EQ(taken("%z", "+2400"), "none");
    EXPECT_EQ(taken("%z", "+0060"), "none");
    EXPECT_EQ(taken("%z", "0100"), "none");
    EXPECT_EQ(taken("%z", "+01"), "none");
    EXPECT_EQ(taken("%z", ""), "none");
    for (const char *name : {"UTC", "GMT", "Z"})
        EXPECT_EQ(taken("%Z", name), "0-0-0 0 +0") << name;
    EXPECT_EQ(taken("%Z", "CEST"), "0-0-0 0") << "which of them is not known";
    EXPECT_EQ(taken("%Z", "AZaz["), "0-0-0 0 | [");
    EXPECT_EQ(taken("%Z", "z{"), "0-0-0 0 | {");
    EXPECT_EQ(taken("%Z", "@Z"), "none");
    EXPECT_EQ(taken("%Z", "`a"), "none");
    EXPECT_EQ(taken("%Z", ""), "none");
}

TEST(TimeFormat, KnowsWhatIsShortForOthers)
{
    EXPECT_EQ(taken("%c", "Fri Jan  2 03:04:05 2026"), "2026-1-2 11045000000");
    EXPECT_EQ(taken("%D", "01/02/26"), "2026-1-2 0");
    EXPECT_EQ(taken("%x", "01/02/26"), "2026-1-2 0");
    EXPECT_EQ(taken("%F", "2026-01-02"), "2026-1-2 0");
    EXPECT_EQ(taken("%R", "03:04"), "0-0-0 11040000000");
    EXPECT_EQ(taken("%r", "03:04:05 PM"), "0-0-0 54245000000");
    EXPECT_EQ(taken("%T", "03:04:05"), "0-0-0 11045000000");
    EXPECT_EQ(taken("%X", "03:04:05"), "0-0-0 11045000000");
    EXPECT_EQ(taken("at %H%%", "at 03%"), hours(3));
    EXPECT_EQ(taken("at %H%%", "at 03 "), "none");
}

TEST(TimeFormat, SaysWhatItCannotReadBack)
{
    EXPECT_EQ(errorOf("%H:%M"), "none");
    EXPECT_EQ(errorOf("%H:%U"), "3: '%U' of a time cannot be read back");
    EXPECT_EQ(errorOf("%ä%H"), "0: '%ä' of a time cannot be read back");
    EXPECT_EQ(errorOf("%H:%"), "3: a time ends with '%'; write '%%' for a percent sign");
}
