#ifndef FAULTRIG_H
#define FAULTRIG_H

#include "Devices.h"
#include "EventRecorder.h"
#include "InputSubsystem.h"
#include "VirtualClock.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

/// A product with three devices of its own and whatever else is plugged in, in which system calls
/// are made to fail.
///
/// Each device has the key KEY_OK and the switch SW_LINEIN_INSERT. The commands tell the devices
/// apart.
class FaultRig
{
public:
    static constexpr int victimNumber = 0;
    static constexpr int otherNumber = 1;
    static constexpr int laterNumber = 2;

    FaultRig();
    /// Expects that the manager, deleted here, leaves no descriptor behind.
    ~FaultRig();
    FaultRig(const FaultRig &) = delete;
    FaultRig &operator=(const FaultRig &) = delete;

    /// The library runs, and has found what is plugged in.
    void start();

    Vorn::Sim::InputNode &plug(int number);

    /// Has the library look at all nodes, though nothing came or went. An arrival would have it
    /// forget which keys are down, see BasicInputHandler::addKeyHandler().
    void causePass();

    /// Whether the library announced the device of @p number last, and not that it went.
    bool isKnown(int number) const;

    /// The events of a press and a release, and of a switch that goes on and off again.
    std::vector<std::string> tap(int number);
    std::vector<std::string> flip(int number);
    /// Those of one record.
    std::vector<std::string> press(int number);
    std::vector<std::string> release(int number);

    /// Asks the listeners of a device for the state of its keys and switches.
    void askForStatus(int number);

    /// Those that there have to be.
    static std::vector<std::string> taps(int number,
                                         InputEvent::Bus bus = InputEvent::Bus::LocalUI);
    static std::vector<std::string> flips(int number);
    static std::vector<std::string> pressed(int number);
    static std::vector<std::string> released(int number);

    /// Expects that nothing is wrong with a device.
    void expectToWork(int number);
    /// Expects that a device that arrives now is found, and works.
    void expectToHearOf(int number);

private:
    std::vector<std::string> events();

    struct Handlers
    {
        BasicKeyInputHandler *keys = nullptr;
        BasicSwInputHandler *switches = nullptr;
    };

    const int m_descriptorsBefore;
    std::map<int, Handlers> m_handlers;

public:
    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    EventRecorder recorder;
    std::unique_ptr<Devices> devices;
};

/// What a kernel can answer instead of doing its work.
extern const std::vector<int> kernelErrors;

#endif
