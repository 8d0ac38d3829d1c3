#include "Registrations.h"

namespace Model {

namespace {

constexpr int A = 30;
constexpr int B = 31;
constexpr int C = 32;

constexpr int None = 0;
constexpr int Confirm = 1;
constexpr int Cancel = 2;
constexpr int Stop = 11;
constexpr int VolumeUp = 16;
constexpr int Mute = 18;
constexpr int Info = 32;
constexpr int FactoryReset = 44;

constexpr int LocalUI = 2;
constexpr int Usb = 4;

} // namespace

const std::vector<Registrations> &allRegistrations()
{
    using Call = KeyCall;
    static const std::vector<Registrations> all = {
        {"Nothing", {}},
        {"Immediate",
         {Call::immediate(A, Confirm), Call::immediate(B, Cancel), Call::immediate(C, Stop)}},
        {"Deferred",
         {Call::deferred(A, Confirm), Call::deferred(B, Cancel), Call::deferred(C, Stop)}},
        {"LongPressOnce",
         {Call::deferred(A, Confirm), Call::longPress(A, false, {100}), Call::immediate(B, Cancel),
          Call::longPress(B, false, {200}), Call::deferred(C, Stop)}},
        {"LongPressRepeating",
         {Call::deferred(A, Info), Call::longPress(A, true, {150, 100, 50}),
          Call::immediate(B, VolumeUp), Call::longPress(B, true, {100, 50}),
          Call::deferred(C, Stop), Call::longPress(C, false, {50, 100})}},
        {"Chord",
         {Call::deferred(A, Confirm), Call::deferred(B, Cancel), Call::chord(A, B, FactoryReset)}},
        {"ChordOfKeysWithLongPresses",
         {Call::deferred(A, Confirm), Call::longPress(A, true, {100, 50}), Call::immediate(B, Info),
          Call::longPress(B, false, {50, 150}), Call::chord(B, A, FactoryReset)}},
        {"ChordAndThirdKey",
         {Call::immediate(A, VolumeUp), Call::deferred(B, Cancel), Call::deferred(C, Info),
          Call::longPress(C, true, {100}), Call::chord(A, B, FactoryReset),
          Call::chord(B, C, Mute)}},
        {"UnmappedKeys",
         {Call::deferred(A, Confirm), Call::longPress(B, true, {100}), Call::chord(B, C, Mute)}},
        {"CommandNone",
         {Call::deferred(A, None), Call::longPress(A, true, {100, 50}), Call::immediate(B, None),
          Call::longPress(B, false, {50}), Call::deferred(C, Stop), Call::chord(A, C, None)}},
        {"RegisteredTwice",
         {Call::deferred(A, Confirm), Call::longPress(A, true, {100}), Call::immediate(A, Info),
          Call::immediate(B, Cancel), Call::deferred(B, Stop), Call::longPress(B, false, {100}),
          Call::longPress(B, true, {50, 100}), Call::chord(A, B, Mute),
          Call::chord(B, A, FactoryReset)}},
        {"OfABus",
         {Call::deferred(A, Confirm), Call::longPress(A, true, {100}),
          Call::immediate(A, Info).on(LocalUI), Call::immediate(B, Cancel).on(Usb),
          Call::longPress(B, true, {50}).on(Usb), Call::deferred(C, Stop).on(LocalUI),
          Call::longPress(C, false, {50, 100}).on(LocalUI), Call::chord(A, C, Mute),
          Call::chord(A, C, FactoryReset).on(LocalUI), Call::chord(B, C, Mute).on(Usb)}},
        {"Deregistered",
         {Call::deferred(A, Confirm), Call::longPress(A, true, {100}), Call::withoutKey(A),
          Call::immediate(B, Cancel), Call::longPress(B, true, {100}), Call::withoutKey(B),
          Call::deferred(B, Stop), Call::deferred(C, Info), Call::withoutKey(A),
          Call::chord(B, C, Mute), Call::chord(A, B, FactoryReset), Call::withoutChord(C, B),
          Call::withoutChord(B, C)}},
        {"TimeoutsOfZeroAndLess",
         {Call::deferred(A, Confirm), Call::longPress(A, true, {0, 100}), Call::immediate(B, Info),
          Call::longPress(B, true, {100, -50}), Call::chord(A, B, FactoryReset)}},
        {"ChordOfAKeyWithItself",
         {Call::deferred(A, Confirm), Call::chord(A, A, Mute), Call::immediate(B, Cancel),
          Call::longPress(B, false, {100}), Call::chord(B, B, Stop)}},
    };
    return all;
}

} // namespace Model
