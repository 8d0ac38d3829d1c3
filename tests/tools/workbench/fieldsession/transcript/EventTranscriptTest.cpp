#include "WrittenLog.h"

#include <gtest/gtest.h>

#include <linux/input.h>

namespace {

constexpr const char *listeners = WrittenLog::listeners;

} // namespace

TEST(EventTranscript, FindsTheKeyOfAnEventWithoutLinesOfDetectors)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.read(5).record(KEY_A, 1).event("", "CharA", "KeyPressed");
    log.read(5).record(KEY_A, 0).event("", "CharA", "KeyReleased");
    log.read(5).record(KEY_B, 1);
    log.read(5).record(KEY_B, 0).event("", "CharB", "KeyPressed");
    log.event("", "CharB", "KeyReleased");
    // One of two, and none at all.
    log.read(5).add(listeners, " type: 1 code:30 value:1").record(KEY_C, 1);
    log.event("", "CharC", "KeyPressed");
    log.read(5).record(KEY_D, 1).wait(2000).event("", "Stop", "KeyPressed");
    log.event("", "Stop", "KeyLongPress");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at "
              "DEBUG\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.110 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.110 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.130 event0 KEY_A 0\n"
              "0.160 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.160 event0 KEY_A 0 published [CharA KeyReleased]\n"
              "0.180 event0 KEY_B 1\n"
              "0.190 event0 KEY_B 1 open [] the log has no event that follows from it, and no "
              "steps of the detectors\n"
              "0.210 event0 KEY_B 0\n"
              "0.240 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.260 => CharB KeyReleased of event0 LocalUI KEY_B\n"
              "0.260 event0 KEY_B 0 published [CharB KeyPressed, CharB KeyReleased]\n"
              "0.280 event0 KEY_A 1\n"
              "0.290 event0 KEY_C 1\n"
              "0.320 => CharC KeyPressed of event0 LocalUI ?\n"
              "0.320 event0 KEY_A 1 open [] the log has no event that follows from it, and no "
              "steps of the detectors\n"
              "0.320 event0 KEY_C 1 open [] the log has no event that follows from it, and no "
              "steps of the detectors\n"
              "0.340 event0 KEY_D 1\n"
              "2.370 => Stop KeyPressed of event0 LocalUI ?\n"
              "2.390 => Stop KeyLongPress of event0 LocalUI ?\n"
              "2.390 event0 KEY_D 1 open [] the log has no event that follows from it, and no "
              "steps of the detectors\n");
}

TEST(EventTranscript, FindsTheOnlyRecordOfAReadThatHasTheStateOfTheEvent)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.read(5).record(KEY_A, 0).record(KEY_B, 1).event("", "CharA", "KeyReleased");
    EXPECT_EQ(
        log.transcript(),
        "0.000 start of a.log\n"
        "0.000 # read from a log; records have the times of their lines\n"
        "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at DEBUG\n"
        "0.040 + event0 'panel' LocalUI\n"
        "0.050 identifier ''\n"
        "0.080 event0 KEY_A 0\n"
        "0.100 event0 KEY_B 1\n"
        "0.130 => CharA KeyReleased of event0 LocalUI KEY_A\n"
        "0.130 event0 KEY_A 0 published [CharA KeyReleased]\n"
        "0.130 event0 KEY_B 1 open [] the log has no line of the detector about it\n");
}

TEST(EventTranscript, TakesReportsForEventsWhereTheBusIsMissing)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A);
    log.report("panel", "CharA", "KeyPressed");
    log.release(5, KEY_A);
    log.report("panel", "CharA", "KeyReleased").report("panel", "Stop", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.130 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.130 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.140 event0 KEY_A 0\n"
              "0.200 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.200 => Stop KeyPressed of event0 LocalUI ?\n"
              "0.200 event0 KEY_A 0 published [CharA KeyReleased]\n");
}

TEST(EventTranscript, DoesNotTakeAnEventForAnotherReport)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A);
    log.report("panel", "CharA", "KeyPressed").bus("CharB", "KeyPressed");
    log.report("panel", "CharC", "KeyPressed").bus("CharC", "KeyReleased");
    log.report("panel", "CharA", "KeyReleased").bus("CharA", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.130 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.130 => CharB KeyPressed of ? NoBus ?\n"
              "0.150 => CharC KeyPressed of event0 LocalUI ?\n"
              "0.150 => CharC KeyReleased of ? NoBus ?\n"
              "0.170 => CharA KeyReleased of event0 LocalUI ?\n"
              "0.170 event0 KEY_A 1 published [CharA KeyPressed]\n");
}

TEST(EventTranscript, DoesNotTakeTheEventOfAnotherDevice)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.press(5, KEY_A);
    log.report("panel", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.report("remote", "CharA", "KeyReleased").bus("CharA", "KeyReleased");
    log.report("panel", "CharA", "KeyReleased").bus("CharA", "KeyReleased");
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1);
    log.report("remote", "Power", "KeyPressed").bus("Power", "KeyPressed");
    log.press(6, KEY_1);
    log.report("cupboard", "Number1", "KeyPressed").bus("Number1", "KeyPressed");
    log.report("remote", "Number1", "KeyLongPress").bus("Number1", "KeyLongPress");
    log.report("panel", "CharB", "KeyLongPress").bus("CharB", "KeyLongPress");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.100 identifier ''\n"
              "0.130 event0 KEY_A 1\n"
              "0.180 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.180 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.200 event0 KEY_B 1\n"
              "0.220 event0 first-key-withdrawn KEY_A for ''\n"
              "0.250 => CharA KeyReleased of event1 LocalUI ?\n"
              "0.270 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.290 event0 chord-found KEY_A+KEY_B for ''\n"
              "0.310 => Power KeyPressed of event1 LocalUI ?\n"
              "0.310 event0 KEY_B 1 published [CharA KeyReleased]\n"
              "0.330 event1 KEY_1 1\n"
              "0.380 => Number1 KeyPressed of event1 LocalUI KEY_1\n"
              "0.400 => Number1 KeyLongPress of event1 LocalUI KEY_1\n"
              "0.420 => CharB KeyLongPress of event0 LocalUI ?\n"
              "0.420 event1 KEY_1 1 published [Number1 KeyPressed]\n");
}

TEST(EventTranscript, FindsNoKeyForAnEventThatNoDetectorSpeaksOf)
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

TEST(EventTranscript, LeavesOpenWhichOfTwoClicksIsOver)
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

TEST(EventTranscript, FindsTheOnlyKeyOfALongPress)
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

TEST(EventTranscript, LearnsWhatAKeyPublishesForEachIdentifier)
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

TEST(EventTranscript, TakesAnEventWithinASecondForThatOfTheKey)
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

TEST(EventTranscript, TakesAnEventWithinASecondForThatOfTheRecord)
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

TEST(EventTranscript, TakesAReleaseForThatOfTheInnermostClick)
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

TEST(EventTranscript, TakesNoSwitchOfAnotherReport)
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
