#include "WrittenLog.h"

#include <gmock/gmock.h>

#include <linux/input.h>

namespace {

constexpr const char *handlers = WrittenLog::handlers;
constexpr const char *listeners = WrittenLog::listeners;

} // namespace

TEST(ReadTranscript, ReadsPacketsOfTwoListenersWithoutTheirDescriptors)
{
    WrittenLog log;
    log.pace(1000).device(0, "panel", true).select("");
    log.record(KEY_A, 1).stored({"30 press"}).passedOn(KEY_A, 1);
    log.event("", "CharA", "KeyPressed").record(KEY_A, 1).wait(1000);
    log.record(KEY_A, 0).storedAgain(30, {"30 release"}).passedOn(KEY_A, 0);
    log.event("", "CharA", "KeyReleased").record(KEY_A, 0).wait(1000);
    // Packets that begin alike.
    log.add(listeners, " type: 1 code:30 value:1").record(KEY_B, 1);
    log.add(listeners, " type: 1 code:30 value:1").record(KEY_C, 1).wait(1000);
    // The same once more, but another record.
    log.record(KEY_D, 1).stored({"32 press"}).passedOn(KEY_D, 1);
    log.record(KEY_D, 1).storedAgain(32, {"32 press"}).passedOn(KEY_D, 1).wait(1000);
    log.record(KEY_E, 1).wait(60).record(KEY_E, 1);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.004 + event0 'panel' LocalUI\n"
              "0.005 identifier ''\n"
              "0.007 event0 KEY_A 1\n"
              "0.012 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.012 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "1.015 event0 KEY_A 0\n"
              "1.021 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "1.021 event0 KEY_A 0 published [CharA KeyReleased]\n"
              "2.024 event0 KEY_A 1\n"
              "2.025 event0 KEY_B 1\n"
              "2.027 event0 KEY_A 1\n"
              "2.028 event0 KEY_C 1\n"
              "2.029 event0 KEY_A 1 open [] no line of a handler follows it; if both listeners of "
              "a device have read it, this is said of the other line\n"
              "2.029 event0 KEY_B 1 open [] no line of a handler follows it; if both listeners of "
              "a device have read it, this is said of the other line\n"
              "2.029 event0 KEY_A 1 open [] no line of a handler follows it; if both listeners of "
              "a device have read it, this is said of the other line\n"
              "2.029 event0 KEY_C 1 open [] no line of a handler follows it; if both listeners of "
              "a device have read it, this is said of the other line\n"
              "3.030 event0 KEY_D 1\n"
              "3.034 event0 KEY_D 1\n"
              "3.037 event0 KEY_D 1 open [] nothing was published for it before the key was "
              "pressed again or repeated at 3.037 s\n"
              "3.037 # KEY_D is pressed although it was down: the release in between was lost\n"
              "4.039 event0 KEY_E 1\n"
              "4.101 event0 KEY_E 1\n"
              "4.102 event0 KEY_E 1 open [] no line of a handler follows it; if both listeners of "
              "a device have read it, this is said of the other line\n"
              "4.102 event0 KEY_E 1 open [] no line of a handler follows it; if both listeners of "
              "a device have read it, this is said of the other line\n"
              "4.102 event0 KEY_D 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n");
}

TEST(ReadTranscript, ReadsPacketsOfOneListenerWithoutItsDescriptor)
{
    WrittenLog log;
    log.device(0, "panel").select("").wait(5000);
    log.add(listeners, " type: 1 code:30 value:1").record(KEY_B, 1);
    log.stored({"30 press"}).passedOn(KEY_A, 1).event("", "CharA", "KeyPressed");
    log.stored({"30 press", "48 press"}).passedOn(KEY_A, 0).passedOn(KEY_A, 1);
    log.passedOn(KEY_B, 1).event("", "Power", "KeyPressed").wait(100);
    log.record(KEY_B, 0).storedAgain(48, {"30 press", "48 release"});
    log.record(KEY_A, 0).storedAgain(30, {"30 release", "48 release"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 0).event("", "Power", "KeyReleased");
    log.record(KEY_C, 1).record(KEY_C, 1).wait(500).record(KEY_D, 1).wait(490).record(KEY_C, 0);
    log.stored({"32 press"}).passedOn(KEY_D, 1).event("", "CharD", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "5.070 event0 KEY_A 1\n"
              "5.080 event0 KEY_B 1\n"
              "5.130 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "5.130 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "5.140 event0 first-key-withdrawn KEY_A for ''\n"
              "5.170 event0 chord-found KEY_A+KEY_B for '', mapped\n"
              "5.190 => Power KeyPressed of event0 LocalUI KEY_A+KEY_B\n"
              "5.190 event0 KEY_B 1 published [Power KeyPressed] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone\n"
              "5.300 event0 KEY_B 0\n"
              "5.330 event0 KEY_B 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "5.340 event0 KEY_A 0\n"
              "5.370 event0 chord-released KEY_A+KEY_B for ''\n"
              "5.410 => Power KeyReleased of event0 LocalUI KEY_A+KEY_B\n"
              "5.410 event0 KEY_A 0 published [Power KeyReleased] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone\n"
              "5.420 event0 KEY_C 1\n"
              "5.440 event0 KEY_C 1\n"
              "5.960 event0 KEY_D 1\n"
              "5.970 event0 KEY_C 1 unread [] no key handler took it: the listener had no "
              "receiver\n"
              "5.970 event0 KEY_C 1 unread [] no key handler took it: the listener had no "
              "receiver\n"
              "6.470 event0 KEY_C 0\n"
              "6.520 => CharD KeyPressed of event0 LocalUI KEY_D\n"
              "6.520 event0 KEY_D 1 published [CharD KeyPressed]\n"
              "6.520 event0 KEY_C 0 unread [] no key handler took it: the listener had no "
              "receiver\n");
}

TEST(ReadTranscript, TakesNoRecordOfAnotherKeyBack)
{
    WrittenLog log;
    log.pace(1000).device(0, "panel", true).select("");
    log.record(KEY_D, 1).stored({"32 press"}).passedOn(KEY_D, 1);
    log.event("", "CharD", "KeyPressed").record(KEY_D, 1);
    log.stored({"32 press", "18 press"}).passedOn(KEY_D, 0).passedOn(KEY_D, 1);
    log.passedOn(KEY_E, 1).event("", "Power", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.004 + event0 'panel' LocalUI\n"
              "0.005 identifier ''\n"
              "0.007 event0 KEY_D 1\n"
              "0.012 => CharD KeyPressed of event0 LocalUI KEY_D\n"
              "0.012 event0 KEY_D 1 published [CharD KeyPressed]\n"
              "0.015 event0 first-key-withdrawn KEY_D for ''\n"
              "0.018 event0 chord-found KEY_D+KEY_E for '', mapped\n"
              "0.020 => Power KeyPressed of event0 LocalUI KEY_D+KEY_E\n");
}

TEST(ReadTranscript, TakesAPacketForTheOtherListenersWhileDevicesAreUnknown)
{
    WrittenLog log;
    log.pace(1000).record(KEY_A, 1).stored({"30 press"}).passedOn(KEY_A, 1);
    log.event("", "CharA", "KeyPressed").record(KEY_A, 1).wait(100);
    log.record(KEY_A, 0).record(KEY_A, 0).storedAgain(30, {"30 release"}).passedOn(KEY_A, 0);
    log.event("", "CharA", "KeyReleased").wait(100);
    log.record(KEY_B, 1);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # records do not say which device they are of: the log has no line of logger "
              "LinuxInputListener at TRACE\n"
              "0.000 # no devices: the log does not show that any was opened\n"
              "0.000 panel KEY_A 1\n"
              "0.005 => CharA KeyPressed of panel NoBus KEY_A\n"
              "0.005 panel KEY_A 1 published [CharA KeyPressed]\n"
              "0.108 panel KEY_A 0\n"
              "0.116 => CharA KeyReleased of panel NoBus KEY_A\n"
              "0.116 panel KEY_A 0 published [CharA KeyReleased]\n"
              "0.217 unknown device KEY_B 1\n"
              "0.218 unknown device KEY_B 1 open [] no line of a handler follows it; if both "
              "listeners of a device have read it, this is said of the other line\n");
}

TEST(ReadTranscript, KeepsRecordsWithoutADescriptorForASecond)
{
    WrittenLog log;
    log.pace(1000).device(0, "panel").select("");
    log.add(listeners, " type: 1 code:30 value:1").wait(998);
    log.add(listeners, " type: 1 code:48 value:1");
    log.add(listeners, " type: 0 code:0 value:0").stored({"30 press"}).passedOn(KEY_A, 1);
    log.event("", "CharA", "KeyPressed").wait(5000);
    log.add(listeners, " type: 1 code:46 value:1").wait(1000);
    log.add(listeners, " type: 1 code:32 value:1");
    log.add(listeners, " type: 0 code:0 value:0").stored({"30 press", "46 press"});
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.004 + event0 'panel' LocalUI\n"
        "0.005 identifier ''\n"
        "0.007 event0 KEY_A 1\n"
        "1.006 event0 KEY_B 1\n"
        "1.011 => CharA KeyPressed of event0 LocalUI KEY_A\n"
        "6.012 event0 KEY_C 1\n"
        "6.012 event0 KEY_C 1 unread [] no key handler took it: the listener had no receiver\n"
        "7.013 event0 KEY_D 1\n"
        "7.015 event0 first-key-withdrawn KEY_A for ''\n"
        "7.015 event0 KEY_A 1 published [CharA KeyPressed]\n"
        "7.015 event0 KEY_B 1 open [] the log has no line of the detector about it\n"
        "7.015 event0 chord-found KEY_A+KEY_C for ''\n"
        "7.015 event0 KEY_D 1 unread [] no key handler took it: the listener had no receiver\n");
}

TEST(ReadTranscript, TakesARepetitionWithinFiftyMillisecondsForTheOtherListeners)
{
    WrittenLog log;
    log.pace(1000).device(0, "panel", true);
    log.record(KEY_E, 1).wait(47).record(KEY_E, 1).wait(1000);
    log.record(KEY_F, 1).wait(48).record(KEY_F, 1);
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at DEBUG\n"
        "0.000 # no events: the log has no line of logger Input at DEBUG\n"
        "0.004 + event0 'panel' LocalUI\n"
        "0.005 event0 KEY_E 1\n"
        "0.055 event0 KEY_E 1 open [] the log does not say: it has no events\n"
        "1.056 event0 KEY_F 1\n"
        "1.106 event0 KEY_F 1\n"
        "1.107 event0 KEY_F 1 open [] no line of a handler follows it; if both listeners of a "
        "device have read it, this is said of the other line\n"
        "1.107 event0 KEY_F 1 open [] no line of a handler follows it; if both listeners of a "
        "device have read it, this is said of the other line\n");
}

TEST(ReadTranscript, TellsTheSameKeysOfTwoDevicesApart)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.press(6, KEY_1).event("", "Number1", "KeyPressed");
    log.release(6, KEY_1).event("", "Number1", "KeyReleased");
    log.press(5, KEY_A);
    log.press(6, KEY_A).event("", "Power", "KeyLongPress");
    log.bus("Power", "KeyLongPress");
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1);
    log.event("", "Power", "KeyLongPress");
    log.event("", "Stop", "KeyLongPress");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.100 identifier ''\n"
              "0.130 event1 KEY_1 1\n"
              "0.180 => Number1 KeyPressed of event1 LocalUI KEY_1\n"
              "0.180 event1 KEY_1 1 published [Number1 KeyPressed]\n"
              "0.200 event1 KEY_1 0\n"
              "0.260 => Number1 KeyReleased of event1 LocalUI KEY_1\n"
              "0.260 event1 KEY_1 0 published [Number1 KeyReleased]\n"
              "0.280 event0 KEY_A 1\n"
              "0.330 event1 KEY_A 1\n"
              "0.380 event0 KEY_A 1 held [] held back until the release or a long press\n"
              "0.380 => Power KeyLongPress of event0 LocalUI KEY_A\n"
              "0.390 => Power KeyLongPress of ? NoBus ?\n"
              "0.410 event0 KEY_B 1\n"
              "0.430 event0 first-key-withdrawn KEY_A for ''\n"
              "0.460 event0 chord-found KEY_A+KEY_B for ''\n"
              "0.480 => Power KeyLongPress of event0 LocalUI KEY_A\n"
              "0.500 => Stop KeyLongPress of event0 LocalUI ?\n"
              "0.500 event0 KEY_B 1 unmapped [] KEY_A + KEY_B have no command together, nor has "
              "KEY_B one\n"
              "0.500 event1 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n");
}

TEST(ReadTranscript, KeepsSixtyFourRecordsWithoutADescriptor)
{
    const auto transcript = [](int count) {
        WrittenLog log;
        log.pace(1000).device(0, "panel");
        for (int code = KEY_ESC; code < KEY_ESC + count; ++code)
            log.add(listeners, QStringLiteral(" type: 1 code:%1 value:1").arg(code));
        return log.stored({"1 press"}).bus("CharA", "KeyPressed").transcript();
    };
    const char *published = "event0 KEY_ESC 1 published [CharA KeyPressed]";
    const char *unread = "event0 KEY_ESC 1 unread";
    EXPECT_THAT(transcript(64), testing::HasSubstr(published));
    EXPECT_THAT(transcript(65), testing::HasSubstr(unread));
    EXPECT_THAT(transcript(65), testing::Not(testing::HasSubstr(published)));
}

TEST(ReadTranscript, GoesOnWithAPairThatASlotHeldUp)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.press(6, KEY_1).event("", "Number1", "KeyPressed");
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.event("", "CharA", "KeyReleased");
    log.release(6, KEY_1).event("", "Number1", "KeyReleased");
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1);
    log.event("", "Number1", "KeyPressed");
    log.event("", "Power", "KeyPressed");
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 press", "48 release"});
    log.read(5).record(KEY_A, 0).storedAgain(30, {"30 release", "48 release"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 0).event("", "Power", "KeyReleased");
    // The withdrawal's slot let the first key go, so the pair counts as released.
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.event("", "CharA", "KeyReleased");
    log.read(5).record(KEY_A, 0).storedAgain(30, {"30 release", "48 press"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 1).event("", "Power", "KeyReleased");
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 release", "48 release"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 0);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.100 identifier ''\n"
              "0.130 event1 KEY_1 1\n"
              "0.180 => Number1 KeyPressed of event1 LocalUI KEY_1\n"
              "0.180 event1 KEY_1 1 published [Number1 KeyPressed]\n"
              "0.200 event0 KEY_A 1\n"
              "0.250 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.250 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.270 event0 KEY_B 1\n"
              "0.290 event0 first-key-withdrawn KEY_A for ''\n"
              "0.320 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.340 event1 KEY_1 0\n"
              "0.400 => Number1 KeyReleased of event1 LocalUI KEY_1\n"
              "0.400 event1 KEY_1 0 published [Number1 KeyReleased]\n"
              "0.420 event0 chord-found KEY_A+KEY_B for ''\n"
              "0.440 => Number1 KeyPressed of event1 LocalUI ?\n"
              "0.460 => Power KeyPressed of event0 LocalUI ?\n"
              "0.460 event0 KEY_B 1 published [CharA KeyReleased]\n"
              "0.480 event0 KEY_B 0\n"
              "0.510 event0 KEY_B 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "0.530 event0 KEY_A 0\n"
              "0.560 event0 chord-released KEY_A+KEY_B for ''\n"
              "0.600 => Power KeyReleased of event0 LocalUI KEY_A+KEY_B\n"
              "0.600 event0 KEY_A 0 published [Power KeyReleased] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone\n"
              "0.620 event0 KEY_A 1\n"
              "0.670 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.670 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.690 event0 KEY_B 1\n"
              "0.710 event0 first-key-withdrawn KEY_A for ''\n"
              "0.740 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.760 event0 KEY_A 0\n"
              "0.790 event0 KEY_A 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "0.810 event0 chord-found KEY_A+KEY_B for '', mapped\n"
              "0.830 => Power KeyReleased of event0 LocalUI KEY_A+KEY_B\n"
              "0.830 event0 KEY_B 1 published [CharA KeyReleased, Power KeyReleased] the log does "
              "not say whether for KEY_A + KEY_B or for KEY_B alone\n"
              "0.850 event0 KEY_B 0\n"
              "0.880 event0 chord-released KEY_A+KEY_B for ''\n"
              "0.900 event0 KEY_B 0 unmapped [] KEY_A + KEY_B have no command together, nor has "
              "KEY_B one\n");
}

TEST(ReadTranscript, LetsFourSlotsHoldUpTheirReads)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    for (int code = KEY_1; code <= KEY_6; ++code) {
        log.read(5).add(listeners, QStringLiteral(" type: 1 code:%1 value:1").arg(code));
        log.record(KEY_A, 1).stored({QStringLiteral("%1 press").arg(code)}).passedOn(code, 1);
        log.report("panel", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
        log.add(handlers, "Enter BasicInputHandler::selectKeyHandler: ");
    }
    log.read(5);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_1 1\n"
              "0.090 event0 KEY_A 1\n"
              "0.140 => CharA KeyPressed of event0 LocalUI KEY_1\n"
              "0.150 event0 forgotten KEY_1 for ''\n"
              "0.150 event0 KEY_1 1 published [CharA KeyPressed]\n"
              "0.170 event0 KEY_2 1\n"
              "0.180 event0 KEY_A 1\n"
              "0.230 => CharA KeyPressed of event0 LocalUI KEY_2\n"
              "0.240 event0 forgotten KEY_2 for ''\n"
              "0.240 event0 KEY_2 1 published [CharA KeyPressed]\n"
              "0.260 event0 KEY_3 1\n"
              "0.270 event0 KEY_A 1\n"
              "0.320 => CharA KeyPressed of event0 LocalUI KEY_3\n"
              "0.330 event0 forgotten KEY_3 for ''\n"
              "0.330 event0 KEY_3 1 published [CharA KeyPressed]\n"
              "0.350 event0 KEY_4 1\n"
              "0.360 event0 KEY_A 1\n"
              "0.410 => CharA KeyPressed of event0 LocalUI KEY_4\n"
              "0.420 event0 forgotten KEY_4 for ''\n"
              "0.420 event0 KEY_4 1 published [CharA KeyPressed]\n"
              "0.440 event0 KEY_5 1\n"
              "0.450 event0 KEY_A 1\n"
              "0.500 => CharA KeyPressed of event0 LocalUI KEY_5\n"
              "0.510 event0 forgotten KEY_5 for ''\n"
              "0.510 event0 KEY_5 1 published [CharA KeyPressed]\n"
              "0.510 event0 KEY_A 1 open [] the log has no line of the detector about it\n"
              "0.530 event0 KEY_6 1\n"
              "0.540 event0 KEY_A 1\n"
              "0.590 => CharA KeyPressed of event0 LocalUI KEY_6\n"
              "0.600 event0 forgotten KEY_6 for ''\n"
              "0.600 event0 KEY_6 1 published [CharA KeyPressed]\n"
              "0.600 event0 KEY_A 1 open [] the log has no line of the detector about it\n"
              "0.600 event0 KEY_A 1 open [] the log has no line of the detector about it\n"
              "0.600 event0 KEY_A 1 open [] the log has no line of the detector about it\n"
              "0.600 event0 KEY_A 1 open [] the log has no line of the detector about it\n"
              "0.600 event0 KEY_A 1 open [] the log has no line of the detector about it\n");
}

TEST(ReadTranscript, SurvivesAReadThatFailsWithoutItsDescriptor)
{
    WrittenLog log;
    log.device(0, "panel").add(listeners, " type: 0 code:0 value:0");
    log.add(listeners, "Error reading from event device /dev/input/event0");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at DEBUG\n"
        "0.000 # no events: the log has no line of logger Input at DEBUG\n"
        "0.040 + event0 'panel' LocalUI\n"
        "0.060 # the library complains: Error reading from event device /dev/input/event0; it does "
        "not read it any more\n");
}

TEST(ReadTranscript, TakesNoEventForAKeyWhoseSlotHasReturned)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.read(5).add(listeners, " type: 1 code:30 value:1").record(KEY_B, 1);
    log.stored({"30 press"}).passedOn(KEY_A, 1).event("", "CharA", "KeyPressed");
    log.press(6, KEY_1);
    log.release(6, KEY_1).event("", "Number1", "KeyPressed");
    log.stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.event("", "CharA", "KeyReleased");
    log.event("", "Number1", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.100 identifier ''\n"
              "0.130 event0 KEY_A 1\n"
              "0.140 event0 KEY_B 1\n"
              "0.190 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.210 event1 KEY_1 1\n"
              "0.260 event1 KEY_1 0\n"
              "0.320 => Number1 KeyPressed of event1 LocalUI KEY_1\n"
              "0.320 event1 KEY_1 1 held [] held back until the release\n"
              "0.320 event1 KEY_1 0 published [Number1 KeyPressed]\n"
              "0.320 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.330 event0 first-key-withdrawn KEY_A for ''\n"
              "0.360 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.380 => Number1 KeyReleased of event1 LocalUI ?\n"
              "0.380 event0 KEY_B 1 published [CharA KeyReleased]\n");
}
