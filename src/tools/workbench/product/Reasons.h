#ifndef VORN_WORKBENCH_REASONS_H
#define VORN_WORKBENCH_REASONS_H

#include <QString>
#include <QStringList>

/// Why a record published nothing, in words for people.
namespace Vorn::Workbench {

/// A device has an entry, but no handler of a kind under an identifier.
/// @param kind "keys" or "switches"
/// @param others the identifiers under which it has one
QString noHandlerReason(const QString &kind, const QString &identifier, const QStringList &others);

/// A handler has no command for a code.
/// @param others the identifiers under which the device has one
QString unmappedReason(const QString &identifier, const QStringList &others);

/// The library believes that a key is down, and the kernel that it is up.
/// @param since µs of the session
QString lostReleaseText(const QString &device, int code, qint64 since, bool isChord);

} // namespace Vorn::Workbench

#endif
