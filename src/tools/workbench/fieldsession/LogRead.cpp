#include "LogRead.h"

#include <linux/input.h>

#include <algorithm>

namespace Vorn::Workbench {

bool LogHand::accepts(InputEvent::Command command, InputEvent::State state) const
{
    const bool isPress = state == InputEvent::KeyPressed;
    // What may have been its event already is not followed by another one.
    if (!openEvent.isEmpty() && !click && kind != Kind::ChordBegun)
        return false;
    if (!isPress && state != InputEvent::KeyReleased)
        return false;
    switch (kind) {
    case Kind::Single:
    case Kind::Unseen:
        if (value != 0)
            return isPress && events.isEmpty();
        return events.isEmpty() || (!isPress && click == command);
    case Kind::ChordBegun:
        if (isPress || isReleasedInBetween)
            return !isChordTold;
        return !isPairPassedOn && events.isEmpty();
    case Kind::ChordEnded:
        return !isPress && events.isEmpty();
    case Kind::ChordPart:
        break;
    }
    return false;
}

bool LogHand::expectsKey(int key) const
{
    constexpr int lines[] = {1, allKeyLines, 2, 0, 0};
    return codes.contains(key) && keyLines < lines[static_cast<int>(kind)];
}

bool fits(int value, KeyValue known)
{
    switch (known) {
    case KeyValue::Any:
        break;
    case KeyValue::Press:
        return value == 1;
    case KeyValue::NoPress:
        return value != 1;
    case KeyValue::Release:
        return value == 0;
    }
    return true;
}

LogRecordPtr LogRead::nextKey(std::optional<int> code, KeyValue value) const
{
    const auto isNext = [&](const LogRecordPtr &record) {
        return record->type == EV_KEY && !record->isTaken && (!code || record->code == *code)
            && fits(record->value, value);
    };
    // One that comes before a record that was taken has been passed over.
    const auto lastTaken =
        std::find_if(records.rbegin(), records.rend(), [](const LogRecordPtr &record) {
            return record->type == EV_KEY && record->isTaken;
        });
    const auto found = std::find_if(lastTaken.base(), records.end(), isNext);
    return found == records.end() ? nullptr : *found;
}

LogRecordPtr LogRead::nextSwitch(bool isOn) const
{
    const auto found =
        std::find_if(records.begin(), records.end(), [isOn](const LogRecordPtr &record) {
            return record->type == EV_SW && !record->isTaken && (record->value != 0) == isOn;
        });
    return found == records.end() ? nullptr : *found;
}

bool LogRead::isSuspended() const
{
    const bool isBetween = hand && hand->kind == LogHand::Kind::ChordBegun && hand->keyLines == 1;
    return (isBegun && nextKey({}, KeyValue::Any)) || (hand && hand->click) || isBetween;
}

} // namespace Vorn::Workbench
