// A product on simulated devices and in virtual time, built with a 64-bit time_t for a 32-bit
// system whose Qt has a 32-bit one. Exits with 0 if everything arrived.

#include "BasicInputHandler.h"
#include "Input.h"

#include "InputSubsystem.h"
#include "VirtualClock.h"

#include <QCoreApplication>

#include <cstdio>
#include <ctime>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

static_assert(sizeof(std::time_t) == 8, "built without -D_TIME_BITS=64");

namespace {

using Vorn::Sim::DeviceDescription;

int failures = 0;

void check(bool holds, const char *what)
{
    if (holds)
        return;
    std::printf("FAILED: %s\n", what);
    ++failures;
}

class Product : public BasicInputHandler
{
public:
    void addDevice(const QString &device, const QString &) override
    {
        auto *keys = new BasicKeyInputHandler(device);
        addKeyHandler(device, keys, QString());
        keys->registerKey(KEY_OK, InputEvent::Confirm, true);
        keys->enableLongPress(KEY_OK, false, {600});
    }
};

void checkNode()
{
    struct stat status = {};
    check(::stat("/dev/input/event0", &status) == 0 && S_ISCHR(status.st_mode), "stat of a node");
    check(::lstat("/dev/input/event0", &status) == 0 && S_ISCHR(status.st_mode), "lstat of a node");
    const int fd = ::open("/dev/input/event0", O_RDONLY);
    check(::fstat(fd, &status) == 0 && S_ISCHR(status.st_mode), "fstat of a node");
    const int copy = ::fcntl(fd, F_DUPFD_CLOEXEC, 100);
    check(copy >= 100 && ::fstat(copy, &status) == 0 && S_ISCHR(status.st_mode), "fcntl of a node");
    ::close(fd);
    ::close(copy);
}

void checkClock(const Vorn::Sim::VirtualClock &clock)
{
    const qint64 now = clock.now() / 1000;
    check(std::time(nullptr) == now, "time");
    timespec exact = {};
    check(::clock_gettime(CLOCK_REALTIME, &exact) == 0 && exact.tv_sec == now, "clock_gettime");
    struct timeval day = {};
    check(::gettimeofday(&day, nullptr) == 0 && day.tv_sec == now, "gettimeofday");
    const timespec tenSeconds = {10, 0};
    check(::ppoll(nullptr, 0, &tenSeconds, nullptr) == 0 && clock.now() / 1000 == now + 10,
          "ppoll");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Vorn::Sim::VirtualClock clock;
    Vorn::Sim::InputSubsystem subsystem;
    auto &panel = subsystem.plug(0, DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}));
    const Product product;
    std::string events;
    QObject::connect(Input::instance(), &Input::inputEvent, [&events](const InputEvent &event) {
        events += event.toString().toStdString();
    });
    clock.settle();

    panel.press(KEY_OK);
    clock.advance(std::chrono::seconds(1));
    panel.release(KEY_OK);
    clock.settle();
    const std::string expected = "[cmd=Confirm, state=KeyPressed, bus=LocalUI]"
                                 "[cmd=Confirm, state=KeyLongPress, bus=LocalUI]"
                                 "[cmd=Confirm, state=KeyReleased, bus=LocalUI]";
    check(events == expected, events.c_str());
    checkNode();
    checkClock(clock);
    return failures == 0 ? 0 : 1;
}
