#include "WrittenLog.h"

#include <gtest/gtest.h>

#include <linux/input.h>

namespace {

constexpr const char *handlers = WrittenLog::handlers;
constexpr const char *listeners = WrittenLog::listeners;
constexpr const char *detectors = WrittenLog::detectors;

} // namespace

TEST(OutcomeTranscript, TellsWhatBecomesOfSingleKeys)
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

TEST(OutcomeTranscript, TellsWhatBecomesOfPairs)
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

TEST(OutcomeTranscript, TellsWhatASelectionEnds)
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

TEST(OutcomeTranscript, TellsWhatIsLeftWhenADeviceGoes)
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

TEST(OutcomeTranscript, TellsWhatBecomesOfSwitches)
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

TEST(OutcomeTranscript, SaysWhyAKeyPublishedNothing)
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

TEST(OutcomeTranscript, LeavesOpenWhyAnUnknownDevicePublishedNothing)
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

TEST(OutcomeTranscript, SaysThatALogHasNoEvents)
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

TEST(OutcomeTranscript, TellsAPairWithoutLinesOfTheHandler)
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
