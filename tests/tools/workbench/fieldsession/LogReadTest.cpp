#include "LogRead.h"

#include <linux/input.h>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

using Kind = LogHand::Kind;

LogRecordPtr record(int type, int code, int value, bool isTaken = false)
{
    auto made = std::make_shared<LogRecord>();
    made->type = type;
    made->code = code;
    made->value = value;
    made->isTaken = isTaken;
    return made;
}

LogHand hand(Kind kind, int value = 0, const QStringList &events = {})
{
    LogHand made;
    made.kind = kind;
    made.value = value;
    made.events = events;
    made.codes = {30, 48};
    return made;
}

/// "press release": the states that an event of it may have.
std::string accepted(const LogHand &hand, InputEvent::Command command = InputEvent::Stop)
{
    std::string states;
    for (int state = InputEvent::NoState; state <= InputEvent::SwitchDisabled; ++state) {
        if (hand.accepts(command, static_cast<InputEvent::State>(state)))
            states += std::to_string(state) + " ";
    }
    return states;
}

const std::string press = "1 ";
const std::string release = "2 ";
const std::string none;

} // namespace

TEST(LogRead, AHandOfOneKeyAcceptsWhatTheKeyMayPublish)
{
    for (const Kind kind : {Kind::Single, Kind::Unseen}) {
        EXPECT_EQ(accepted(hand(kind, 1)), press);
        EXPECT_EQ(accepted(hand(kind, 2)), press);
        EXPECT_EQ(accepted(hand(kind, -1)), press);
        EXPECT_EQ(accepted(hand(kind, 1, {"Stop KeyPressed"})), none);
        EXPECT_EQ(accepted(hand(kind, 0)), press + release);
        EXPECT_EQ(accepted(hand(kind, 0, {"Stop KeyPressed"})), none);
        LogHand clicked = hand(kind, 0, {"Stop KeyPressed"});
        clicked.click = InputEvent::Stop;
        EXPECT_EQ(accepted(clicked), release);
        EXPECT_EQ(accepted(clicked, InputEvent::Next), none);
    }
}

TEST(LogRead, AHandOfAPairAcceptsWhatThePairMayPublish)
{
    EXPECT_EQ(accepted(hand(Kind::ChordEnded)), release);
    EXPECT_EQ(accepted(hand(Kind::ChordEnded, 0, {"Stop KeyReleased"})), none);
    EXPECT_EQ(accepted(hand(Kind::ChordPart)), none);
    LogHand begun = hand(Kind::ChordBegun);
    EXPECT_EQ(accepted(begun), press + release);
    begun.events = QStringList{"Stop KeyReleased"};
    EXPECT_EQ(accepted(begun), press) << "the first key is withdrawn once";
    begun.events.clear();
    begun.isPairPassedOn = true;
    EXPECT_EQ(accepted(begun), press);
    begun.isReleasedInBetween = true;
    EXPECT_EQ(accepted(begun), press + release);
    begun.isChordTold = true;
    EXPECT_EQ(accepted(begun), none);
}

TEST(LogRead, AHandAcceptsNothingMoreWhereAnEventMayHaveBeenItsOwn)
{
    LogHand single = hand(Kind::Single, 1);
    single.openEvent = "Stop KeyPressed";
    EXPECT_EQ(accepted(single), none);
    LogHand click = hand(Kind::Single, 0, {"Stop KeyPressed"});
    click.click = InputEvent::Stop;
    click.openEvent = "Stop KeyReleased";
    EXPECT_EQ(accepted(click), release);
    LogHand begun = hand(Kind::ChordBegun);
    begun.openEvent = "Stop KeyReleased";
    EXPECT_EQ(accepted(begun), press + release);
}

TEST(LogRead, AHandExpectsItsKeysToBePassedOn)
{
    const auto expected = [](Kind kind) {
        LogHand made = hand(kind);
        EXPECT_FALSE(made.expectsKey(46));
        while (made.expectsKey(30) && made.expectsKey(48))
            ++made.keyLines;
        return made.keyLines;
    };
    EXPECT_EQ(expected(Kind::Single), 1);
    EXPECT_EQ(expected(Kind::ChordBegun), 3);
    EXPECT_EQ(expected(Kind::ChordEnded), 2);
    EXPECT_EQ(expected(Kind::ChordPart), 0);
    EXPECT_EQ(expected(Kind::Unseen), 0);
}

TEST(LogRead, APairHasPassedWithItsThirdLine)
{
    LogHand begun = hand(Kind::ChordBegun);
    begun.keyLines = 2;
    EXPECT_FALSE(begun.hasPairPassed());
    begun.keyLines = 3;
    EXPECT_TRUE(begun.hasPairPassed());
    begun.kind = Kind::ChordEnded;
    EXPECT_FALSE(begun.hasPairPassed());
    EXPECT_TRUE(begun.isPair());
    EXPECT_FALSE(hand(Kind::Single).isPair());
    EXPECT_FALSE(hand(Kind::ChordPart).isPair());
    EXPECT_TRUE(hand(Kind::ChordBegun).isPair());
}

TEST(LogRead, KnowsWhichValuesFit)
{
    const auto values = [](KeyValue known) {
        std::string text;
        for (int value = -1; value <= 2; ++value)
            text += fits(value, known) ? std::to_string(value) + " " : "";
        return text;
    };
    EXPECT_EQ(values(KeyValue::Any), "-1 0 1 2 ");
    EXPECT_EQ(values(KeyValue::Press), "1 ");
    EXPECT_EQ(values(KeyValue::NoPress), "-1 0 2 ");
    EXPECT_EQ(values(KeyValue::Release), "0 ");
}

TEST(LogRead, TheNextKeyIsTheFirstBehindTheLastThatWasTaken)
{
    LogRead read;
    EXPECT_EQ(read.nextKey({}, KeyValue::Any), nullptr);
    const LogRecordPtr passedOver = record(EV_KEY, 30, 1);
    const LogRecordPtr taken = record(EV_KEY, 48, 1, true);
    const LogRecordPtr lid = record(EV_SW, 30, 1);
    const LogRecordPtr second = record(EV_KEY, 30, 0);
    const LogRecordPtr third = record(EV_KEY, 46, 1);
    const LogRecordPtr takenSwitch = record(EV_SW, 1, 1, true);
    read.records = {passedOver, taken, lid, second, third, takenSwitch};
    EXPECT_EQ(read.nextKey({}, KeyValue::Any), second);
    EXPECT_EQ(read.nextKey({}, KeyValue::Press), third);
    EXPECT_EQ(read.nextKey({}, KeyValue::Release), second);
    EXPECT_EQ(read.nextKey(30, KeyValue::Any), second);
    EXPECT_EQ(read.nextKey(30, KeyValue::Press), nullptr);
    EXPECT_EQ(read.nextKey(46, KeyValue::NoPress), nullptr);
    EXPECT_EQ(read.nextKey(46, KeyValue::Press), third);
    EXPECT_EQ(read.nextKey(48, KeyValue::Any), nullptr);
    third->isTaken = true;
    EXPECT_EQ(read.nextKey({}, KeyValue::Any), nullptr);
}

TEST(LogRead, TheNextSwitchIsTheFirstInItsPosition)
{
    LogRead read;
    EXPECT_EQ(read.nextSwitch(true), nullptr);
    const LogRecordPtr key = record(EV_KEY, 1, 1);
    const LogRecordPtr off = record(EV_SW, 1, 0);
    const LogRecordPtr on = record(EV_SW, 2, 1);
    const LogRecordPtr other = record(EV_SW, 3, 1);
    read.records = {key, off, on, other};
    EXPECT_EQ(read.nextSwitch(true), on);
    EXPECT_EQ(read.nextSwitch(false), off);
    on->isTaken = true;
    EXPECT_EQ(read.nextSwitch(true), other);
    off->isTaken = true;
    EXPECT_EQ(read.nextSwitch(false), nullptr);
}

TEST(LogRead, IsSuspendedWhileMoreIsToCome)
{
    LogRead read;
    EXPECT_FALSE(read.isSuspended());
    read.records = {record(EV_KEY, 30, 1)};
    EXPECT_FALSE(read.isSuspended());
    read.isBegun = true;
    EXPECT_TRUE(read.isSuspended());
    read.records.front()->isTaken = true;
    EXPECT_FALSE(read.isSuspended());
    read.hand = hand(Kind::Single);
    EXPECT_FALSE(read.isSuspended());
    read.hand->click = InputEvent::Stop;
    EXPECT_TRUE(read.isSuspended());
    read.hand = hand(Kind::ChordBegun);
    EXPECT_FALSE(read.isSuspended());
    read.hand->keyLines = 1;
    EXPECT_TRUE(read.isSuspended()) << "between the withdrawal and the pair";
    read.hand->keyLines = 2;
    EXPECT_FALSE(read.isSuspended());
    read.hand = hand(Kind::ChordEnded);
    read.hand->keyLines = 1;
    EXPECT_FALSE(read.isSuspended());
}
