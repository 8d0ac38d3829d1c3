#include "WrittenLog.h"

#include <gmock/gmock.h>

#include <linux/input.h>

#include <sstream>

namespace {

constexpr const char *handlers = WrittenLog::handlers;
constexpr const char *listeners = WrittenLog::listeners;
constexpr const char *detectors = WrittenLog::detectors;

} // namespace

TEST(LogTranscript, TellsWhatBecomesOfSingleKeys)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    log.release(5, KEY_A).event("", "CharA", "KeyReleased");
    // A deferred one.
    log.press(5, KEY_B);
    log.release(5, KEY_B).event("", "CharB", "KeyPressed");
    log.event("", "CharB", "KeyReleased");
    // One without a command.
    log.press(5, KEY_C);
    log.release(5, KEY_C);
    // A long press.
    log.press(5, KEY_B);
    log.wait(2000).event("", "CharB", "KeyLongPress");
    log.release(5, KEY_B);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.130 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.130 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.150 event0 KEY_A 0\n"
              "0.210 => CharA KeyReleased of event0 LocalUI KEY_A\n"
              "0.210 event0 KEY_A 0 published [CharA KeyReleased]\n"
              "0.230 event0 KEY_B 1\n"
              "0.280 event0 KEY_B 0\n"
              "0.340 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.360 => CharB KeyReleased of event0 LocalUI KEY_B\n"
              "0.360 event0 KEY_B 1 held [] held back until the release\n"
              "0.360 event0 KEY_B 0 published [CharB KeyPressed, CharB KeyReleased]\n"
              "0.380 event0 KEY_C 1\n"
              "0.430 event0 KEY_C 0\n"
              "0.470 event0 KEY_C 1 unmapped [] nothing was published, neither for the press nor "
              "for the release: it has no command\n"
              "0.470 event0 KEY_C 0 unmapped [] nothing was published, neither for the press nor "
              "for the release: it has no command\n"
              "0.490 event0 KEY_B 1\n"
              "2.540 event0 KEY_B 1 held [] held back until the release or a long press\n"
              "2.540 => CharB KeyLongPress of event0 LocalUI KEY_B\n"
              "2.560 event0 KEY_B 0\n"
              "2.600 event0 KEY_B 0 unmapped [] nothing was published for the release\n");
}

TEST(LogTranscript, TellsWhatBecomesOfPairs)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_B).event("", "CharB", "KeyPressed");
    log.release(5, KEY_B).event("", "CharB", "KeyReleased");
    // A pair with a command, and a third key meanwhile.
    log.press(5, KEY_A);
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1).event("", "Power", "KeyPressed");
    log.read(5).record(KEY_C, 1).add(detectors,
                                     "Double key press detected and new press event "
                                     "received -> drop");
    log.read(5).record(KEY_A, 2).storedAgain(30, {"30 release", "48 press"});
    log.read(5).record(KEY_A, 0).storedAgain(30, {"30 release", "48 press"});
    log.read(5).record(KEY_D, 1).add(detectors,
                                     "Double key press detected and new press event "
                                     "received -> drop");
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 release", "48 release"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 0).event("", "Power", "KeyReleased");
    // One that publishes its second key's command, and one without any.
    log.press(5, KEY_C);
    log.read(5).record(KEY_B, 1).stored({"46 press", "48 press"}).passedOn(KEY_C, 0);
    log.passedOn(KEY_C, 1).passedOn(KEY_B, 1).event("", "CharB", "KeyPressed");
    log.read(5).record(KEY_C, 0).storedAgain(46, {"46 release", "48 press"});
    log.read(5).record(KEY_B, 0).storedAgain(48, {"46 release", "48 release"});
    log.passedOn(KEY_C, 0).passedOn(KEY_B, 0).event("", "CharB", "KeyReleased");
    log.press(5, KEY_C);
    log.read(5).record(KEY_D, 1).stored({"46 press", "32 press"}).passedOn(KEY_C, 0);
    log.passedOn(KEY_C, 1).passedOn(KEY_D, 1);
    log.read(5).record(KEY_C, 0).storedAgain(46, {"46 release", "32 press"});
    log.read(5).record(KEY_D, 0).storedAgain(32, {"46 release", "32 release"});
    log.passedOn(KEY_C, 0).passedOn(KEY_D, 0);
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
              "0.210 event0 KEY_B 0 published [CharB KeyReleased]\n"
              "0.230 event0 KEY_A 1\n"
              "0.280 event0 KEY_B 1\n"
              "0.300 event0 first-key-withdrawn KEY_A for ''\n"
              "0.300 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.300 s\n"
              "0.330 event0 chord-found KEY_A+KEY_B for '', mapped\n"
              "0.350 => Power KeyPressed of event0 LocalUI KEY_A+KEY_B\n"
              "0.350 event0 KEY_B 1 published [Power KeyPressed] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone, which published CharB before\n"
              "0.370 event0 KEY_C 1\n"
              "0.390 event0 dropped KEY_C for ''\n"
              "0.390 event0 KEY_C 1 dropped [] dropped, since KEY_A + KEY_B are down since 0.300 "
              "s\n"
              "0.410 event0 KEY_A 2\n"
              "0.440 event0 KEY_A 2 chord [] KEY_A + KEY_B are a pair already\n"
              "0.460 event0 KEY_A 0\n"
              "0.490 event0 KEY_A 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "0.510 event0 KEY_D 1\n"
              "0.530 event0 dropped KEY_D for ''\n"
              "0.530 event0 KEY_D 1 dropped [] dropped, since KEY_B of the chord KEY_A + KEY_B, "
              "begun at 0.300 s, is still down\n"
              "0.550 event0 KEY_B 0\n"
              "0.580 event0 chord-released KEY_A+KEY_B for ''\n"
              "0.620 => Power KeyReleased of event0 LocalUI KEY_A+KEY_B\n"
              "0.620 event0 KEY_B 0 published [Power KeyReleased] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone, which published CharB before\n"
              "0.640 event0 KEY_C 1\n"
              "0.690 event0 KEY_B 1\n"
              "0.710 event0 first-key-withdrawn KEY_C for ''\n"
              "0.710 event0 KEY_C 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.710 s\n"
              "0.740 event0 chord-found KEY_C+KEY_B for ''\n"
              "0.760 => CharB KeyPressed of event0 LocalUI KEY_B\n"
              "0.760 event0 KEY_B 1 published [CharB KeyPressed] the log does not say whether for "
              "KEY_C + KEY_B or for KEY_B alone, which published CharB before\n"
              "0.780 event0 KEY_C 0\n"
              "0.810 event0 KEY_C 0 chord [] KEY_C + KEY_B are a pair until both are up\n"
              "0.830 event0 KEY_B 0\n"
              "0.860 event0 chord-released KEY_C+KEY_B for ''\n"
              "0.900 => CharB KeyReleased of event0 LocalUI KEY_B\n"
              "0.900 event0 KEY_B 0 published [CharB KeyReleased] the log does not say whether for "
              "KEY_C + KEY_B or for KEY_B alone, which published CharB before\n"
              "0.920 event0 KEY_C 1\n"
              "0.970 event0 KEY_D 1\n"
              "0.990 event0 first-key-withdrawn KEY_C for ''\n"
              "0.990 event0 KEY_C 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.990 s\n"
              "1.020 event0 chord-found KEY_C+KEY_D for ''\n"
              "1.020 event0 KEY_D 1 unmapped [] KEY_C + KEY_D have no command together, nor has "
              "KEY_D one\n"
              "1.040 event0 KEY_C 0\n"
              "1.070 event0 KEY_C 0 chord [] KEY_C + KEY_D are a pair until both are up\n"
              "1.090 event0 KEY_D 0\n"
              "1.120 event0 chord-released KEY_C+KEY_D for ''\n"
              "1.140 event0 KEY_D 0 unmapped [] KEY_C + KEY_D have no command together, nor has "
              "KEY_D one\n");
}

TEST(LogTranscript, TellsWhatASelectionEnds)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.press(6, KEY_1).event("", "Number1", "KeyPressed");
    log.press(5, KEY_A);
    log.select("text");
    log.read(5).record(KEY_A, 0).add(detectors, "Received release for non existing press -> drop");
    log.read(6).record(KEY_1, 0).add(detectors, "Received release for non existing press -> drop");
    log.read(5).record(KEY_F, 0).add(detectors, "Received release for non existing press -> drop");
    // A pair that is in progress.
    log.press(5, KEY_B);
    log.read(5).record(KEY_C, 1).stored({"48 press", "46 press"}).passedOn(KEY_B, 0);
    log.passedOn(KEY_B, 1).passedOn(KEY_C, 1).event("text", "Power", "KeyPressed");
    log.select("");
    log.read(5).record(KEY_B, 0).add(detectors, "Received release for non existing press -> drop");
    // One that was about to begin, by a slot.
    log.press(5, KEY_B);
    log.read(5).record(KEY_C, 1).stored({"48 press", "46 press"}).passedOn(KEY_B, 0);
    log.select("");
    log.press(5, KEY_D);
    // A press that a selection has ended which the log does not show.
    log.read(5).record(KEY_D, 0).add(detectors, "Received release for non existing press -> drop");
    log.add(detectors, "Received release for non existing press -> drop");
    log.add(detectors, "Double key press detected and new press event received -> drop");
    log.press(5, KEY_E);
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
              "0.240 identifier 'text'\n"
              "0.250 event0 forgotten KEY_A for ''\n"
              "0.250 event0 KEY_A 1 open [] nothing was published for it; forgotten when handlers "
              "were selected, at 0.250 s\n"
              "0.250 event1 forgotten KEY_1 for ''\n"
              "0.270 event0 KEY_A 0\n"
              "0.290 event0 dropped KEY_A for ''\n"
              "0.290 event0 KEY_A 0 dropped [] dropped: the handlers were selected at 0.250 s, "
              "which ended its press\n"
              "0.310 event1 KEY_1 0\n"
              "0.330 event1 dropped KEY_1 for ''\n"
              "0.330 event1 KEY_1 0 dropped [] dropped: the handlers were selected at 0.250 s, "
              "which ended its press\n"
              "0.350 event0 KEY_F 0\n"
              "0.370 event0 dropped KEY_F for 'text'\n"
              "0.370 event0 KEY_F 0 dropped [] dropped: a release without a press\n"
              "0.390 event0 KEY_B 1\n"
              "0.440 event0 KEY_C 1\n"
              "0.460 event0 first-key-withdrawn KEY_B for 'text'\n"
              "0.460 event0 KEY_B 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.460 s\n"
              "0.490 event0 chord-found KEY_B+KEY_C for 'text', mapped\n"
              "0.510 => Power KeyPressed of event0 LocalUI KEY_B+KEY_C\n"
              "0.520 identifier ''\n"
              "0.530 event0 forgotten KEY_B+KEY_C for 'text'\n"
              "0.530 event0 KEY_C 1 published [Power KeyPressed] the log does not say whether for "
              "KEY_B + KEY_C or for KEY_C alone\n"
              "0.550 event0 KEY_B 0\n"
              "0.570 event0 dropped KEY_B for 'text'\n"
              "0.570 event0 KEY_B 0 dropped [] dropped: the handlers were selected at 0.530 s, "
              "which ended its press\n"
              "0.590 event0 KEY_B 1\n"
              "0.640 event0 KEY_C 1\n"
              "0.660 event0 first-key-withdrawn KEY_B for ''\n"
              "0.660 event0 KEY_B 1 open [] nothing was published for it: held back, or it has no "
              "command of its own; first key of a pair, withdrawn at 0.660 s\n"
              "0.680 identifier ''\n"
              "0.690 event0 forgotten KEY_B+KEY_C for ''\n"
              "0.690 event0 KEY_C 1 dropped [] the handlers were selected again before the pair "
              "was complete\n"
              "0.710 event0 KEY_D 1\n"
              "0.760 event0 KEY_D 0\n"
              "0.780 event0 KEY_D 1 open [] forgotten before its release at 0.780 s\n"
              "0.780 event0 dropped KEY_D for ''\n"
              "0.780 event0 KEY_D 0 dropped [] dropped: its press had been forgotten, by a "
              "selection that the log does not show\n"
              "0.790 # a key was dropped: a release without a press; which one is not in the log\n"
              "0.800 # a key was dropped, since two other keys are a pair; which one is not in the "
              "log\n"
              "0.820 event0 KEY_E 1\n"
              "0.850 event0 KEY_E 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n");
}

TEST(LogTranscript, TellsWhatIsLeftWhenADeviceGoes)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.press(6, KEY_1).event("", "Number1", "KeyPressed");
    log.press(5, KEY_A);
    log.read(6).record(KEY_2, 1).stored({"2 press", "3 press"}).passedOn(KEY_1, 0);
    log.event("", "Number1", "KeyReleased").passedOn(KEY_1, 1).passedOn(KEY_2, 1);
    log.add(listeners, "Error reading from event device /dev/input/event0");
    log.read(5).add(listeners, "Error reading from event device /dev/input/event0");
    log.add(handlers, "Removing /dev/input/event0");
    log.add(handlers, "Removing /dev/input/event7");
    // The descriptor is another device's now.
    log.device(2, "other").press(5, KEY_A);
    log.report("other", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.add(handlers, "Removing /dev/input/event1");
    log.release(5, KEY_A);
    log.report("other", "CharA", "KeyReleased").bus("CharA", "KeyReleased");
    log.press(5, KEY_B);
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
              "0.250 event1 KEY_2 1\n"
              "0.270 event1 first-key-withdrawn KEY_1 for ''\n"
              "0.300 => Number1 KeyReleased of event1 LocalUI KEY_1\n"
              "0.320 event1 chord-found KEY_1+KEY_2 for ''\n"
              "0.330 # the library complains: Error reading from event device /dev/input/event0; "
              "it does not read it any more\n"
              "0.330 event1 KEY_2 1 published [Number1 KeyReleased]\n"
              "0.350 # the library complains: Error reading from event device /dev/input/event0; "
              "it does not read it any more\n"
              "0.360 event0 KEY_A 1 open [] nothing was published for it before the device went at "
              "0.360 s\n"
              "0.360 - event0 'panel' LocalUI\n"
              "0.370 - event7 '' NoBus\n"
              "0.420 + event2 'other' LocalUI\n"
              "0.440 event2 KEY_A 1\n"
              "0.490 => CharA KeyPressed of event2 LocalUI KEY_A\n"
              "0.490 event2 KEY_A 1 published [CharA KeyPressed]\n"
              "0.500 - event1 'remote' LocalUI\n"
              "0.520 event2 KEY_A 0\n"
              "0.580 => CharA KeyReleased of event2 LocalUI KEY_A\n"
              "0.580 event2 KEY_A 0 published [CharA KeyReleased]\n"
              "0.600 event2 KEY_B 1\n"
              "0.630 event2 KEY_B 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n");
}

TEST(LogTranscript, LeavesOpenWhichUnknownDeviceHasGone)
{
    WrittenLog log;
    log.press(5, KEY_A);
    log.add(handlers, "Removing /dev/input/event0");
    log.press(5, KEY_A);
    log.report("panel", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # no devices: the log does not show that any was opened\n"
              "0.010 descriptor 5 KEY_A 1\n"
              "0.050 descriptor 5 KEY_A 1 open [] nothing was published for it before a device, "
              "perhaps its own, went at 0.050 s\n"
              "0.050 - event0 '' NoBus\n"
              "0.070 panel KEY_A 1\n"
              "0.120 => CharA KeyPressed of panel NoBus KEY_A\n"
              "0.120 panel KEY_A 1 published [CharA KeyPressed]\n");
}

TEST(LogTranscript, TellsWhatBecomesOfSwitches)
{
    WrittenLog log;
    log.device(0, "panel", true).select("");
    log.report("panel", "SWLineIn", "SwitchDisabled").bus("SWLineIn", "SwitchDisabled");
    for (const int descriptor : {5, 6}) {
        log.read(descriptor).add(listeners, " type: 5 code:13 value:1");
        log.add(listeners, " type: 5 code:2 value:0").add(listeners, " type: 0 code:0 value:0");
    }
    log.report("panel", "SWLineIn", "SwitchEnabled").bus("SWLineIn", "SwitchEnabled");
    log.report("panel", "SWMicIn", "SwitchDisabled").bus("SWMicIn", "SwitchDisabled");
    for (const int descriptor : {5, 6}) {
        log.read(descriptor).add(listeners, " type: 5 code:4 value:1");
        log.add(listeners, " type: 0 code:0 value:0");
    }
    for (const int descriptor : {5, 6}) {
        log.read(descriptor).add(listeners, " type: 4 code:4 value:30").record(KEY_A, 1);
        if (descriptor == 5)
            log.stored({"30 press"}).passedOn(KEY_A, 1);
        if (descriptor == 5)
            log.event("", "CharA", "KeyPressed");
    }
    // The product's own, of which no handler speaks.
    log.bus("CharA", "KeyPressed").bus("SWLineIn", "SwitchEnabled");
    // Neither listener has a handler that takes it.
    for (const int descriptor : {5, 6})
        log.read(descriptor).record(KEY_G, 1);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 => SWLineIn SwitchDisabled of event0 LocalUI ?\n"
              "0.100 event0 SW_LINEIN_INSERT 1\n"
              "0.110 event0 SW_HEADPHONE_INSERT 0\n"
              "0.180 => SWLineIn SwitchEnabled of event0 LocalUI SW_LINEIN_INSERT\n"
              "0.180 event0 SW_LINEIN_INSERT 1 published [SWLineIn SwitchEnabled]\n"
              "0.200 => SWMicIn SwitchDisabled of event0 LocalUI SW_HEADPHONE_INSERT\n"
              "0.200 event0 SW_HEADPHONE_INSERT 0 published [SWMicIn SwitchDisabled]\n"
              "0.220 event0 SW_MICROPHONE_INSERT 1\n"
              "0.260 event0 SW_MICROPHONE_INSERT 1 open [] nothing was published: it has no "
              "handler, or the handler has no command for it\n"
              "0.280 event0 MSC_SCAN 30\n"
              "0.280 event0 MSC_SCAN 30 not-taken [] the library takes EV_KEY and EV_SW only\n"
              "0.290 event0 KEY_A 1\n"
              "0.340 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.340 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.390 => CharA KeyPressed of ? NoBus ?\n"
              "0.400 => SWLineIn SwitchEnabled of ? NoBus ?\n"
              "0.420 event0 KEY_G 1\n"
              "0.460 event0 KEY_G 1 unread [] no key handler took it: the listener had no "
              "receiver\n");
}

TEST(LogTranscript, SaysWhyAKeyPublishedNothing)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_E).event("", "Stop", "KeyPressed");
    // No handler, a line that is missing, and a press that comes again.
    log.read(5).record(KEY_A, 1);
    log.read(5).add(listeners, " type: 1 code:30 value:1").record(KEY_B, 1);
    log.stored({"48 press"}).passedOn(KEY_B, 1);
    log.read(5).record(KEY_B, 2).storedAgain(48, {"48 release"}).passedOn(KEY_B, 2);
    log.read(5).record(KEY_B, 0);
    log.read(5).record(KEY_B, 1).storedAgain(48, {"48 press"}).passedOn(KEY_B, 1);
    log.stored({"46 press"});
    log.read(5).record(KEY_D, 1).storedAgain(32, {"32 press"}).passedOn(KEY_D, 1);
    log.read(5).record(KEY_D, 1);
    for (const int code : {1, 2, 4})
        log.add(listeners, QStringLiteral(" type: 0 code:%1 value:0").arg(code));
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_E 1\n"
              "0.130 => Stop KeyPressed of event0 LocalUI KEY_E\n"
              "0.130 event0 KEY_E 1 published [Stop KeyPressed]\n"
              "0.150 event0 KEY_A 1\n"
              "0.160 event0 KEY_A 1 unread [] no key handler took it: the listener had no "
              "receiver\n"
              "0.180 event0 KEY_A 1\n"
              "0.190 event0 KEY_B 1\n"
              "0.210 # /dev/input/event0 had KEY_E down, and now has not: lines are missing, or a "
              "selection that the log does not show\n"
              "0.220 event0 KEY_A 1 open [] the log has no line of the detector about it\n"
              "0.240 event0 KEY_B 2\n"
              "0.270 event0 KEY_B 1 open [] nothing was published for it before the key was "
              "pressed again or repeated at 0.270 s\n"
              "0.300 event0 KEY_B 0\n"
              "0.310 event0 KEY_B 0 unread [] no key handler took it: the listener had no "
              "receiver\n"
              "0.330 event0 KEY_B 1\n"
              "0.360 event0 KEY_B 2 open [] nothing was published for it before the key was "
              "pressed again or repeated at 0.360 s\n"
              "0.360 # KEY_B is pressed although it was down: the release in between was lost\n"
              "0.380 # /dev/input/event0 had KEY_B down, and now has not: lines are missing, or a "
              "selection that the log does not show\n"
              "0.400 event0 KEY_D 1\n"
              "0.430 # /dev/input/event0 had KEY_C down, and now has not: lines are missing, or a "
              "selection that the log does not show\n"
              "0.460 event0 KEY_D 1\n"
              "0.480 event0 SYN_CONFIG 0\n"
              "0.490 event0 SYN_MT_REPORT 0\n"
              "0.500 event0 4 0\n"
              "0.500 event0 KEY_D 1 open [] nothing was published for it before the key was "
              "pressed again or repeated at 0.500 s\n"
              "0.500 event0 KEY_D 1 unread [] no key handler took it: the listener had no "
              "receiver\n"
              "0.500 event0 KEY_B 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n");
}

TEST(LogTranscript, LeavesOpenWhyAnUnknownDevicePublishedNothing)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").select("");
    log.read(5).record(KEY_A, 1);
    log.press(6, KEY_A).event("", "CharA", "KeyPressed");
    log.read(7).record(KEY_A, 1).add(listeners, " type: 5 code:4 value:1");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.100 identifier ''\n"
              "0.130 event1 KEY_A 1\n"
              "0.140 event1 KEY_A 1 unread [] no key handler took it: the listener had no "
              "receiver\n"
              "0.160 event0 KEY_A 1\n"
              "0.210 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.210 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.230 descriptor 7 KEY_A 1\n"
              "0.250 descriptor 7 SW_MICROPHONE_INSERT 1\n"
              "0.250 descriptor 7 KEY_A 1 open [] no key handler took it: the listener had no "
              "receiver, or it is that of the switches of a device\n"
              "0.250 descriptor 7 SW_MICROPHONE_INSERT 1 open [] nothing was published: it has no "
              "handler, or the handler has no command for it\n");
}

TEST(LogTranscript, SaysThatALogHasNoEvents)
{
    WrittenLog log;
    log.device(0, "panel").press(5, KEY_A);
    log.release(5, KEY_A);
    log.read(5).record(KEY_B, 1);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # no events: the log has no line of logger Input at DEBUG\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.060 event0 KEY_A 1\n"
              "0.110 event0 KEY_A 0\n"
              "0.150 event0 KEY_A 1 open [] the log does not say: it has no events\n"
              "0.150 event0 KEY_A 0 open [] the log does not say: it has no events\n"
              "0.170 event0 KEY_B 1\n"
              "0.180 event0 KEY_B 1 open [] the log does not say: it has no events\n");
}

TEST(LogTranscript, ReadsPacketsOfTwoListenersWithoutTheirDescriptors)
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

TEST(LogTranscript, ReadsPacketsOfOneListenerWithoutItsDescriptor)
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

TEST(LogTranscript, FindsTheKeyOfAnEventWithoutLinesOfDetectors)
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

TEST(LogTranscript, TakesReportsForEventsWhereTheBusIsMissing)
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

TEST(LogTranscript, DoesNotTakeAnEventForAnotherReport)
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

TEST(LogTranscript, NamesADeviceByWhatItsHandlerSays)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").device(2, "remote").select("");
    log.press(5, KEY_A);
    log.report("keypad; id: x", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.press(6, KEY_A);
    log.report("remote", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.press(7, KEY_A);
    log.report("/dev/input/event2", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.press(8, KEY_A);
    log.report("cupboard", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.release(8, KEY_A);
    log.report("panel", "CharA", "KeyReleased").bus("CharA", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.140 + event2 'remote' LocalUI\n"
              "0.150 identifier ''\n"
              "0.180 descriptor 5 KEY_A 1\n"
              "0.230 => CharA KeyPressed of descriptor 5 NoBus KEY_A\n"
              "0.230 descriptor 5 KEY_A 1 published [CharA KeyPressed]\n"
              "0.250 descriptor 6 KEY_A 1\n"
              "0.300 => CharA KeyPressed of descriptor 6 NoBus KEY_A\n"
              "0.300 descriptor 6 KEY_A 1 published [CharA KeyPressed]\n"
              "0.320 event2 KEY_A 1\n"
              "0.370 => CharA KeyPressed of event2 LocalUI KEY_A\n"
              "0.370 event2 KEY_A 1 published [CharA KeyPressed]\n"
              "0.390 cupboard KEY_A 1\n"
              "0.440 => CharA KeyPressed of cupboard NoBus KEY_A\n"
              "0.440 cupboard KEY_A 1 published [CharA KeyPressed]\n"
              "0.460 cupboard KEY_A 0\n"
              "0.520 => CharA KeyReleased of event0 LocalUI ?\n"
              "0.520 cupboard KEY_A 0 unmapped [] nothing was published for the release\n");
}

TEST(LogTranscript, SaysWhichLinesComeLater)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote");
    for (int i = 0; i < 1000; ++i)
        log.add(listeners, " type: 0 code:0 value:0").add(listeners, " type: 0 code:3 value:0");
    log.bus("CharA", "KeyPressed")
        .bus("CharA", "KeyReleased")
        .select("")
        .stored({"30 press"})
        .read(5);
    const std::string text = log.transcript();
    const std::string dropped = "the kernel has dropped records";
    std::string remarks;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(" # ") != std::string::npos && line.find(dropped) == std::string::npos)
            remarks += line + "\n";
    }
    EXPECT_EQ(remarks,
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # records do not say which device they are of: the log has no line of logger "
              "LinuxInputListener at TRACE\n"
              "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at "
              "DEBUG\n"
              "0.000 # no events: the log has no line of logger Input at DEBUG\n"
              "20.100 # from here on the log has lines of logger Input at DEBUG\n"
              "20.120 # from here on the log has lines of logger BasicInputHandler at TRACE\n"
              "20.140 # from here on the log has lines of logger KeyProcessing at DEBUG\n"
              "20.150 # from here on the log has lines of logger LinuxInputListener at TRACE\n");
}

TEST(LogTranscript, SaysThatKeysAndLinesContradictEachOther)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.storedAgain(99, {"46 press"});
    log.press(5, KEY_A).event("", "CharA", "KeyPressed");
    log.storedAgain(99, {"30 press"});
    log.release(5, KEY_A);
    log.press(5, KEY_A);
    log.read(5).record(KEY_A, 1).storedAgain(30, {"30 press"}).passedOn(KEY_A, 1);
    log.press(5, KEY_B);
    log.add(handlers,
            "Duplicate keys in double key input map: QPair(30,48), overwriting old value");
    log.add(listeners, "Short read on event device /dev/input/event0");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 # lines of the chord detector contradict each other here: some are missing\n"
              "0.100 event0 KEY_A 1\n"
              "0.150 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.170 # lines of the chord detector contradict each other here: some are missing\n"
              "0.170 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.190 event0 KEY_A 0\n"
              "0.230 event0 KEY_A 0 unmapped [] nothing was published for the release\n"
              "0.250 event0 KEY_A 1\n"
              "0.300 event0 KEY_A 1\n"
              "0.330 event0 KEY_A 1 open [] nothing was published for it before the key was "
              "pressed again or repeated at 0.330 s\n"
              "0.330 # KEY_A is pressed although it was down: the release in between was lost\n"
              "0.360 event0 KEY_B 1\n"
              "0.380 # /dev/input/event0 had KEY_A down, and now has not: lines are missing, or a "
              "selection that the log does not show\n"
              "0.400 # the library complains: Duplicate keys in double key input map: "
              "QPair(30,48), overwriting old value (KEY_A, KEY_B)\n"
              "0.410 # the library complains: Short read on event device /dev/input/event0\n"
              "0.410 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n"
              "0.410 event0 KEY_B 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n");
}

TEST(LogTranscript, BeginsAnewWithTheProgram)
{
    WrittenLog log;
    log.add(handlers, "Enter BasicInputHandler::BasicInputHandler: ");
    log.device(0, "panel").press(5, KEY_A);
    log.add(handlers, "Enter BasicInputHandler::BasicInputHandler: ").device(0, "panel");
    log.device(0, "panel");
    log.read(6).record(KEY_A, 0).event("", "CharA", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # no events: the log has no line of logger Input at DEBUG\n"
              "0.050 + event0 'panel' LocalUI\n"
              "0.070 event0 KEY_A 1\n"
              "0.100 event0 KEY_A 1 open [] nothing was published for it: held back, or it has no "
              "command; still down at the end\n"
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.050 + event0 'panel' LocalUI\n"
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.000 # no steps of the detectors: the log has no line of logger KeyProcessing at "
              "DEBUG\n"
              "0.030 + event0 'panel' LocalUI\n"
              "0.050 event0 KEY_A 0\n"
              "0.080 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.080 event0 KEY_A 0 published [CharA KeyPressed]\n");
}

TEST(LogTranscript, DoesNotTakeTheEventOfAnotherDevice)
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

TEST(LogTranscript, KnowsThatADescriptorIsAnotherDevicesOnceItCannotBeRead)
{
    WrittenLog log;
    log.device(0, "panel").device(1, "remote").device(2, "keypad").select("");
    log.press(5, KEY_A);
    log.report("panel", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.press(6, KEY_1);
    log.report("remote", "Number1", "KeyPressed").bus("Number1", "KeyPressed");
    log.read(6).record(KEY_2, 1).stored({"2 press", "3 press"}).passedOn(KEY_1, 0);
    // In a slot of the withdrawal.
    log.read(5).add(listeners, "Error reading from event device /dev/input/event0");
    log.press(5, KEY_B);
    log.report("keypad", "CharB", "KeyPressed").bus("CharB", "KeyPressed");
    log.passedOn(KEY_1, 1).passedOn(KEY_2, 1);
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'remote' LocalUI\n"
              "0.140 + event2 'keypad' LocalUI\n"
              "0.150 identifier ''\n"
              "0.180 event0 KEY_A 1\n"
              "0.230 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.230 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.250 event1 KEY_1 1\n"
              "0.300 => Number1 KeyPressed of event1 LocalUI KEY_1\n"
              "0.300 event1 KEY_1 1 published [Number1 KeyPressed]\n"
              "0.320 event1 KEY_2 1\n"
              "0.340 event1 first-key-withdrawn KEY_1 for ''\n"
              "0.370 # the library complains: Error reading from event device /dev/input/event0; "
              "it does not read it any more\n"
              "0.390 event2 KEY_B 1\n"
              "0.440 => CharB KeyPressed of event2 LocalUI KEY_B\n"
              "0.440 event2 KEY_B 1 published [CharB KeyPressed]\n"
              "0.460 event1 chord-found KEY_1+KEY_2 for ''\n"
              "0.460 event1 KEY_2 1 unmapped [] KEY_1 + KEY_2 have no command together, nor has "
              "KEY_2 one\n");
}

TEST(LogTranscript, NamesADeviceByItsSwitchesAndLongPresses)
{
    WrittenLog log;
    log.device(0, "panel", true).device(1, "lid", true).select("");
    log.read(5).add(listeners, " type: 5 code:13 value:1");
    log.report("lid", "SWLineIn", "SwitchEnabled").bus("SWLineIn", "SwitchEnabled");
    log.press(6, KEY_A).wait(2000);
    log.report("panel", "CharA", "KeyLongPress").bus("CharA", "KeyLongPress");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.090 + event1 'lid' LocalUI\n"
              "0.100 identifier ''\n"
              "0.130 event1 SW_LINEIN_INSERT 1\n"
              "0.150 => SWLineIn SwitchEnabled of event1 LocalUI SW_LINEIN_INSERT\n"
              "0.150 event1 SW_LINEIN_INSERT 1 published [SWLineIn SwitchEnabled]\n"
              "0.170 event0 KEY_A 1\n"
              "2.220 event0 KEY_A 1 held [] held back until the release or a long press\n"
              "2.220 => CharA KeyLongPress of event0 LocalUI KEY_A\n");
}

TEST(LogTranscript, KnowsThePairThatIsDownWhenTheLogBegins)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.read(5).record(KEY_A, 2).storedAgain(30, {"30 release", "48 press"});
    log.read(5).record(KEY_B, 2).storedAgain(48, {"30 release", "48 release"});
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 release", "48 release"});
    log.read(5).record(KEY_A, 0).storedAgain(30, {"30 release", "48 release"});
    log.passedOn(KEY_A, 0).passedOn(KEY_B, 0).event("", "Power", "KeyReleased");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 2\n"
              "0.110 event0 KEY_A 2 chord [] KEY_A + KEY_B are a pair already\n"
              "0.130 event0 KEY_B 2\n"
              "0.160 event0 KEY_B 2 chord [] KEY_A + KEY_B are a pair already\n"
              "0.180 event0 KEY_B 0\n"
              "0.210 event0 KEY_B 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "0.230 event0 KEY_A 0\n"
              "0.260 event0 chord-released KEY_A+KEY_B for ''\n"
              "0.300 => Power KeyReleased of event0 LocalUI KEY_A+KEY_B\n"
              "0.300 event0 KEY_A 0 published [Power KeyReleased] the log does not say whether for "
              "KEY_A + KEY_B or for KEY_B alone\n");
}

TEST(LogTranscript, TellsAPairWithoutLinesOfTheHandler)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.read(5).record(KEY_A, 1).stored({"30 press"});
    log.report("panel", "CharA", "KeyPressed").bus("CharA", "KeyPressed");
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"});
    log.read(5).record(KEY_A, 0).storedAgain(30, {"30 release", "48 press"});
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 release", "48 release"});
    log.read(5).record(KEY_C, 1).stored({"46 press"});
    log.report("panel", "CharC", "KeyPressed").bus("CharC", "KeyPressed");
    EXPECT_EQ(log.transcript(),
              "0.000 start of a.log\n"
              "0.000 # read from a log; records have the times of their lines\n"
              "0.040 + event0 'panel' LocalUI\n"
              "0.050 identifier ''\n"
              "0.080 event0 KEY_A 1\n"
              "0.120 => CharA KeyPressed of event0 LocalUI KEY_A\n"
              "0.120 event0 KEY_A 1 published [CharA KeyPressed]\n"
              "0.140 event0 KEY_B 1\n"
              "0.160 event0 first-key-withdrawn KEY_A for ''\n"
              "0.160 event0 chord-found KEY_A+KEY_B for ''\n"
              "0.160 event0 KEY_B 1 unmapped [] KEY_A + KEY_B have no command together, nor has "
              "KEY_B one\n"
              "0.180 event0 KEY_A 0\n"
              "0.210 event0 KEY_A 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "0.230 event0 KEY_B 0\n"
              "0.260 event0 chord-released KEY_A+KEY_B for ''\n"
              "0.260 event0 KEY_B 0 unmapped [] KEY_A + KEY_B have no command together, nor has "
              "KEY_B one\n"
              "0.280 event0 KEY_C 1\n"
              "0.320 => CharC KeyPressed of event0 LocalUI KEY_C\n"
              "0.320 event0 KEY_C 1 published [CharC KeyPressed]\n");
}

TEST(LogTranscript, TakesNoRecordOfAnotherKeyBack)
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
