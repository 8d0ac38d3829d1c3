#include "Soak.h"

using namespace std::chrono_literals;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

namespace {

constexpr int guestNumber = 5;
// One read takes 64 records, which 16 taps make.
constexpr int tapsInARead = 16;
constexpr int readsInARound = 30;

DeviceDescription device(const char *name, int bus)
{
    return DeviceDescription::keyboard(name, bus,
                                       {SoakProduct::immediateKey, SoakProduct::deferredKey,
                                        SoakProduct::timedKey, SoakProduct::chordKeys[0],
                                        SoakProduct::chordKeys[1]})
        .withSwitches({SoakProduct::jack});
}

} // namespace

Soak::Soak()
    : m_panel(m_subsystem.plug(0, device("panel", BUS_HOST)))
    , m_remote(m_subsystem.plug(1, device("remote", BUS_BLUETOOTH)))
{
    m_subsystem.setRecording(false);
    m_clock.settle();
}

void Soak::round()
{
    for (int i = 0; i < readsInARound; ++i)
        tapManyTimes(i % 2 == 0 ? m_panel : m_remote, SoakProduct::immediateKey,
                     InputEvent::Confirm);
    tapManyTimes(m_remote, SoakProduct::deferredKey, InputEvent::Context);
    hold(m_panel);
    playChord(m_panel);
    playChord(m_remote);
    flip(m_panel);
    useText(m_remote);
}

void Soak::plugCycle()
{
    InputNode &guest = m_subsystem.plug(guestNumber, device("guest", BUS_USB));
    m_clock.settle();
    tap(guest, SoakProduct::immediateKey);
    m_expected.addTaps(InputEvent::Confirm);
    flip(guest);
    guest.press(SoakProduct::timedKey);
    packet();
    m_expected.add(InputEvent::VolumeUp, InputEvent::KeyPressed);
    m_clock.advance(725ms);
    m_expected.add(InputEvent::VolumeUp, InputEvent::KeyLongPress);
    // The release is lost with what is unread, and so is the timer that waits for it.
    m_subsystem.unplug(guestNumber, InputSubsystem::Unread::Lost);
    m_clock.settle();
}

void Soak::hour()
{
    m_clock.advance(30min);
    tap(m_panel, SoakProduct::immediateKey);
    m_expected.addTaps(InputEvent::Confirm);
    m_clock.advance(30min);
}

void Soak::tap(InputNode &node, int key)
{
    node.press(key);
    node.release(key);
    packet();
    packet();
    m_clock.settle();
}

void Soak::tapManyTimes(InputNode &node, int key, InputEvent::Command command)
{
    for (int i = 0; i < tapsInARead; ++i) {
        node.press(key);
        node.release(key);
        packet();
        packet();
    }
    m_clock.settle();
    m_expected.addTaps(command, tapsInARead);
}

// Long presses at 600, 800 and 1000 ms, or a tick later.
void Soak::hold(InputNode &node)
{
    node.press(SoakProduct::timedKey);
    packet();
    m_clock.advance(1125ms);
    node.release(SoakProduct::timedKey);
    packet();
    m_clock.settle();
    m_expected.addTaps(InputEvent::VolumeUp);
    m_expected.add(InputEvent::VolumeUp, InputEvent::KeyLongPress, 3);
}

void Soak::playChord(InputNode &node)
{
    for (const int key : SoakProduct::chordKeys) {
        node.press(key);
        packet();
        m_clock.advance(20ms);
    }
    for (const int key : SoakProduct::chordKeys) {
        node.release(key);
        packet();
        m_clock.advance(20ms);
    }
    m_expected.addTaps(InputEvent::FactoryReset);
}

void Soak::flip(InputNode &node)
{
    for (const bool isOn : {true, false}) {
        node.setSwitch(SoakProduct::jack, isOn);
        packet();
    }
    m_clock.settle();
    m_expected.add(InputEvent::SWLineIn, InputEvent::SwitchEnabled);
    m_expected.add(InputEvent::SWLineIn, InputEvent::SwitchDisabled);
}

void Soak::useText(InputNode &node)
{
    m_product.selectHandler(SoakProduct::text());
    tapManyTimes(node, SoakProduct::immediateKey, InputEvent::Submit);
    m_product.selectHandler(SoakProduct::menu());
}
