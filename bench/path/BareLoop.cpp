// The floor: poll() and read() in a loop, and nothing else.

#include "Counters.h"

#include <fcntl.h>
#include <linux/input.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstdio>

int main()
{
    pollfd ready = {::open("/dev/input/event0", O_RDONLY), POLLIN, 0};
    if (ready.fd < 0) {
        std::perror("/dev/input/event0");
        return 1;
    }
    // As much per read as the library.
    std::array<input_event, 1024 / sizeof(input_event)> batch;
    while (::poll(&ready, 1, -1) == 1) {
        const ssize_t bytes = ::read(ready.fd, batch.data(), sizeof(batch));
        if (bytes <= 0)
            return 1;
        const std::size_t count = static_cast<std::size_t>(bytes) / sizeof(batch[0]);
        for (std::size_t i = 0; i < count; ++i) {
            if (batch[i].type == EV_KEY || batch[i].type == EV_SW)
                countResult();
        }
    }
    return 1;
}
