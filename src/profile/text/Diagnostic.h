#ifndef VORN_PROFILE_DIAGNOSTIC_H
#define VORN_PROFILE_DIAGNOSTIC_H

#include "vorn_profile_export.h"

#include <QString>
#include <QVector>

namespace Vorn {

/// What is wrong with a file, and where.
struct VORN_PROFILE_EXPORT Diagnostic
{
    enum class Severity { Error, Warning };

    Severity severity = Severity::Error;
    QString file;
    int line = 0; ///< from 1; 0: the file as a whole
    int column = 0; ///< from 1, in characters; 0: the line as a whole
    QString message; ///< without a full stop; says what to do about it if that is known

    /// "player.toml:12:20: error: unknown command 'VolumUp', did you mean 'VolumeUp'?", a form that
    /// editors and CI systems turn into links.
    QString toString() const;
};

using Diagnostics = QVector<Diagnostic>;

/// Whether there are any but warnings.
VORN_PROFILE_EXPORT bool hasErrors(const Diagnostics &diagnostics);

} // namespace Vorn

#endif
