#include "WrittenLog.h"

#include <gtest/gtest.h>

#include <linux/input.h>

namespace {

constexpr const char *handlers = WrittenLog::handlers;
constexpr const char *listeners = WrittenLog::listeners;

} // namespace

TEST(DeviceTranscript, NamesADeviceByWhatItsHandlerSays)
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

TEST(DeviceTranscript, NamesADeviceByItsSwitchesAndLongPresses)
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

TEST(DeviceTranscript, KnowsThatADescriptorIsAnotherDevicesOnceItCannotBeRead)
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

TEST(DeviceTranscript, LeavesOpenWhichUnknownDeviceHasGone)
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

TEST(DeviceTranscript, FindsTheDeviceOfKeysThatNoHandlerSpeaksOf)
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

TEST(DeviceTranscript, KnowsDevicesThatOnlyTheirListenersSpeakOf)
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

TEST(DeviceTranscript, FindsTheDeviceOfKeysWithoutRecordsAndHandlers)
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

TEST(DeviceTranscript, KnowsAllDevicesOnceItHasSeenTheFirstOfThem)
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

TEST(DeviceTranscript, DoesNotKnowAllDevicesIfItBeginsLater)
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
