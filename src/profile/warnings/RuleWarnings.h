#ifndef VORN_PROFILE_RULEWARNINGS_H
#define VORN_PROFILE_RULEWARNINGS_H

#include "Findings.h"
#include "Profile.h"
#include "ProfilePlaces.h"

namespace Vorn {

/// Finds identifiers that are selected, at the start or by a rule, in vain or at a bad moment. For
/// profiles without errors: these may hide what seems to be missing.
void findRuleWarnings(const Profile &profile, const ProfilePlaces &places, Findings *findings);

} // namespace Vorn

#endif
