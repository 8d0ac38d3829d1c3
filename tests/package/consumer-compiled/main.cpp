// A product with its key map compiled in.

#include "ProfileInputHandler.h"
#include "keyMap.h"
#include "keys.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    ProfileInputHandler devices(Vorn::toProfile(keys));
    if (!(Vorn::toProfile(keyMap) == devices.profile()))
        return 1;
    for (const Vorn::DeviceProfile &device : devices.profile().devices) {
        for (const Vorn::HandlerProfile &handler : device.handlers) {
            for (const Vorn::KeyMapping &key : handler.keys)
                std::printf("key %d means %d\n", key.code, key.command);
        }
    }
    return 0;
}
