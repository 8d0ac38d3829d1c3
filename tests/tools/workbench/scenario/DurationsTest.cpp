#include "Durations.h"

#include <gmock/gmock.h>

namespace {

using namespace Vorn::Workbench;

} // namespace

TEST(Durations, DurationsAreWholeMilliseconds)
{
    EXPECT_EQ(milliseconds(QStringLiteral("1200ms")), 1200);
    EXPECT_EQ(milliseconds(QStringLiteral("1.5s")), 1500);
    EXPECT_EQ(milliseconds(QStringLiteral("0.001s")), 1);
    EXPECT_EQ(milliseconds(QStringLiteral("0.5min")), 30'000);
    EXPECT_EQ(milliseconds(QStringLiteral("2h")), 7'200'000);
    for (const char *text : {"", "s", "1", "1.s", ".5s", "0.0001s", "0.5ms", "-1s", "1e3s", "1s ",
                             "1m", "1000000000000s", "1.0000000s"})
        EXPECT_EQ(milliseconds(QString::fromLatin1(text)), std::nullopt) << text;
    EXPECT_EQ(signedMilliseconds(QStringLiteral("-5s")), -5000);
    EXPECT_EQ(signedMilliseconds(QStringLiteral("+1h")), 3'600'000);
    EXPECT_EQ(signedMilliseconds(QStringLiteral("+-1h")), std::nullopt);
}

TEST(Durations, AreShownInTheUnitThatReadsBest)
{
    EXPECT_EQ(durationText(80).toStdString(), "80 ms");
    EXPECT_EQ(durationText(1500).toStdString(), "1500 ms");
    EXPECT_EQ(durationText(2000).toStdString(), "2 s");
    EXPECT_EQ(durationText(-5000).toStdString(), "-5 s");
    EXPECT_EQ(durationText(12'345).toStdString(), "12.345 s");
    EXPECT_EQ(durationText(9999).toStdString(), "9999 ms");
    EXPECT_EQ(durationText(-9999).toStdString(), "-9999 ms");
    EXPECT_EQ(durationText(10'001).toStdString(), "10.001 s");
    EXPECT_EQ(durationText(-10'001).toStdString(), "-10.001 s");
    EXPECT_EQ(durationText(0).toStdString(), "0 s");
}

TEST(Durations, MayHaveASign)
{
    EXPECT_EQ(signedMilliseconds(QStringLiteral("5s")), 5000);
    EXPECT_EQ(signedMilliseconds(QStringLiteral("15s")), 15'000);
    EXPECT_EQ(signedMilliseconds(QStringLiteral("-15s")), -15'000);
    EXPECT_EQ(signedMilliseconds(QStringLiteral("-")), std::nullopt);
    EXPECT_EQ(signedMilliseconds(QString()), std::nullopt);
    EXPECT_EQ(durationText(10'000).toStdString(), "10 s");
    EXPECT_EQ(durationText(-10'000).toStdString(), "-10 s");
    EXPECT_EQ(milliseconds(QStringLiteral("999999999999.999999h")), std::nullopt);
    EXPECT_EQ(milliseconds(QStringLiteral("0.000001h")), std::nullopt);
    EXPECT_EQ(milliseconds(QStringLiteral("0.025h")), 90'000);
    EXPECT_EQ(milliseconds(QStringLiteral("100.000000s")), 100'000);
}
