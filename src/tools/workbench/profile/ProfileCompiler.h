#ifndef VORN_WORKBENCH_PROFILECOMPILER_H
#define VORN_WORKBENCH_PROFILECOMPILER_H

#include "Profile.h"

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

/// What a source of C++ with a profile's tables is made of.
struct CompiledProfile
{
    QString name; ///< of the constant, see problemOfName()
    QString file; ///< name of the profile's file, without folders, for a comment
};

/// A source that defines the constant `Vorn::ProfileData NAME`. It is the same, byte for
/// byte, wherever and whenever it is written.
QByteArray compiledSource(const Profile &profile, const CompiledProfile &compiled);

/// The header that declares it.
QByteArray compiledHeader(const CompiledProfile &compiled);

/// What both contain within their first 4 KiB.
QByteArray compiledSignature();

} // namespace Vorn::Workbench

#endif
