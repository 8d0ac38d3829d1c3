#ifndef VORN_SIM_DISPATCHERROUNDING_H
#define VORN_SIM_DISPATCHERROUNDING_H

#include <QtGlobal>

#include <chrono>

namespace Vorn::Sim {

/// How much too long Qt's event dispatchers wait for a timer that is due in a whole number of
/// milliseconds: Qt 5 rounds up past it.
constexpr std::chrono::milliseconds dispatcherRounding{QT_VERSION_MAJOR >= 6 ? 0 : 1};

} // namespace Vorn::Sim

#endif
