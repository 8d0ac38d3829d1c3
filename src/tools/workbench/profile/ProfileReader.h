#ifndef VORN_WORKBENCH_PROFILEREADER_H
#define VORN_WORKBENCH_PROFILEREADER_H

#include "Findings.h"
#include "Profile.h"
#include "ProfilePlaces.h"
#include "TextFile.h"
#include "TomlValue.h"

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

struct ParsedProfile
{
    Profile profile; ///< meaningless if there are errors
    Diagnostics diagnostics; ///< in the order of the file
};

/// The most that is read of a profile: far more than any panel has keys, and little enough to be
/// parsed in an instant.
constexpr qint64 maxProfileSize = qint64{1024} * 1024;

/// Reads a profile (TOML, the format of docs/profile.md) and finds all mistakes in it, but for
/// syntax errors, of which it finds the first. Never fails otherwise, whatever @p text is.
/// @param file for the diagnostics
ParsedProfile parseProfile(const QByteArray &text, const QString &file);

/// Reads a profile from a file; "-" is the standard input.
ParsedProfile loadProfile(const QString &path, Pipes pipes = Pipes::Allowed);

} // namespace Vorn::Workbench

#endif
