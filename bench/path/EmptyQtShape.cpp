// The cost of the library's shape without its work: a QSocketNotifier hands the records of one read
// to a slot as a QList<input_event>.

#include "Counters.h"

#include <QCoreApplication>
#include <QList>
#include <QSocketNotifier>

#include <fcntl.h>
#include <linux/input.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace {

void receive(const QList<input_event> &batch)
{
    for (const input_event &record : batch) {
        if (record.type == EV_KEY || record.type == EV_SW)
            countResult();
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const int fd = ::open("/dev/input/event0", O_RDONLY);
    if (fd < 0) {
        std::perror("/dev/input/event0");
        return 1;
    }
    QSocketNotifier notifier(fd, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &application, [](int socket) {
        std::array<input_event, 1024 / sizeof(input_event)> buffer;
        const ssize_t bytes = ::read(socket, buffer.data(), sizeof(buffer));
        QList<input_event> batch;
        for (std::size_t i = 0; static_cast<ssize_t>((i + 1) * sizeof(buffer[0])) <= bytes; ++i)
            batch.append(buffer[i]);
        receive(batch);
    });
    return QCoreApplication::exec();
}
