#ifndef VORN_WORKBENCH_PROFILEWARNINGS_H
#define VORN_WORKBENCH_PROFILEWARNINGS_H

#include "ProfileReader.h"

namespace Vorn::Workbench {

/// Finds what is no mistake in the format but does not do what it looks like.
void findProfileWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings);

} // namespace Vorn::Workbench

#endif
