#ifndef VORN_WORKBENCH_PROFILEWRITER_H
#define VORN_WORKBENCH_PROFILEWRITER_H

#include "Profile.h"

#include <QByteArray>

namespace Vorn::Workbench {

/// The profile as JSON, indented, that parseProfile() reads back to the same value.
QByteArray profileToJson(const Profile &profile);

} // namespace Vorn::Workbench

#endif
