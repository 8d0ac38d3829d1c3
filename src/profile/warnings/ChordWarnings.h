#ifndef VORN_PROFILE_CHORDWARNINGS_H
#define VORN_PROFILE_CHORDWARNINGS_H

#include "Findings.h"
#include "Profile.h"
#include "ProfilePlaces.h"

#include <QSet>

namespace Vorn {

/// Finds what the keys of a chord do besides, and what they do not do.
/// @param mappedKeys codes that a handler of the same device maps
void findChordWarnings(const HandlerProfile &handler, const HandlerPlaces &places,
                       const QSet<int> &mappedKeys, Findings *findings);

} // namespace Vorn

#endif
