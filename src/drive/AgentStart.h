#ifndef VORN_DRIVE_AGENTSTART_H
#define VORN_DRIVE_AGENTSTART_H

namespace Vorn::Drive {

/// Starts the agent, once, if this process was started by a driver. Qt calls it when the program
/// has made its QCoreApplication.
void startAgent();

} // namespace Vorn::Drive

#endif
