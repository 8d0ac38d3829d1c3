#ifndef VORN_WORKBENCH_DIAGNOSTIC_H
#define VORN_WORKBENCH_DIAGNOSTIC_H

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Vorn::Workbench {

/// What is wrong with a file, and where.
struct Diagnostic
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

bool hasErrors(const Diagnostics &diagnostics);

/// Line and column, from 1, of a byte offset in a UTF-8 text. A column is a character.
struct TextPosition
{
    int line = 1;
    int column = 1;
};
TextPosition positionOf(const QByteArray &text, int offset);

} // namespace Vorn::Workbench

#endif
