#ifndef VORN_PROFILE_HANDLERWARNINGS_H
#define VORN_PROFILE_HANDLERWARNINGS_H

#include "DeviceRange.h"
#include "Findings.h"
#include "Profile.h"
#include "ProfilePlaces.h"

namespace Vorn {

/// Finds registrations of a handler that are valid but do not do what they look like, each by
/// itself or because of another one of its kind.
/// @param range the devices of its entry
/// @param taken ranges of the entries before
void findHandlerWarnings(const HandlerProfile &handler, const HandlerPlaces &places,
                         const DeviceRange &range, const TakenRanges &taken, Findings *findings);

} // namespace Vorn

#endif
