#include "Slot.h"

#include "BasicInputHandler.h"
#include "InputSubsystem.h"

#include <QCoreApplication>

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>

// Makes passes of the device scan, each between two marks for a tracer, and prints the calls that
// the simulated nodes answered meanwhile; scan_calls.py combines the two.

namespace {

using Vorn::Sim::CallCounts;
using Vorn::Sim::DeviceDescription;
using Vorn::Sim::InputNode;
using Vorn::Sim::InputSubsystem;

constexpr int passes = 10;

class Product : public BasicInputHandler
{
public:
    void addDevice(const QString &, const QString &) override { ++devices; }

    void removeDevice(const QString &device) override
    {
        --devices;
        BasicInputHandler::removeDevice(device);
    }

    int devices = 0;
};

// A failing write has no effect, but the tracer sees it.
void mark(const char *text)
{
    if (::write(-1, text, std::strlen(text)) >= 0)
        qFatal("a write to descriptor -1 succeeded");
}

int run(int nodes, bool arrival)
{
    InputSubsystem subsystem;
    subsystem.setRecording(false);
    for (int number = 0; number < nodes; ++number) {
        subsystem.plug(number,
                       DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_OK})
                           .withSwitches({SW_LINEIN_INSERT}));
    }
    Product product;
    QCoreApplication::processEvents();
    const Slot slot(&product, "on_inputWatcher_changed(QString)");
    QString directory = QStringLiteral("/dev/input/");

    CallCounts counts;
    for (int pass = 0; pass < passes; ++pass) {
        if (arrival) {
            InputNode &node = subsystem.node(nodes - 1);
            node.failOpen(ENOENT, InputNode::Forever);
            slot(&directory);
            node.clearFailures();
        }
        const int expected = arrival ? nodes - 1 : nodes;
        if (product.devices != expected) {
            std::cerr << "vorn_scan_calls: " << product.devices << " devices found instead of "
                      << expected << std::endl;
            return 1;
        }
        const CallCounts before = subsystem.callCounts();
        mark("begin");
        slot(&directory);
        mark("end");
        const CallCounts after = subsystem.callCounts();
        counts.opens += after.opens - before.opens;
        counts.reads += after.reads - before.reads;
        counts.ioctls += after.ioctls - before.ioctls;
        counts.closes += after.closes - before.closes;
    }
    if (product.devices != nodes) {
        std::cerr << "vorn_scan_calls: a device did not arrive" << std::endl;
        return 1;
    }
    std::cout << "passes " << passes << "\nopens " << counts.opens << "\nreads " << counts.reads
              << "\nioctls " << counts.ioctls << "\ncloses " << counts.closes << std::endl;
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray change = argc == 3 ? argv[2] : "";
    bool isNumber = false;
    const int nodes = argc == 3 ? QByteArray(argv[1]).toInt(&isNumber) : 0;
    const bool arrival = change == "arrival";
    if (!isNumber || nodes < 0 || nodes > 10 || (!arrival && change != "none")
        || (arrival && nodes == 0))
    {
        std::cerr << "usage: vorn_scan_calls NODES none|arrival\n"
                     "NODES is 0 to 10, including the one that arrives.\n";
        return 2;
    }
    const log4cplus::Initializer initializer;
    log4cplus::Logger::getRoot().addAppender(
        log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::WARN_LOG_LEVEL);
    QCoreApplication application(argc, argv);
    return run(nodes, arrival);
}
