#ifndef VORN_WORKBENCH_PROFILEREASONS_H
#define VORN_WORKBENCH_PROFILEREASONS_H

#include "Profile.h"

#include <QString>

/// Why a device's records published nothing, as far as its profile tells, in words for people.
namespace Vorn::Workbench {

/// No entry of the profile fits a device: which one was probably meant.
QString noEntryReason(const Profile &profile, const QString &name, InputEvent::Bus bus);

/// "; the device, … did you mean …?" for a device that only an entry for any device fits, and whose
/// name is almost that of another entry; else nothing.
QString otherEntryHint(const Profile &profile, const QString &name, InputEvent::Bus bus);

} // namespace Vorn::Workbench

#endif
