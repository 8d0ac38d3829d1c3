#ifndef VORN_WORKBENCH_PROFILEWRITER_H
#define VORN_WORKBENCH_PROFILEWRITER_H

#include "Profile.h"

#include <QByteArray>

namespace Vorn::Workbench {

/// The profile as TOML, one registration a line, that parseProfile() reads back to the same value.
QByteArray writeProfile(const Profile &profile);

/// The same with comments for people who go on by hand: what a line means, what else there is.
QByteArray writeCommentedProfile(const Profile &profile);

/// Whether @p text is what writeCommentedProfile() wrote, byte for byte. Otherwise somebody has
/// edited it, and writing it again would lose their comments.
bool isAsWritten(const QByteArray &text);

} // namespace Vorn::Workbench

#endif
