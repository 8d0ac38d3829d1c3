#ifndef VORN_SIM_DEVICEFACTORY_H
#define VORN_SIM_DEVICEFACTORY_H

#include <memory>
#include <mutex>

namespace Vorn::Sim {

struct DeviceDescription;
class SimulatedDevice;

/// The device that @p description describes. Its auto-repeat runs on the calling thread.
/// @param lock the subsystem's, taken for each repeat
std::shared_ptr<SimulatedDevice> makeDevice(const DeviceDescription &description, std::mutex &lock);

} // namespace Vorn::Sim

#endif
