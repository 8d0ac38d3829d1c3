#ifndef VORN_SIM_IOCTLREQUESTS_H
#define VORN_SIM_IOCTLREQUESTS_H

namespace Vorn::Sim {

struct Client;

/// The part of an `ioctl` request that says what it asks for.
unsigned long withoutSize(unsigned long request);

/// Whether @p request concerns the descriptor as such and never reaches a device's driver.
bool isForDescriptor(unsigned long request);

/// Does what @p request asks of the device of @p client, which is present.
/// @return the result, or a negative `errno`
long answerRequest(Client &client, unsigned long request, void *argument);

} // namespace Vorn::Sim

#endif
