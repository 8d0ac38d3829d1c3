#include "TimeInText.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

/// "19 %F %T": size and format, and the one with the day first if it is another.
std::string found(std::string_view text)
{
    const std::optional<TimeInText> time = timeAtFrontOf(text);
    if (!time)
        return "none";
    std::string result = std::to_string(time->size) + " " + time->format.toStdString();
    if (time->dayFirst != time->format)
        result += " or " + time->dayFirst.toStdString();
    return result;
}

} // namespace

TEST(TimeInText, FindsDatesOfEveryForm)
{
    EXPECT_EQ(found("2026-03-22 10:00:01 x"), "19 %Y-%m-%d %H:%M:%S");
    EXPECT_EQ(found("2026/03/22 10:00:01"), "19 %Y/%m/%d %H:%M:%S");
    EXPECT_EQ(found("2026.03.22 10:00:01"), "19 %Y.%m.%d %H:%M:%S");
    EXPECT_EQ(found("20260322 10:00:01"), "17 %Y%m%d %H:%M:%S");
    EXPECT_EQ(found("22.03.2026 10:00:01"), "19 %d.%m.%Y %H:%M:%S");
    EXPECT_EQ(found("03/12/2026 10:00:01"), "19 %m/%d/%Y %H:%M:%S or %d/%m/%Y %H:%M:%S");
    EXPECT_EQ(found("22/03/2026 10:00:01"), "19 %d/%m/%Y %H:%M:%S");
    EXPECT_EQ(found("03-12-2026 10:00:01"), "19 %m-%d-%Y %H:%M:%S or %d-%m-%Y %H:%M:%S");
    EXPECT_EQ(found("22-03-2026 10:00:01"), "19 %d-%m-%Y %H:%M:%S");
    EXPECT_EQ(found("03/12/26 10:00:01"), "17 %m/%d/%y %H:%M:%S or %d/%m/%y %H:%M:%S");
    EXPECT_EQ(found("22/03/26 10:00:01"), "17 %d/%m/%y %H:%M:%S");
    EXPECT_EQ(found("22.03.26 10:00:01"), "17 %d.%m.%y %H:%M:%S");
    EXPECT_EQ(found("26-03-22 10:00:01"), "17 %y-%m-%d %H:%M:%S");
    EXPECT_EQ(found("Sun Mar 22 2026 10:00:01"), "24 %a %b %e %Y %H:%M:%S");
    EXPECT_EQ(found("22 Mar 2026 10:00:01"), "20 %d %b %Y %H:%M:%S");
    EXPECT_EQ(found("Mar 22 2026 10:00:01"), "20 %b %d %Y %H:%M:%S");
    EXPECT_EQ(found("Mar 22 10:00:01"), "15 %b %d %H:%M:%S");
    EXPECT_EQ(found("Mar  2 10:00:01"), "15 %b %e %H:%M:%S");
    EXPECT_EQ(found("03-12 10:00:01"), "14 %m-%d %H:%M:%S");
    EXPECT_EQ(found("Sun Mar 22 10:00:01 2026 x"), "24 %c");
}

TEST(TimeInText, FindsWhatSeparatesADateFromItsTime)
{
    for (const std::string separator : {" - ", ", ", " ", "T", "_", "-", ":"})
        EXPECT_EQ(found("2026-03-22" + separator + "10:00:01"),
                  std::to_string(18 + separator.size()) + " %Y-%m-%d" + separator + "%H:%M:%S");
    EXPECT_EQ(found("2026-03-22"), "none");
    EXPECT_EQ(found("2026-03-22 "), "none");
    EXPECT_EQ(found("2026-03-22|10:00:01"), "none");
    EXPECT_EQ(found("2026-03-22 x"), "none");
}

TEST(TimeInText, FindsTimesOfEveryForm)
{
    EXPECT_EQ(found("2026-03-22 10-00-01"), "19 %Y-%m-%d %H-%M-%S");
    EXPECT_EQ(found("2026-03-22 10.00.01"), "19 %Y-%m-%d %H.%M.%S");
    EXPECT_EQ(found("20260322-100001 x"), "15 %Y%m%d-%H%M%S");
    EXPECT_EQ(found("20260322-1000015"), "none") << "a digit too many";
    EXPECT_EQ(found("10:00:01 x"), "8 %H:%M:%S");
    EXPECT_EQ(found("10:00:015"), "none");
    EXPECT_EQ(found("10-00-01"), "none") << "may be anything";
    EXPECT_EQ(found("100001"), "none");
}

TEST(TimeInText, FindsFractionsAndZones)
{
    EXPECT_EQ(found("10:00:01.123.456 x"), "16 %H:%M:%S.%Q");
    EXPECT_EQ(found("10:00:01,123.456"), "16 %H:%M:%S,%Q");
    EXPECT_EQ(found("10:00:01.123"), "12 %H:%M:%S.%q");
    EXPECT_EQ(found("10:00:01,123"), "12 %H:%M:%S,%q");
    EXPECT_EQ(found("10:00:01:123"), "12 %H:%M:%S:%q");
    EXPECT_EQ(found("10:00:01.1234"), "13 %H:%M:%S.%f");
    EXPECT_EQ(found("10:00:01,12"), "11 %H:%M:%S,%f");
    EXPECT_EQ(found("10:00:01 123"), "8 %H:%M:%S");
    EXPECT_EQ(found("10:00:01.5+0100x"), "15 %H:%M:%S.%f%z");
    EXPECT_EQ(found("10:00:01 -01:00"), "15 %H:%M:%S %z");
    EXPECT_EQ(found("10:00:01Z"), "9 %H:%M:%S%z");
    EXPECT_EQ(found("10:00:01 UTC"), "12 %H:%M:%S UTC");
    EXPECT_EQ(found("10:00:01 GMT"), "12 %H:%M:%S GMT");
}

TEST(TimeInText, FindsSecondsSinceTheEpoch)
{
    EXPECT_EQ(found("1767348000.123 x"), "14 %s.%q");
    EXPECT_EQ(found("1767348000.123456"), "17 %s.%f");
    EXPECT_EQ(found("1767348000"), "none") << "may be any number";
    EXPECT_EQ(found("2767348000.123"), "none");
    EXPECT_EQ(found("767348000.123"), "none");
    EXPECT_EQ(found("17673480001.123"), "none");
    EXPECT_EQ(found("1767348000.x"), "none");
}

TEST(TimeInText, FindsNothingInOtherTexts)
{
    for (const char *text : {"", "x", "1", " 10:00:01", "DEBUG", "2026", "Mar", "Mar 22", "Sun"})
        EXPECT_EQ(found(text), "none") << text;
}
