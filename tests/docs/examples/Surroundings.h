#ifndef SURROUNDINGS_H
#define SURROUNDINGS_H

#include "BasicInputHandler.h"
#include "InputSubsystem.h"
#include "LogRecorder.h"
#include "ProfileInputHandler.h"
#include "ProfileReader.h"
#include "RecordingHandler.h"
#include "VirtualClock.h"
#include "dbglog.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QTimer>

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <gmock/gmock.h>

#include <iostream>

/// What the examples in headers and documents take for granted: a small product on a simulated
/// panel.
namespace Examples {

using namespace Vorn::Sim;

/// For examples that make their own simulation.
struct Nothing
{
    RecordingHandler receiver;

    void settle() { QCoreApplication::processEvents(); }
};

/// Before a device manager among the bases, because the clock drives its timers.
struct Simulation
{
    VirtualClock clock;
    InputSubsystem subsystem;
    RecordingHandler receiver;
    QCoreApplication &app = *QCoreApplication::instance();
    log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Product"));

    InputNode &plugPanel()
    {
        return subsystem.plug(
            0,
            DeviceDescription::keyboard(
                "front-panel", BUS_HOST,
                {KEY_OK, KEY_UP, KEY_2, KEY_INFO, KEY_STOP, KEY_PLAY, KEY_POWER, KEY_VOLUMEUP})
                .withSwitches({SW_LINEIN_INSERT, SW_HEADPHONE_INSERT}));
    }
    void settle() { clock.settle(); }
};

/// A device manager whose panel has arrived, and a handler that the library owns.
struct Product : Simulation, BasicInputHandler
{
    using Player = Product;

    Product()
    {
        plugPanel();
        clock.settle();
    }

    void addDevice(const QString &node, const QString &) override
    {
        addKeyHandler(node, keys, QStringLiteral("present"));
    }
    void on_inputEvent(const InputEvent &) { }

    const QString path = QStringLiteral("/dev/input/event0");
    const QString device = path;
    BasicKeyInputHandler *keys = new BasicKeyInputHandler(QStringLiteral("front-panel"));
    BasicInputHandler &devices = *this;
};

struct ProductWithProfile : Simulation
{
    ProfileInputHandler devices{Vorn::Profile()};
};

inline void expectNoMistake(const LogRecorder &log)
{
    EXPECT_THAT(log.texts(log4cplus::ERROR_LOG_LEVEL), testing::IsEmpty());
    EXPECT_THAT(log.texts(log4cplus::WARN_LOG_LEVEL), testing::IsEmpty());
}

template <typename Statements>
void runStatements()
{
    const LogRecorder log;
    Statements example;
    EXPECT_EQ(example.run(), 0);
    example.settle();
    expectNoMistake(log);
}

/// Lets a panel arrive at a device manager, be used and leave. Something must be published.
template <typename Manager>
void runMembers()
{
    const LogRecorder log;
    Simulation simulation;
    int events = 0;
    QObject context;
    Vorn::connect(Input::instance(), &Input::inputEvent, &context, [&events] { ++events; });
    Manager devices;
    InputNode &panel = simulation.plugPanel();
    simulation.settle();
    for (const char *const identifier : {"", "browse"}) {
        devices.selectHandler(QString::fromLatin1(identifier));
        for (const int key : {KEY_OK, KEY_2, KEY_INFO, KEY_POWER}) {
            panel.press(key);
            simulation.settle();
            panel.release(key);
            simulation.settle();
        }
    }
    panel.setSwitch(SW_LINEIN_INSERT, true);
    simulation.settle();
    EXPECT_GT(events, 0);
    simulation.subsystem.unplug(0);
    simulation.settle();
    expectNoMistake(log);
}

} // namespace Examples

using namespace Examples;

#endif
