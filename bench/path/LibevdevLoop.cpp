// The loop as in libevdev's documentation.

#include "Counters.h"

#include <libevdev/libevdev.h>

#include <fcntl.h>
#include <poll.h>

#include <cstdio>

int main()
{
    pollfd ready = {::open("/dev/input/event0", O_RDONLY | O_NONBLOCK), POLLIN, 0};
    libevdev *device = nullptr;
    if (ready.fd < 0 || libevdev_new_from_fd(ready.fd, &device) < 0) {
        std::perror("/dev/input/event0");
        return 1;
    }
    while (::poll(&ready, 1, -1) == 1) {
        input_event record;
        while (libevdev_next_event(device, LIBEVDEV_READ_FLAG_NORMAL, &record)
               == LIBEVDEV_READ_STATUS_SUCCESS)
        {
            if (record.type == EV_KEY || record.type == EV_SW)
                countResult();
        }
    }
    libevdev_free(device);
    return 1;
}
