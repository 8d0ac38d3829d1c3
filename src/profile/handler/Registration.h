#ifndef VORN_PROFILE_REGISTRATION_H
#define VORN_PROFILE_REGISTRATION_H

#include "BasicInputHandler.h"
#include "Profile.h"

namespace Vorn {

/// Registers the keys and chords of a profile, in its order. The handler must have its listener:
/// what is registered for a bus compares with that.
void registerKeys(const HandlerProfile &profile, BasicKeyInputHandler *handler);

/// Registers the switches of a profile, in its order.
void registerSwitches(const HandlerProfile &profile, BasicSwInputHandler *handler);

} // namespace Vorn

#endif
