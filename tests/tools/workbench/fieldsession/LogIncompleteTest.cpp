#include "WrittenLog.h"

#include <gmock/gmock.h>

#include <linux/input.h>

namespace {

constexpr const char *handlers = WrittenLog::handlers;
constexpr const char *listeners = WrittenLog::listeners;
constexpr const char *detectors = WrittenLog::detectors;

} // namespace

TEST(LogIncomplete, TellsWhatIsPublishedForKeysWithoutRecords)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.stored({"30 press"}).passedOn(KEY_A, 1).event("", "CharA", "KeyPressed");
    log.storedAgain(30, {"30 release"}).passedOn(KEY_A, 0);
    log.event("", "CharA", "KeyReleased");
    log.stored({"48 press"}).passedOn(KEY_B, 1);
    log.stored({"48 press", "46 press"}).passedOn(KEY_B, 0).passedOn(KEY_B, 1).passedOn(KEY_C, 1);
    log.event("", "Power", "KeyPressed");
    log.add(detectors, "Double key press detected and new press event received -> drop");
    log.storedAgain(46, {"48 press", "46 release"});
    log.storedAgain(48, {"48 release", "46 release"}).passedOn(KEY_B, 0).passedOn(KEY_C, 0);
    log.event("", "Power", "KeyReleased");
    log.stored({"32 press"})
        .passedOn(KEY_D, 1)
        .add(detectors, "Received release for non existing press -> drop");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.040 + event0 'panel' LocalUI\n"
        "0.050 identifier ''\n"
        "0.100 => CharA KeyPressed of event0 LocalUI KEY_A\n"
        "0.150 => CharA KeyReleased of event0 LocalUI KEY_A\n"
        "0.180 event0 first-key-withdrawn KEY_B for ''\n"
        "0.210 event0 chord-found KEY_B+KEY_C for '', mapped\n"
        "0.230 => Power KeyPressed of event0 LocalUI KEY_B+KEY_C\n"
        "0.240 # a key was dropped, since KEY_B + KEY_C are down since 0.180 s; which one is not "
        "in the log\n"
        "0.280 event0 chord-released KEY_B+KEY_C for ''\n"
        "0.320 => Power KeyReleased of event0 LocalUI KEY_B+KEY_C\n"
        "0.350 # a key was dropped: a release without a press; which one is not in the log\n");
}

TEST(LogIncomplete, TakesAPacketForTheOtherListenersWhileDevicesAreUnknown)
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

TEST(LogIncomplete, FindsNoKeyForAnEventThatNoDetectorSpeaksOf)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    log.read(5).record(KEY_B, 1).event("", "CharB", "KeyPressed");
    log.read(5).record(KEY_B, 0).bus("CharB", "KeyReleased");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.040 + event0 'panel' LocalUI\n"
        "0.050 identifier ''\n"
        "0.080 event0 KEY_A 1\n"
        "0.130 => CharA KeyPressed of event0 LocalUI KEY_A\n"
        "0.130 event0 KEY_A 1 published [CharA KeyPressed]\n"
        "0.150 event0 KEY_B 1\n"
        "0.180 => CharB KeyPressed of event0 LocalUI ?\n"
        "0.180 event0 KEY_B 1 unread [] no key handler took it: the listener had no receiver\n"
        "0.200 event0 KEY_B 0\n"
        "0.220 => CharB KeyReleased of ? NoBus ?\n"
        "0.220 event0 KEY_B 0 unread [] no key handler took it: the listener had no receiver\n");
}

TEST(LogIncomplete, LeavesOpenWhichOfTwoClicksIsOver)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A);
    log.release(5, KEY_A).event("", "CharA", "KeyPressed");
    // A slot runs an event loop between the two events of the click.
    log.press(5, KEY_D);
    log.release(5, KEY_D).event("", "CharA", "KeyReleased");
    log.event("", "CharA", "KeyReleased");
    log.event("", "CharD", "KeyReleased");
    // Of another command it is the inner one's.
    log.press(5, KEY_B);
    log.release(5, KEY_B).event("", "CharB", "KeyPressed");
    log.press(5, KEY_E).event("", "CharE", "KeyPressed");
    log.release(5, KEY_E).event("", "CharE", "KeyReleased");
    log.event("", "CharB", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.130 event0 KEY_A 0\n"
              "0.190 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.210 event0 KEY_D 1\n"
              "0.260 event0 KEY_D 0\n"
              "0.320 => CharA KeyReleased of event0 LocalUI ?\n"
              "0.320 event0 KEY_D 1 open [] the log does not say whether CharA KeyReleased is of "
              "this record or of another one: a slot ran an event loop\n"
              "0.320 event0 KEY_D 0 open [] the log does not say whether CharA KeyReleased is of "
              "this record or of another one: a slot ran an event loop\n"
              "0.340 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.360 => CharD KeyReleased of event0 LocalUI ?\n"
              "0.360 event0 KEY_A 1 held [] held back until the release\n"
              "0.360 event0 KEY_A 0 published [CharA KeyPressed, CharA KeyReleased]\n"
              "0.380 event0 KEY_B 1\n"
              "0.430 event0 KEY_B 0\n"
              "0.490 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.510 event0 KEY_E 1\n"
              "0.560 => CharE KeyPressed of event0 LocalUI KEY_E\n"
              "0.560 event0 KEY_E 1 published [CharE KeyPressed]\n"
              "0.580 event0 KEY_E 0\n"
              "0.640 => CharE KeyReleased of event0 LocalUI KEY_E\n"
              "0.640 event0 KEY_E 0 published [CharE KeyReleased]\n"
              "0.660 => CharB KeyReleased of event0 LocalUI KEY_B\n"
              "0.660 event0 KEY_B 1 held [] held back until the release\n"
              "0.660 event0 KEY_B 0 published [CharB KeyPressed, CharB KeyReleased]\n");
}

TEST(LogIncomplete, GoesOnWithAPairThatASlotHeldUp)
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

TEST(LogIncomplete, FindsTheOnlyKeyOfALongPress)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.press(6, KEY_1).event("", "Number1", "KeyPressed");
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    log.event("", "CharA", "KeyLongPress");
    log.event("", "Number1", "KeyLongPress");
    log.bus("CharA", "KeyLongPress");
    log.release(5, KEY_A).event("", "CharA", "KeyReleased");
    // Two keys of a pair: only what a key has published before tells which it is.
    log.press(5, KEY_A);
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1);
    log.event("", "CharB", "KeyLongPress");
    log.event("", "CharA", "KeyLongPress");
    log.select("text");
    log.event("", "CharA", "KeyLongPress");
    log.event("", "CharZ", "KeyLongPress");
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
              "0.270 => CharA KeyLongPress of event0 LocalUI KEY_A\n"
              "0.290 => Number1 KeyLongPress of event1 LocalUI KEY_1\n"
              "0.300 => CharA KeyLongPress of ? NoBus ?\n"
              "0.300 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.320 event0 KEY_A 0\n"
              "0.380 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.380 event0 KEY_A 0 published [CharA KeyReleased]\n"
              "0.400 event0 KEY_A 1\n"
              "0.450 event0 KEY_B 1\n"
              "0.470 event0 first-key-withdrawn KEY_A for ''\n"
              "0.470 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.470 s\n"
              "0.500 event0 chord-found KEY_A+KEY_B for ''\n"
              "0.520 => CharB KeyLongPress of event0 LocalUI ?\n"
              "0.540 => CharA KeyLongPress of event0 LocalUI KEY_A\n"
              "0.550 identifier 'text'\n"
              "0.560 event0 forgotten KEY_A+KEY_B for ''\n"
              "0.560 event1 forgotten KEY_1 for ''\n"
              "0.580 => CharA KeyLongPress of event0 LocalUI KEY_A\n"
              "0.600 => CharZ KeyLongPress of event0 LocalUI ?\n"
              "0.600 event0 KEY_B 1 unmapped [] KEY_A + KEY_B have no command together, nor has "
              "KEY_B one\n");
}

TEST(LogIncomplete, LearnsWhatAKeyPublishesForEachIdentifier)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_B).event("", "CharB", "KeyPressed");
    log.release(5, KEY_B).event("", "CharB", "KeyReleased");
    log.select("text");
    log.press(5, KEY_A);
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1).event("text", "CharB", "KeyPressed");
    log.select("");
    log.press(5, KEY_A);
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1).event("", "CharB", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_B 1\n"
              "0.130 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.130 event0 KEY_B 1 published [CharB KeyPressed]\n"
              "0.150 event0 KEY_B 0\n"
              "0.210 => CharB KeyReleased of event0 LocalUI KEY_B\n"
              "0.220 identifier 'text'\n"
              "0.220 event0 KEY_B 0 published [CharB KeyReleased]\n"
              "0.250 event0 KEY_A 1\n"
              "0.300 event0 KEY_B 1\n"
              "0.320 event0 first-key-withdrawn KEY_A for 'text'\n"
              "0.320 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.320 s\n"
              "0.350 event0 chord-found KEY_A+KEY_B for 'text', mapped\n"
              "0.370 => CharB KeyPressed of event0 LocalUI KEY_A+KEY_B\n"
              "0.380 identifier ''\n"
              "0.390 event0 forgotten KEY_A+KEY_B for 'text'\n"
              "0.390 event0 KEY_B 1 published [CharB KeyPressed] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone\n"
              "0.410 event0 KEY_A 1\n"
              "0.460 event0 KEY_B 1\n"
              "0.480 event0 first-key-withdrawn KEY_A for ''\n"
              "0.480 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.480 s\n"
              "0.510 event0 chord-found KEY_A+KEY_B for ''\n"
              "0.530 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.530 event0 KEY_B 1 published [CharB KeyPressed] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone, which published CharB before\n");
}

TEST(LogIncomplete, ForgetsNoKeysOfAHandlerThatIsSelectedNoLonger)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.read(5).add(listeners, " type: 1 code:32 value:1").record(KEY_A, 1);
    log.stored({"32 press"}).passedOn(KEY_D, 1).event("", "CharD", "KeyPressed");
    // The rest of the read goes to the handler that began it.
    log.select("text").stored({"30 press"}).passedOn(KEY_A, 1);
    log.event("", "CharA", "KeyPressed");
    log.select("menu").select("");
    log.read(5).record(KEY_A, 0).add(detectors, "Received release for non existing press -> drop");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_D 1\n"
              "0.090 event0 KEY_A 1\n"
              "0.140 => CharD KeyPressed of event0 LocalUI KEY_D\n"
              "0.150 identifier 'text'\n"
              "0.160 event0 forgotten KEY_D for ''\n"
              "0.160 event0 KEY_D 1 published [CharD KeyPressed]\n"
              "0.200 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.210 identifier 'menu'\n"
              "0.230 identifier ''\n"
              "0.230 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.260 event0 KEY_A 0\n"
              "0.280 event0 dropped KEY_A for ''\n"
              "0.280 event0 KEY_A 0 dropped [] dropped: its press had been forgotten, by a "
              "selection that the log does not show\n");
}

TEST(LogIncomplete, LetsFourSlotsHoldUpTheirReads)
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

TEST(LogIncomplete, KeepsRecordsWithoutADescriptorForASecond)
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

TEST(LogIncomplete, TellsWhatTheLibraryComplainsOf)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    // It was read before it failed.
    log.read(5).record(KEY_B, 1).add(listeners,
                                     "Error reading from event device /dev/input/event0");
    log.release(5, KEY_A).event("", "CharA", "KeyReleased");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.040 + event0 'panel' LocalUI\n"
        "0.050 identifier ''\n"
        "0.080 event0 KEY_A 1\n"
        "0.130 => CharA KeyPressed of event0 LocalUI KEY_A\n"
        "0.130 event0 KEY_A 1 published [CharA KeyPressed]\n"
        "0.150 event0 KEY_B 1\n"
        "0.170 # the library complains: Error reading from event device /dev/input/event0; it does "
        "not read it any more\n"
        "0.170 event0 KEY_B 1 unread [] no key handler took it: the listener had no receiver\n"
        "0.190 event0 KEY_A 0\n"
        "0.250 => CharA KeyReleased of event0 LocalUI KEY_A\n"
        "0.250 event0 KEY_A 0 published [CharA KeyReleased]\n");
}

TEST(LogIncomplete, TellsADeviceThatTheLogEndsWith)
{
    WrittenLog log;
    log.device(0, "panel");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.030 + event0 'panel' LocalUI\n");
}

TEST(LogIncomplete, FindsTheDeviceOfKeysThatNoHandlerSpeaksOf)
{
    WrittenLog log;
    log.device(0, "panel").stored({"30 press"}).bus("CharA", "KeyPressed");
    log.read(5).add(listeners, " type: 4 code:4 value:30").record(KEY_B, 1).stored({"48 press"});
    log.bus("CharB", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # events do not say who reported them, and selections are missing: the log "
              "has no line of logger BasicInputHandler at TRACE\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.060 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.080 event0 MSC_SCAN 30\n"
              "0.080 event0 MSC_SCAN 30 not-taken [] the library takes EV_KEY and EV_SW only\n"
              "0.090 event0 KEY_B 1\n"
              "0.110 # /dev/input/event0 had KEY_A down, and now has not: lines are missing, or a "
              "selection that the log does not show\n"
              "0.120 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.120 event0 KEY_B 1 published [CharB KeyPressed]\n");
}

TEST(LogIncomplete, KnowsDevicesThatOnlyTheirListenersSpeakOf)
{
    WrittenLog log;
    for (const char *path : {"/dev/input/event0", "/dev/input/event1"}) {
        log.add(listeners, QStringLiteral("Event device %1 ready").arg(path));
        log.add(listeners, QStringLiteral("Event device %1 does not support EV_SW").arg(path));
    }
    log.read(6).record(KEY_A, 1);
    log.read(5).add(listeners, "Error reading from event device /dev/input/event0");
    log.add(listeners, " type: 0 code:0 value:0");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at DEBUG\n"
        "0.000 # no events: the log has no line of logger Input at DEBUG\n"
        "0.010 + event0 '' NoBus\n"
        "0.030 + event1 '' NoBus\n"
        "0.050 event1 KEY_A 1\n"
        "0.060 event1 KEY_A 1 open [] the log does not say: it has no events\n"
        "0.080 # the library complains: Error reading from event device /dev/input/event0; it does "
        "not read it any more\n");
}

TEST(LogIncomplete, SurvivesAReadThatFailsWithoutItsDescriptor)
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

TEST(LogIncomplete, KeepsTheKeysOfOtherDevicesThanTheOneThatGoes)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote");
    log.add(listeners, "Event device /dev/input/event2 does not support EV_KEY");
    log.add(listeners, "bustype: 25").add(listeners, "name: jacks");
    log.add(listeners, "Event device /dev/input/event2 ready");
    log.press(5, KEY_A);
    log.add(handlers, "Removing /dev/input/event2");
    log.release(5, KEY_A).event("", "CharA", "KeyPressed");
    log.event("", "CharA", "KeyReleased");
    log.press(5, KEY_B);
    log.add(handlers, "Removing /dev/input/event1");
    log.release(5, KEY_B).event("", "CharB", "KeyPressed");
    log.event("", "CharB", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.130 + event2 'jacks' LocalUI\n"
              "0.150 event0 KEY_A 1\n"
              "0.190 - event2 'jacks' LocalUI\n"
              "0.210 event0 KEY_A 0\n"
              "0.270 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.290 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.290 event0 KEY_A 1 held [] held back until the release\n"
              "0.290 event0 KEY_A 0 published [CharA KeyPressed, CharA KeyReleased]\n"
              "0.310 event0 KEY_B 1\n"
              "0.350 - event1 'remote' LocalUI\n"
              "0.370 event0 KEY_B 0\n"
              "0.430 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.450 => CharB KeyReleased of event0 LocalUI KEY_B\n"
              "0.450 event0 KEY_B 1 held [] held back until the release\n"
              "0.450 event0 KEY_B 0 published [CharB KeyPressed, CharB KeyReleased]\n");
}

TEST(LogIncomplete, TakesAnEventWithinASecondForThatOfTheKey)
{
    WrittenLog log;
    log.pace(1000).device(0, "panel");
    log.read(5).record(KEY_A, 1).stored({"30 press"}).wait(999).bus("CharA", "KeyPressed");
    log.read(5)
        .record(KEY_B, 1)
        .stored({"30 press", "48 press"})
        .wait(1000)
        .bus("Power", "KeyPressed");
    log.read(5).record(KEY_A, 0).storedAgain(30, {"30 release", "48 press"});
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 release", "48 release"});
    log.wait(1000).bus("Power", "KeyReleased");
    // The release of a click comes when its slots have returned.
    log.read(5).record(KEY_C, 1).stored({"46 press"});
    log.read(5).record(KEY_C, 0).storedAgain(46, {"46 release"}).bus("CharC", "KeyPressed");
    log.wait(2000).bus("CharC", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # events do not say who reported them, and selections are missing: the log "
              "has no line of logger BasicInputHandler at TRACE\n"
              "0.004 + event0 'panel' LocalUI\n"
              "0.006 event0 KEY_A 1\n"
              "1.008 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "1.008 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "1.010 event0 KEY_B 1\n"
              "1.012 event0 first-key-withdrawn KEY_A for ''\n"
              "2.013 => Power KeyPressed of ? NoBus ?\n"
              "2.013 event0 chord-found KEY_A+KEY_B for ''\n"
              "2.013 event0 KEY_B 1 unmapped [] KEY_A + KEY_B have no command together, nor has "
              "KEY_B one\n"
              "2.015 event0 KEY_A 0\n"
              "2.018 event0 KEY_A 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "2.020 event0 KEY_B 0\n"
              "2.023 event0 chord-released KEY_A+KEY_B for ''\n"
              "3.024 => Power KeyReleased of ? NoBus ?\n"
              "3.024 event0 KEY_B 0 unmapped [] KEY_A + KEY_B have no command together, nor has "
              "KEY_B one\n"
              "3.026 event0 KEY_C 1\n"
              "3.030 event0 KEY_C 0\n"
              "3.034 => CharC KeyPressed of event0 LocalUI KEY_C\n"
              "5.035 => CharC KeyReleased of event0 LocalUI KEY_C\n"
              "5.035 event0 KEY_C 1 held [] held back until the release\n"
              "5.035 event0 KEY_C 0 published [CharC KeyPressed, CharC KeyReleased]\n");
}

TEST(LogIncomplete, TakesAnEventWithinASecondForThatOfTheRecord)
{
    WrittenLog log;
    log.pace(1000).device(0, "panel");
    log.read(5).record(KEY_A, 1).wait(998).bus("CharA", "KeyPressed");
    log.read(5).record(KEY_B, 1).wait(999).bus("CharB", "KeyPressed");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at DEBUG\n"
        "0.000 # events do not say who reported them, and selections are missing: the log has no "
        "line of logger BasicInputHandler at TRACE\n"
        "0.004 + event0 'panel' LocalUI\n"
        "0.006 event0 KEY_A 1\n"
        "1.006 => CharA KeyPressed of event0 LocalUI KEY_A\n"
        "1.006 event0 KEY_A 1 published [CharA KeyPressed]\n"
        "1.008 event0 KEY_B 1\n"
        "2.009 => CharB KeyPressed of ? NoBus ?\n"
        "2.009 event0 KEY_B 1 open [] the log has no event that follows from it, and no steps of "
        "the detectors\n");
}

TEST(LogIncomplete, TakesARepetitionWithinFiftyMillisecondsForTheOtherListeners)
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

TEST(LogIncomplete, TakesAReleaseForThatOfTheInnermostClick)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.press(5, KEY_A);
    log.release(5, KEY_A).event("", "CharA", "KeyPressed");
    log.press(5, KEY_D);
    log.release(5, KEY_D).event("", "CharA", "KeyPressed");
    log.event("", "CharA", "KeyReleased");
    // One of another device is not meant.
    log.press(6, KEY_1).event("", "Number1", "KeyPressed");
    log.release(6, KEY_1);
    log.report("remote", "CharA", "KeyReleased").bus("CharA", "KeyReleased");
    log.event("", "CharA", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.100 identifier ''\n"
              "0.130 event0 KEY_A 1\n"
              "0.180 event0 KEY_A 0\n"
              "0.240 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.260 event0 KEY_D 1\n"
              "0.310 event0 KEY_D 0\n"
              "0.370 => CharA KeyPressed of event0 LocalUI KEY_D\n"
              "0.390 => CharA KeyReleased of event0 LocalUI KEY_D\n"
              "0.390 event0 KEY_D 1 held [] held back until the release\n"
              "0.390 event0 KEY_D 0 published [CharA KeyPressed, CharA KeyReleased]\n"
              "0.410 event1 KEY_1 1\n"
              "0.460 => Number1 KeyPressed of event1 LocalUI KEY_1\n"
              "0.460 event1 KEY_1 1 published [Number1 KeyPressed]\n"
              "0.480 event1 KEY_1 0\n"
              "0.540 => CharA KeyReleased of event1 LocalUI KEY_1\n"
              "0.540 event1 KEY_1 0 published [CharA KeyReleased]\n"
              "0.560 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.560 event0 KEY_A 1 held [] held back until the release\n"
              "0.560 event0 KEY_A 0 published [CharA KeyPressed, CharA KeyReleased]\n");
}

TEST(LogIncomplete, TakesNoEventForAKeyWhoseSlotHasReturned)
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

TEST(LogIncomplete, TakesNoSwitchOfAnotherReport)
{
    WrittenLog log;
    log.device(0, "panel", true).device(1, "remote").select("");
    log.report("panel", "SWLineIn", "SwitchDisabled").bus("SWLineIn", "SwitchDisabled");
    log.read(6).add(listeners, " type: 5 code:13 value:1").bus("SWLineIn", "SwitchEnabled");
    log.report("remote", "SWLineIn", "SwitchEnabled").bus("SWLineIn", "SwitchEnabled");
    log.report("panel", "SWLineIn", "SwitchEnabled").bus("SWLineIn", "SwitchEnabled");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at DEBUG\n"
        "0.040 + event0 'panel' LocalUI\n"
        "0.090 + event1 'remote' LocalUI\n"
        "0.100 identifier ''\n"
        "0.130 => SWLineIn SwitchDisabled of event0 LocalUI ?\n"
        "0.150 event0 SW_LINEIN_INSERT 1\n"
        "0.160 => SWLineIn SwitchEnabled of ? NoBus ?\n"
        "0.180 => SWLineIn SwitchEnabled of event1 LocalUI ?\n"
        "0.200 => SWLineIn SwitchEnabled of event0 LocalUI SW_LINEIN_INSERT\n"
        "0.200 event0 SW_LINEIN_INSERT 1 published [SWLineIn SwitchEnabled]\n");
}

TEST(LogIncomplete, SaysWhichSelectionAReleaseIsDroppedFor)
{
    const QString dropped = "Received release for non existing press -> drop";
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A);
    log.select("").event("", "CharA", "KeyLongPress");
    log.read(5).record(KEY_A, 0).add(detectors, dropped);
    log.read(5).record(KEY_A, 0).add(detectors, dropped);
    // Pressed again, it is no longer the one that was forgotten.
    log.press(5, KEY_B);
    log.select("");
    log.press(5, KEY_B);
    log.read(5).record(KEY_B, 0).add(detectors, dropped);
    log.event("", "CharB", "KeyLongPress");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.120 identifier ''\n"
              "0.130 event0 forgotten KEY_A for ''\n"
              "0.130 event0 KEY_A 1 open [] nothing was published for it; forgotten when handlers "
              "were selected, at 0.130 s\n"
              "0.150 => CharA KeyLongPress of event0 LocalUI KEY_A\n"
              "0.170 event0 KEY_A 0\n"
              "0.190 event0 dropped KEY_A for ''\n"
              "0.190 event0 KEY_A 0 dropped [] dropped: the handlers were selected at 0.130 s, "
              "which ended its press\n"
              "0.210 event0 KEY_A 0\n"
              "0.230 event0 dropped KEY_A for ''\n"
              "0.230 event0 KEY_A 0 dropped [] dropped: a release without a press\n"
              "0.250 event0 KEY_B 1\n"
              "0.290 identifier ''\n"
              "0.300 event0 forgotten KEY_B for ''\n"
              "0.300 event0 KEY_B 1 open [] nothing was published for it; forgotten when handlers "
              "were selected, at 0.300 s\n"
              "0.320 event0 KEY_B 1\n"
              "0.370 event0 KEY_B 0\n"
              "0.390 event0 KEY_B 1 open [] forgotten before its release at 0.390 s\n"
              "0.390 event0 dropped KEY_B for ''\n"
              "0.390 event0 KEY_B 0 dropped [] dropped: its press had been forgotten, by a "
              "selection that the log does not show\n"
              "0.410 => CharB KeyLongPress of event0 LocalUI ?\n");
}

TEST(LogIncomplete, TimesNoKeyThatWasReleased)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A).select("");
    log.press(5, KEY_A);
    log.release(5, KEY_A).event("", "CharA", "KeyLongPress");
    log.press(5, KEY_B).select("");
    log.press(5, KEY_B);
    log.read(5).record(KEY_C, 1).stored({"48 press", "46 press"}).passedOn(KEY_B, 0);
    log.passedOn(KEY_B, 1).passedOn(KEY_C, 1);
    log.read(5).record(KEY_C, 0).storedAgain(46, {"48 press", "46 release"});
    log.read(5).record(KEY_B, 0).storedAgain(48, {"48 release", "46 release"});
    log.passedOn(KEY_B, 0).passedOn(KEY_C, 0);
    log.event("", "CharB", "KeyLongPress");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.120 identifier ''\n"
              "0.130 event0 forgotten KEY_A for ''\n"
              "0.130 event0 KEY_A 1 open [] nothing was published for it; forgotten when handlers "
              "were selected, at 0.130 s\n"
              "0.150 event0 KEY_A 1\n"
              "0.200 event0 KEY_A 0\n"
              "0.260 => CharA KeyLongPress of event0 LocalUI ?\n"
              "0.260 event0 KEY_A 1 unmapped [] nothing was published, neither for the press nor "
              "for the release: it has no command\n"
              "0.260 event0 KEY_A 0 unmapped [] nothing was published, neither for the press nor "
              "for the release: it has no command\n"
              "0.280 event0 KEY_B 1\n"
              "0.320 identifier ''\n"
              "0.330 event0 forgotten KEY_B for ''\n"
              "0.330 event0 KEY_B 1 open [] nothing was published for it; forgotten when handlers "
              "were selected, at 0.330 s\n"
              "0.350 event0 KEY_B 1\n"
              "0.400 event0 KEY_C 1\n"
              "0.420 event0 first-key-withdrawn KEY_B for ''\n"
              "0.420 event0 KEY_B 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.420 s\n"
              "0.450 event0 chord-found KEY_B+KEY_C for ''\n"
              "0.450 event0 KEY_C 1 unmapped [] KEY_B + KEY_C have no command together, nor has "
              "KEY_C one\n"
              "0.470 event0 KEY_C 0\n"
              "0.500 event0 KEY_C 0 chord [] KEY_B + KEY_C are a pair until both are up\n"
              "0.520 event0 KEY_B 0\n"
              "0.550 event0 chord-released KEY_B+KEY_C for ''\n"
              "0.590 => CharB KeyLongPress of event0 LocalUI ?\n"
              "0.590 event0 KEY_B 0 unmapped [] KEY_B + KEY_C have no command together, nor has "
              "KEY_C one\n");
}

TEST(LogIncomplete, TimesAKeyWhoseReleaseWasDropped)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A);
    log.read(5).record(KEY_A, 0).add(detectors, "Received release for non existing press -> drop");
    log.event("", "CharA", "KeyLongPress");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.130 event0 KEY_A 0\n"
              "0.150 event0 KEY_A 1 open [] forgotten before its release at 0.150 s\n"
              "0.150 event0 dropped KEY_A for ''\n"
              "0.150 event0 KEY_A 0 dropped [] dropped: its press had been forgotten, by a "
              "selection that the log does not show\n"
              "0.170 => CharA KeyLongPress of event0 LocalUI KEY_A\n");
}

TEST(LogIncomplete, FindsTheDeviceOfKeysWithoutRecordsAndHandlers)
{
    WrittenLog log;
    log.device(0, "panel").stored({"30 press"}).bus("CharA", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # events do not say who reported them, and selections are missing: the log "
              "has no line of logger BasicInputHandler at TRACE\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.060 => CharA KeyPressed of event0 LocalUI KEY_A\n");
}

TEST(LogIncomplete, SeesThatKeysOfTheOnlyDeviceContradictEachOther)
{
    WrittenLog log;
    log.device(0, "panel").record(KEY_A, 1).stored({"30 press"}).bus("CharA", "KeyPressed");
    log.record(KEY_B, 1).stored({"48 press"}).bus("CharB", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # events do not say who reported them, and selections are missing: the log "
              "has no line of logger BasicInputHandler at TRACE\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 event0 KEY_A 1\n"
              "0.080 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.080 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.090 event0 KEY_B 1\n"
              "0.110 # /dev/input/event0 had KEY_A down, and now has not: lines are missing, or a "
              "selection that the log does not show\n"
              "0.120 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.120 event0 KEY_B 1 published [CharB KeyPressed]\n");
}

TEST(LogIncomplete, KnowsAllDevicesOnceItHasSeenTheFirstOfThem)
{
    for (const char *first :
         {" ---> added '/dev/input/event0'", "Enter BasicInputHandler::BasicInputHandler: "})
    {
        WrittenLog log;
        log.add(handlers, first).read(5).record(KEY_A, 1);
        log.add(listeners, "Event device /dev/input/event0 ready").read(5).record(KEY_A, 0);
        EXPECT_EQ(log.transcript(),
                  "0.000 start of a.log\n"
                  "0.000 # read from a log; records have the times of their lines\n"
                  "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing "
                  "at DEBUG\n"
                  "0.000 # no events: the log has no line of logger Input at DEBUG\n"
                  "0.020 event0 KEY_A 1\n"
                  "0.040 + event0 '' NoBus\n"
                  "0.040 event0 KEY_A 1 open [] the log does not say: it has no events\n"
                  "0.060 event0 KEY_A 0\n"
                  "0.070 event0 KEY_A 0 open [] the log does not say: it has no events\n")
            << first;
    }
}

TEST(LogIncomplete, DoesNotKnowAllDevicesIfItBeginsLater)
{
    WrittenLog log;
    log.read(5).record(KEY_A, 1).add(handlers, " ---> added '/dev/input/event0'");
    log.add(listeners, "Event device /dev/input/event0 ready").read(5).record(KEY_A, 0);
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at DEBUG\n"
        "0.000 # no events: the log has no line of logger Input at DEBUG\n"
        "0.010 descriptor 5 KEY_A 1\n"
        "0.040 + event0 '' NoBus\n"
        "0.040 descriptor 5 KEY_A 1 open [] the log does not say: it has no events\n"
        "0.060 descriptor 5 KEY_A 0\n"
        "0.070 descriptor 5 KEY_A 0 open [] the log does not say: it has no events\n");
}

TEST(LogIncomplete, BeginsAnewWhereNothingWasPressed)
{
    WrittenLog log;
    log.device(0, "panel").select("").add(handlers, "Enter BasicInputHandler::BasicInputHandler: ");
    log.device(1, "remote");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event1 'remote' LocalUI\n");
}

TEST(LogIncomplete, GoesOnWithAPairWhoseLinesAreMissing)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A);
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1).event("", "Power", "KeyPressed");
    // Without the line that the key is there already.
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"});
    // Without the release of the other key.
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 release", "48 release"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 0).event("", "Power", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.130 event0 KEY_B 1\n"
              "0.150 event0 first-key-withdrawn KEY_A for ''\n"
              "0.150 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.150 s\n"
              "0.180 event0 chord-found KEY_A+KEY_B for '', mapped\n"
              "0.200 => Power KeyPressed of event0 LocalUI KEY_A+KEY_B\n"
              "0.200 event0 KEY_B 1 published [Power KeyPressed] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone\n"
              "0.220 event0 KEY_B 1\n"
              "0.240 # KEY_B is pressed although it was down: the release in between was lost\n"
              "0.240 event0 KEY_B 1 chord [] KEY_A + KEY_B are a pair already\n"
              "0.260 event0 KEY_B 0\n"
              "0.290 event0 chord-released KEY_A+KEY_B for ''\n"
              "0.330 => Power KeyReleased of event0 LocalUI KEY_A+KEY_B\n"
              "0.330 event0 KEY_B 0 published [Power KeyReleased] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone\n");
}

TEST(LogIncomplete, TellsTheSameKeysOfTwoDevicesApart)
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

TEST(LogIncomplete, KeepsSixtyFourRecordsWithoutADescriptor)
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
