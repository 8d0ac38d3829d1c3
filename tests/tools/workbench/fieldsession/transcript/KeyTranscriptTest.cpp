#include "WrittenLog.h"

#include <gtest/gtest.h>

#include <linux/input.h>

namespace {

constexpr const char *handlers = WrittenLog::handlers;
constexpr const char *listeners = WrittenLog::listeners;
constexpr const char *detectors = WrittenLog::detectors;

} // namespace

TEST(KeyTranscript, SaysWhichLinesComeLater)
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

TEST(KeyTranscript, SaysThatKeysAndLinesContradictEachOther)
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

TEST(KeyTranscript, KnowsThePairThatIsDownWhenTheLogBegins)
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

TEST(KeyTranscript, TellsWhatIsPublishedForKeysWithoutRecords)
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

TEST(KeyTranscript, ForgetsNoKeysOfAHandlerThatIsSelectedNoLonger)
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

TEST(KeyTranscript, KeepsTheKeysOfOtherDevicesThanTheOneThatGoes)
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

TEST(KeyTranscript, SaysWhichSelectionAReleaseIsDroppedFor)
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

TEST(KeyTranscript, TimesNoKeyThatWasReleased)
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

TEST(KeyTranscript, TimesAKeyWhoseReleaseWasDropped)
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

TEST(KeyTranscript, SeesThatKeysOfTheOnlyDeviceContradictEachOther)
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

TEST(KeyTranscript, GoesOnWithAPairWhoseLinesAreMissing)
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

TEST(KeyTranscript, BelievesALineThatContradictsTheOnesBefore)
{
    WrittenLog log;
    log.device(0, "panel").select("");
    log.press(5, KEY_A);
    log.read(5).record(KEY_B, 1).stored({"30 press", "48 press"}).passedOn(KEY_A, 0);
    log.passedOn(KEY_A, 1).passedOn(KEY_B, 1).event("", "Power", "KeyPressed");
    log.read(5).record(KEY_A, 0).storedAgain(30, {"30 release", "48 press"});
    // The lines of a press are lost.
    log.read(5).record(KEY_B, 0).storedAgain(48, {"30 press", "48 release"});
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
              "0.220 event0 KEY_A 0\n"
              "0.250 event0 KEY_A 0 chord [] KEY_A + KEY_B are a pair until both are up\n"
              "0.270 event0 KEY_B 0\n"
              "0.300 event0 KEY_B 0 chord [] KEY_A + KEY_B are a pair until both are up\n");
}
