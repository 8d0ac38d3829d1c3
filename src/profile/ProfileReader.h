#ifndef VORN_PROFILE_PROFILEREADER_H
#define VORN_PROFILE_PROFILEREADER_H

#include "Diagnostic.h"
#include "Profile.h"
#include "vorn_profile_export.h"

#include <QByteArray>
#include <QString>

namespace Vorn {

/// @file
/// Reads profiles, TOML documents, from memory or from a file.

/// What came of reading a profile.
struct ParsedProfile
{
    Profile profile; ///< meaningless if there are errors
    Diagnostics diagnostics; ///< errors and warnings, in the order of the file
};

/// The most bytes that are read of a profile: far more than any panel has keys, and little enough
/// to be parsed in an instant.
constexpr qint64 maxProfileSize = qint64{1024} * 1024;

/// Reads a profile, a TOML document, and finds all mistakes in it, but for syntax errors, of which
/// it finds the first. Whatever @p text is, mistakes come back as values.
///
/// @code
/// const Vorn::ParsedProfile parsed = Vorn::loadProfile("/etc/player/panel.toml");
/// for (const Vorn::Diagnostic &diagnostic : parsed.diagnostics)
///     LOG4CPLUS_WARN(logger, diagnostic.toString()); // "panel.toml:12:20: error: …"
/// if (!Vorn::hasErrors(parsed.diagnostics))
///     devices.setProfile(parsed.profile);
/// @endcode
///
/// **Thread**: any, several at the same time. **Log**: nothing.
///
/// @param text a document in UTF-8
/// @param file its name, for the diagnostics
/// @return the profile, and what is wrong with it
VORN_PROFILE_EXPORT ParsedProfile parseProfile(const QByteArray &text,
                                               const QString &file) noexcept;

/// Reads a profile from a file. One that is missing, not a regular file or larger than
/// Vorn::maxProfileSize is one error.
/// @param path of the file, also its name in the diagnostics
/// @return the profile, and what is wrong with it
VORN_PROFILE_EXPORT ParsedProfile loadProfile(const QString &path) noexcept;

} // namespace Vorn

#endif
