#ifndef VORN_PROFILE_DIAGNOSTIC_H
#define VORN_PROFILE_DIAGNOSTIC_H

#include "vorn_profile_export.h"

#include <QString>
#include <QVector>

namespace Vorn {

/// @file
/// What is said about a profile.

/// What is wrong with a file, and where.
struct VORN_PROFILE_EXPORT Diagnostic
{
    /// How bad it is.
    enum class Severity {
        Error, ///< the file cannot be used
        Warning, ///< it has no effect, or not the one it seems to have
    };

    Severity severity = Severity::Error; ///< how bad it is
    QString file; ///< its name as it was given
    int line = 0; ///< from 1; 0: the file as a whole
    int column = 0; ///< from 1, in characters; 0: the line as a whole
    QString message; ///< without a full stop; says what to do about it if that is known

    /// "player.toml:12:20: error: unknown command 'VolumUp', did you mean 'VolumeUp'?", a form that
    /// editors and CI systems turn into links.
    /// @return one line
    QString toString() const;
};

/// In the order of the file.
using Diagnostics = QVector<Diagnostic>;

/// Whether there are any but warnings.
/// @param diagnostics what was said about a file
/// @return whether the file cannot be used
VORN_PROFILE_EXPORT bool hasErrors(const Diagnostics &diagnostics);

} // namespace Vorn

#endif
