#include "KeyProcessing.h"

#include "LogRecorder.h"
#include "Records.h"
#include "vorn.h"

#include <QMetaMethod>

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <sstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string text(const input_event &event)
{
    std::ostringstream stream;
    stream << event;
    return stream.str();
}

/// A detector and what it has emitted, as "records" or "fake: records".
class DoubleKeyDetectTest : public testing::Test
{
protected:
    DoubleKeyDetectTest()
    {
        Vorn::connect(&detector, &DoubleKeyDetect::keyDoubleDetect, &detector,
                      [this](const QList<input_event> &keys, bool fake) {
                          emitted.push_back((fake ? "fake: " : "") + describe(keys));
                          // A copy, because the callback may replace itself.
                          if (const auto callback = onEmission)
                              callback(keys, fake);
                      });
    }

    std::vector<std::string> feed(int code, int value, qint64 msecs)
    {
        emitted.clear();
        detector.checkDoubleKeyDetect(keyRecord(code, value, msecs));
        return emitted;
    }

    DoubleKeyDetect detector;
    std::vector<std::string> emitted;
    std::function<void(const QList<input_event> &, bool)> onEmission;
};

TEST_F(DoubleKeyDetectTest, PassesALoneKeyOnAtOnce)
{
    EXPECT_THAT(feed(30, 1, 1000), ElementsAre("1/30=1@1000"));
    EXPECT_THAT(feed(30, 2, 1250), ElementsAre("1/30=2@1250"));
    EXPECT_THAT(feed(30, 2, 1300), ElementsAre("1/30=2@1300"));
    EXPECT_THAT(feed(30, 0, 1400), ElementsAre("1/30=0@1400"));
    // The detector is empty again, so another key is also a single one.
    EXPECT_THAT(feed(31, 1, 1500), ElementsAre("1/31=1@1500"));
    EXPECT_THAT(feed(31, 0, 1600), ElementsAre("1/31=0@1600"));
}

TEST_F(DoubleKeyDetectTest, WithdrawsTheFirstKeyBeforeItReportsTheChord)
{
    feed(30, 1, 1000);
    EXPECT_THAT(feed(31, 1, 1200), ElementsAre("fake: 1/30=0@1000", "1/30=1@1000 1/31=1@1200"));
}

TEST_F(DoubleKeyDetectTest, WithdrawsTheFirstKeyWithItsLatestStamp)
{
    feed(30, 1, 1000);
    feed(30, 2, 1100);
    EXPECT_THAT(feed(31, 1, 1200), ElementsAre("fake: 1/30=0@1100", "1/30=2@1100 1/31=1@1200"));
}

TEST_F(DoubleKeyDetectTest, ReportsTheChordsReleaseWhenTheLastKeyIsUp)
{
    feed(30, 1, 1000);
    feed(31, 1, 1200);
    EXPECT_THAT(feed(30, 2, 1300), IsEmpty());
    EXPECT_THAT(feed(31, 2, 1300), IsEmpty());
    EXPECT_THAT(feed(30, 0, 1400), IsEmpty());
    EXPECT_THAT(feed(31, 0, 1500), ElementsAre("1/30=0@1400 1/31=0@1500"));
    EXPECT_THAT(feed(30, 1, 1600), ElementsAre("1/30=1@1600"));
}

TEST_F(DoubleKeyDetectTest, KeepsTheOrderOfThePressesWhenTheSecondIsReleasedFirst)
{
    feed(30, 1, 1000);
    feed(31, 1, 1200);
    EXPECT_THAT(feed(31, 0, 1400), IsEmpty());
    EXPECT_THAT(feed(30, 0, 1500), ElementsAre("1/30=0@1500 1/31=0@1400"));
}

TEST_F(DoubleKeyDetectTest, DropsEveryRecordOfAThirdKeyDuringAChord)
{
    feed(30, 1, 1000);
    feed(31, 1, 1200);
    LogRecorder log;
    EXPECT_THAT(feed(32, 1, 1300), IsEmpty());
    EXPECT_THAT(feed(32, 2, 1400), IsEmpty());
    EXPECT_THAT(feed(32, 0, 1500), IsEmpty());
    const std::string drop = "Double key press detected and new press event received -> drop";
    EXPECT_THAT(log.texts(), ElementsAre(drop, drop, drop));
    feed(30, 0, 1600);
    EXPECT_THAT(feed(31, 0, 1700), ElementsAre("1/30=0@1600 1/31=0@1700"));
}

TEST_F(DoubleKeyDetectTest, ThirdKeyStillHeldAfterTheChordHasItsReleaseDropped)
{
    feed(30, 1, 1000);
    feed(31, 1, 1100);
    feed(32, 1, 1200);
    feed(30, 0, 1300);
    feed(31, 0, 1400);
    LogRecorder log;
    EXPECT_THAT(feed(32, 0, 1500), IsEmpty());
    EXPECT_THAT(log.texts(), ElementsAre("Received release for non existing press -> drop"));
}

TEST_F(DoubleKeyDetectTest, IgnoresAChordKeyPressedAgainWhileTheOtherIsHeld)
{
    feed(30, 1, 1000);
    feed(31, 1, 1200);
    feed(30, 0, 1300);
    EXPECT_THAT(feed(30, 1, 1400), IsEmpty());
    EXPECT_THAT(feed(30, 0, 1500), IsEmpty());
    EXPECT_THAT(feed(31, 0, 1600), ElementsAre("1/30=0@1500 1/31=0@1600"));
}

TEST_F(DoubleKeyDetectTest, DropsAReleaseWithoutAPress)
{
    LogRecorder log;
    EXPECT_THAT(feed(30, 0, 1000), IsEmpty());
    EXPECT_THAT(log.texts(), ElementsAre("Received release for non existing press -> drop"));
    EXPECT_THAT(feed(31, 1, 1100), ElementsAre("1/31=1@1100"));
}

TEST_F(DoubleKeyDetectTest, TakesAnAutoRepeatForAPress)
{
    EXPECT_THAT(feed(30, 2, 1000), ElementsAre("1/30=2@1000"));
    EXPECT_THAT(feed(31, 2, 1100), ElementsAre("fake: 1/30=0@1000", "1/30=2@1000 1/31=2@1100"));
}

TEST_F(DoubleKeyDetectTest, ResetForgetsASingleKeyAndAChordWithoutASignal)
{
    feed(30, 1, 1000);
    emitted.clear();
    detector.reset();
    EXPECT_THAT(emitted, IsEmpty());
    EXPECT_THAT(feed(31, 1, 1100), ElementsAre("1/31=1@1100"));
    feed(32, 1, 1200);
    detector.reset();
    EXPECT_THAT(feed(33, 1, 1300), ElementsAre("1/33=1@1300"));
    EXPECT_THAT(feed(31, 0, 1400), IsEmpty());
}

TEST_F(DoubleKeyDetectTest, ResetFromInsideAnySignalLeavesTheDetectorIdle)
{
    for (int emission = 0; emission < 4; ++emission) {
        // Reset in turn from inside the press, synthetic release, chord press and chord release.
        SCOPED_TRACE(emission);
        int number = 0;
        onEmission = [&](const QList<input_event> &keys, bool) {
            if (number++ != emission)
                return;
            const std::string before = describe(keys);
            detector.reset();
            EXPECT_EQ(describe(keys), before);
        };
        feed(30, 1, 1000);
        feed(31, 1, 1100);
        feed(31, 0, 1200);
        feed(30, 0, 1300);
        onEmission = {};
        EXPECT_THAT(feed(32, 1, 1400), ElementsAre("1/32=1@1400"));
        EXPECT_THAT(feed(32, 0, 1500), ElementsAre("1/32=0@1500"));
    }
}

TEST_F(DoubleKeyDetectTest, ResetInTheFakeReleaseTakesTheChordWithIt)
{
    feed(30, 1, 1000);
    onEmission = [&](const QList<input_event> &, bool fake) {
        if (fake)
            detector.reset();
    };
    EXPECT_THAT(feed(31, 1, 1100), ElementsAre("fake: 1/30=0@1000", ""));
}

TEST_F(DoubleKeyDetectTest, TakesARecordFromInsideASingleRelease)
{
    feed(30, 1, 1000);
    onEmission = [&](const QList<input_event> &, bool) {
        onEmission = {};
        detector.checkDoubleKeyDetect(keyRecord(31, 1, 1100));
    };
    // The released key is forgotten already, so this is no chord.
    EXPECT_THAT(feed(30, 0, 1100), ElementsAre("1/30=0@1100", "1/31=1@1100"));
    EXPECT_THAT(feed(31, 0, 1200), ElementsAre("1/31=0@1200"));
}

TEST_F(DoubleKeyDetectTest, TakesARecordFromInsideAChordsRelease)
{
    feed(30, 1, 1000);
    feed(31, 1, 1000);
    feed(31, 0, 1100);
    onEmission = [&](const QList<input_event> &, bool) {
        onEmission = {};
        detector.checkDoubleKeyDetect(keyRecord(32, 1, 1200));
    };
    EXPECT_THAT(feed(30, 0, 1200), ElementsAre("1/30=0@1200 1/31=0@1100", "1/32=1@1200"));
    EXPECT_THAT(feed(32, 0, 1300), ElementsAre("1/32=0@1300"));
}

TEST_F(DoubleKeyDetectTest, DropsAThirdKeyFromInsideBothSignalsOfAChord)
{
    feed(30, 1, 1000);
    onEmission = [&](const QList<input_event> &, bool) {
        detector.checkDoubleKeyDetect(keyRecord(32, 1, 1100));
    };
    EXPECT_THAT(feed(31, 1, 1100), ElementsAre("fake: 1/30=0@1000", "1/30=1@1000 1/31=1@1100"));
    onEmission = {};
    feed(30, 0, 1200);
    EXPECT_THAT(feed(31, 0, 1200), ElementsAre("1/30=0@1200 1/31=0@1200"));
}

TEST_F(DoubleKeyDetectTest, TakesANegativeValueForAPress)
{
    EXPECT_THAT(feed(30, -1, 1000), ElementsAre("1/30=-1@1000"));
    EXPECT_THAT(feed(31, -1, 1100), ElementsAre("fake: 1/30=0@1000", "1/30=-1@1000 1/31=-1@1100"));
    EXPECT_THAT(feed(30, 0, 1200), IsEmpty());
    EXPECT_THAT(feed(31, -1, 1300), IsEmpty());
    EXPECT_THAT(feed(31, 0, 1400), ElementsAre("1/30=0@1200 1/31=0@1400"));
}

TEST_F(DoubleKeyDetectTest, AllPressedAndAllReleasedLookOnlyAtTheGivenList)
{
    feed(30, 1, 1000);
    EXPECT_TRUE(detector.allPressed({}));
    EXPECT_TRUE(detector.allReleased({}));
    EXPECT_TRUE(detector.allPressed({keyRecord(1, 1), keyRecord(2, 2)}));
    EXPECT_FALSE(detector.allPressed({keyRecord(1, 1), keyRecord(2, 0)}));
    EXPECT_TRUE(detector.allReleased({keyRecord(1, 0), keyRecord(2, 0)}));
    EXPECT_FALSE(detector.allReleased({keyRecord(1, 0), keyRecord(2, 2)}));
    EXPECT_TRUE(detector.allPressed({keyRecord(1, -1)}));
    EXPECT_FALSE(detector.allReleased({keyRecord(1, -1)}));
}

TEST_F(DoubleKeyDetectTest, LogsWhatItStores)
{
    const auto debugLine = [](const std::string &message) {
        return LogLine{"KeyProcessing", log4cplus::DEBUG_LOG_LEVEL, message,
                       "src/lib/input/KeyProcessing.cpp",
                       "void DoubleKeyDetect::checkDoubleKeyDetect(const input_event&)"};
    };
    LogRecorder log;
    const qint64 time = ((10 * 60 + 2) * 60 + 3) * 1000 + 456;
    feed(115, 1, time);
    feed(114, 1, time + 145);
    feed(115, 0, time + 200);
    feed(113, 1, time + 250);
    feed(114, 0, time + 300);
    feed(114, 0, time + 400);
    const std::string up = "input_event: code:115 value:release time:10:02:03,656";
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            debugLine("Stored:(input_event: code:115 value:press time:10:02:03,456)"),
            debugLine("Stored:(input_event: code:115 value:press time:10:02:03,456, "
                      "input_event: code:114 value:press time:10:02:03,601)"),
            debugLine("Found already event for code:115"),
            debugLine("Stored:(" + up + ", input_event: code:114 value:press time:10:02:03,601)"),
            debugLine("Double key press detected and new press event received -> drop"),
            debugLine("Found already event for code:114"),
            debugLine("Stored:(" + up + ", input_event: code:114 value:release time:10:02:03,756)"),
            debugLine("Received release for non existing press -> drop")));
}

TEST_F(DoubleKeyDetectTest, LogsNothingAboveDebug)
{
    LogRecorder log(log4cplus::INFO_LOG_LEVEL);
    feed(30, 1, 1000);
    feed(31, 1, 1000);
    feed(32, 0, 1000);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(DoubleKeyDetectMetaObject, HasItsSignal)
{
    const QMetaObject &meta = DoubleKeyDetect::staticMetaObject;
    EXPECT_STREQ(meta.className(), "DoubleKeyDetect");
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    EXPECT_EQ(signal.methodType(), QMetaMethod::Signal);
    EXPECT_EQ(signal.methodSignature(), "keyDoubleDetect(QList<input_event>,bool)");
    EXPECT_THAT(signal.parameterNames(), ElementsAre(QByteArray("keys"), QByteArray("fake")));
}

TEST(DoubleKeyDetectObject, TakesAParent)
{
    QObject parent;
    EXPECT_EQ((new DoubleKeyDetect(&parent))->parent(), &parent);
    EXPECT_EQ(DoubleKeyDetect().parent(), nullptr);
}

TEST(RecordText, NamesCodeValueAndTimeInUtc)
{
    qputenv("TZ", "Asia/Tokyo");
    tzset();
    const qint64 time = ((14 * 60 + 3) * 60 + 7) * 1000 + 250;
    EXPECT_EQ(text(keyRecord(28, 1, time)), "input_event: code:28 value:press time:14:03:07,250");
    EXPECT_EQ(text(keyRecord(28, 0, time)), "input_event: code:28 value:release time:14:03:07,250");
    qunsetenv("TZ");
    tzset();
}

TEST(RecordText, CallsEveryValueButOneARelease)
{
    EXPECT_EQ(text(keyRecord(1, 2)), "input_event: code:1 value:release time:00:00:00,000");
    EXPECT_EQ(text(keyRecord(1, -1)), "input_event: code:1 value:release time:00:00:00,000");
}

TEST(RecordText, DoesNotPrintTheType)
{
    EXPECT_EQ(text(switchRecord(3, 1)), text(keyRecord(3, 1)));
}

TEST(RecordText, DividesTheMicrosecondsTowardsZero)
{
    input_event event = keyRecord(1, 1, 10000);
    event.input_event_usec = 1999;
    EXPECT_EQ(text(event), "input_event: code:1 value:press time:00:00:10,001");
    event.input_event_usec = -1999;
    EXPECT_EQ(text(event), "input_event: code:1 value:press time:00:00:09,999");
}

TEST(RecordText, SurvivesTheYear2038)
{
    input_event event = keyRecord(1, 1);
    event.input_event_sec = std::numeric_limits<decltype(event.input_event_sec)>::max() > 0xffffffff
        ? static_cast<decltype(event.input_event_sec)>(4102444800) // 2100-01-01 00:00:00
        : static_cast<decltype(event.input_event_sec)>(2147483647); // 2038-01-19 03:14:07
    const bool wide = sizeof(event.input_event_sec) > 4;
    EXPECT_EQ(text(event),
              std::string("input_event: code:1 value:press time:")
                  + (wide ? "00:00:00,000" : "03:14:07,000"));
}

TEST(RecordText, ReturnsItsStream)
{
    std::ostringstream stream;
    EXPECT_EQ(&(stream << keyRecord(1, 1)), &stream);
}

} // namespace
