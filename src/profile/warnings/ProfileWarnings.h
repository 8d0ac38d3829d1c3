#ifndef VORN_PROFILE_PROFILEWARNINGS_H
#define VORN_PROFILE_PROFILEWARNINGS_H

#include "Findings.h"
#include "Profile.h"
#include "ProfilePlaces.h"

namespace Vorn {

/// Finds what is valid but does not do what it looks like.
void findProfileWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings);

} // namespace Vorn

#endif
