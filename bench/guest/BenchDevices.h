#ifndef BENCHDEVICES_H
#define BENCHDEVICES_H

#include "UinputDevice.h"

#include <memory>
#include <vector>

namespace Vorn::Bench {

/// Throws unless this process can create devices.
void requireUinput();
/// Throws if there is an input device already; a guest has none.
void requireNoDevices();

/// Kernel devices with the keys and the switch of BenchProduct.
std::unique_ptr<UinputDevice> makeDevice();
std::vector<std::unique_ptr<UinputDevice>> makeDevices(int count);

} // namespace Vorn::Bench

#endif
