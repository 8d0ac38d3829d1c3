#include "Scan.h"

#include "Application.h"
#include "BenchDevices.h"
#include "BenchProduct.h"
#include "Expedition.h"
#include "Figures.h"
#include "Options.h"

#include <QMetaObject>

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <system_error>

namespace Vorn::Bench {

namespace {

using Clock = std::chrono::steady_clock;

const char *const inputFolder = "/dev/input";

/// Keeps the folder of the nodes when there are none.
class InputFolder
{
public:
    InputFolder()
    {
        if (::mkdir(inputFolder, 0755) != 0)
            throw std::system_error(errno, std::generic_category(), "cannot create /dev/input");
    }
    ~InputFolder() { ::rmdir(inputFolder); }
    InputFolder(const InputFolder &) = delete;
    InputFolder &operator=(const InputFolder &) = delete;
};

/// Runs a pass; returns its time in microseconds.
double pass(BenchProduct &product)
{
    const auto start = Clock::now();
    if (!QMetaObject::invokeMethod(&product, "on_inputWatcher_changed", Qt::DirectConnection,
                                   Q_ARG(QString, QStringLiteral("/dev/input/"))))
        throw std::runtime_error("the library does not have this slot");
    return microsecondsSince(start);
}

/// The system calls that no pass can do without; their time in microseconds.
double bareCalls()
{
    const auto start = Clock::now();
    struct stat attributes = {};
    ::stat(inputFolder, &attributes);
    for (char number = '0'; number <= '9'; ++number) {
        char path[] = "/dev/input/event0";
        path[sizeof(path) - 2] = number;
        const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            continue;
        char name[256];
        ::ioctl(fd, EVIOCGNAME(sizeof(name) - 1), name);
        ::close(fd);
    }
    return microsecondsSince(start);
}

Figure row(const char *subject, const char *stream, const std::string &parameter)
{
    return {"scan", subject, stream, {}, parameter, "time", "us"};
}

void measureWithNodes(int count, int passes, const Expedition &expedition)
{
    std::fprintf(stderr, "scan: %d nodes\n", count);
    const std::string parameter = expedition.parameter(std::to_string(count) + " nodes");
    auto devices = makeDevices(count);
    BenchProduct product;
    waitForFirstPass();
    requireDevices(product, count);

    std::vector<double> bare;
    std::vector<double> unchanged;
    for (int i = 0; i < passes; ++i) {
        bare.push_back(bareCalls());
        unchanged.push_back(pass(product));
    }
    print(row("bare calls", "no change", parameter), bare);
    print(row("library", "no change", parameter), unchanged);
    if (count == 0)
        return;

    // The last device goes and comes back. The slot is called before the watcher's signal, which is
    // delivered at the end of the round, when nothing is new any more.
    std::vector<double> departures;
    std::vector<double> arrivals;
    for (int i = 0; i < passes; ++i) {
        devices.pop_back();
        departures.push_back(pass(product));
        requireDevices(product, count - 1);
        devices.push_back(makeDevice());
        arrivals.push_back(pass(product));
        requireDevices(product, count);
        QCoreApplication::processEvents();
    }
    print(row("library", "one arrival", parameter), arrivals);
    print(row("library", "one departure", parameter), departures);
}

void measureWithoutFolder(int passes, const Expedition &expedition)
{
    std::fprintf(stderr, "scan: no folder\n");
    BenchProduct product;
    waitForFirstPass();
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(passes));
    for (int i = 0; i < passes; ++i)
        times.push_back(pass(product));
    print(row("library", "no change", expedition.parameter("no folder")), times);
}

} // namespace

void measureScan(const Options &options)
{
    requireNoDevices();
    const Application application;
    if (::access(inputFolder, F_OK) == 0)
        throw std::runtime_error("/dev/input exists without a device");
    const Expedition expedition(options.expedite);
    measureWithoutFolder(options.passes, expedition);
    const InputFolder folder;
    for (int count : {0, 5, 10})
        measureWithNodes(count, options.passes, expedition);
}

} // namespace Vorn::Bench
