#include "FaultRig.h"

#include <gmock/gmock.h>

#include <cerrno>

#include <fcntl.h>

using testing::ElementsAre;
using Vorn::Sim::DeviceDescription;

const std::vector<int> kernelErrors = {EACCES, EMFILE, ENFILE, ENOENT, EIO,
                                       EINTR,  EAGAIN, ENODEV, ENOMEM, ENOSPC};

namespace {

QString pathOf(int number)
{
    return QStringLiteral("/dev/input/event%1").arg(number);
}

InputEvent::Command commandOf(int number)
{
    switch (number) {
    case FaultRig::victimNumber:
        return InputEvent::VolumeUp;
    case FaultRig::otherNumber:
        return InputEvent::Confirm;
    default:
        return InputEvent::Next;
    }
}

int descriptors()
{
    int count = 0;
    for (int fd = 0; fd < 1024; ++fd)
        count += ::fcntl(fd, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

} // namespace

FaultRig::FaultRig()
    : m_descriptorsBefore(descriptors())
{ }

FaultRig::~FaultRig()
{
    devices.reset();
    EXPECT_EQ(subsystem.openDescriptors(), 0);
    EXPECT_EQ(descriptors(), m_descriptorsBefore);
}

void FaultRig::start()
{
    devices = std::make_unique<Devices>();
    devices->onAdd = [this](const QString &path, const QString &name) {
        const int number = path.right(1).toInt();
        const InputEvent::Command command = commandOf(number);
        auto *keys = new BasicKeyInputHandler(name);
        devices->addKeyHandler(path, keys, QString());
        keys->registerKey(KEY_OK, command, true);
        auto *switches = new BasicSwInputHandler(name);
        devices->addSwitchHandler(path, switches, QString());
        switches->registerSwitch(SW_LINEIN_INSERT, command);
        m_handlers[number] = {keys, switches};
    };
    clock.settle();
}

Vorn::Sim::InputNode &FaultRig::plug(int number)
{
    auto &node = subsystem.plug(number,
                                DeviceDescription::keyboard("keys", BUS_HOST, {KEY_OK})
                                    .withSwitches({SW_LINEIN_INSERT})
                                    .withAutoRepeat());
    clock.settle();
    return node;
}

void FaultRig::causePass()
{
    subsystem.setPermissions(otherNumber, 0666);
    clock.settle();
}

bool FaultRig::isKnown(int number) const
{
    const std::string path = pathOf(number).toStdString();
    for (auto call = devices->calls.rbegin(); call != devices->calls.rend(); ++call) {
        if (call->find(path) != std::string::npos)
            return call->compare(0, 3, "add") == 0;
    }
    return false;
}

std::vector<std::string> FaultRig::events()
{
    clock.settle();
    return recorder.take();
}

std::vector<std::string> FaultRig::press(int number)
{
    subsystem.node(number).press(KEY_OK);
    return events();
}

std::vector<std::string> FaultRig::release(int number)
{
    subsystem.node(number).release(KEY_OK);
    return events();
}

std::vector<std::string> FaultRig::tap(int number)
{
    subsystem.node(number).press(KEY_OK);
    clock.settle();
    return release(number);
}

std::vector<std::string> FaultRig::flip(int number)
{
    subsystem.node(number).setSwitch(SW_LINEIN_INSERT, true);
    clock.settle();
    subsystem.node(number).setSwitch(SW_LINEIN_INSERT, false);
    return events();
}

void FaultRig::askForStatus(int number)
{
    const Handlers &handlers = m_handlers[number];
    handlers.keys->listener()->getInputStatus();
    handlers.switches->getInputStatus();
}

std::vector<std::string> FaultRig::taps(int number, InputEvent::Bus bus)
{
    return {text(commandOf(number), InputEvent::KeyPressed, bus),
            text(commandOf(number), InputEvent::KeyReleased, bus)};
}

std::vector<std::string> FaultRig::flips(int number)
{
    return {text(commandOf(number), InputEvent::SwitchEnabled, InputEvent::Bus::LocalUI),
            text(commandOf(number), InputEvent::SwitchDisabled, InputEvent::Bus::LocalUI)};
}

std::vector<std::string> FaultRig::pressed(int number)
{
    return {taps(number).front()};
}

std::vector<std::string> FaultRig::released(int number)
{
    return {taps(number).back()};
}

void FaultRig::expectToWork(int number)
{
    EXPECT_TRUE(isKnown(number)) << number;
    EXPECT_EQ(tap(number), taps(number));
    EXPECT_EQ(flip(number), flips(number));
}

void FaultRig::expectToHearOf(int number)
{
    plug(number);
    expectToWork(number);
}
