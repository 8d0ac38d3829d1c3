#ifndef VORN_WORKBENCH_OUTPUT_H
#define VORN_WORKBENCH_OUTPUT_H

#include "Diagnostic.h"

#include <QByteArray>
#include <QString>

#include <cstdio>

namespace Vorn::Workbench {

/// Writes to a standard stream. Errors are sticky in the stream and reported by flush().
void print(std::FILE *stream, const QByteArray &bytes);

/// A text for people, in ASCII where the locale has no more, see encoded(). All texts but JSON take
/// this way.
void printText(std::FILE *stream, const QString &text);

/// A line for people. What a terminal must not get is escaped, see printable().
void printLine(std::FILE *stream, const QString &line);

/// A line with sequences that colour it, by somebody who has escaped all other parts of it.
void printColoured(std::FILE *stream, const QString &line);

/// Each on a line of stderr.
void printDiagnostics(const Diagnostics &diagnostics);

/// Whether everything that was ever written to @p stream has arrived.
bool flush(std::FILE *stream);

/// Makes flush() fail for the standard output.
/// @param error why, as errno has it
void loseOutput(int error);

/// Whether an error of the standard output has shown so far.
bool isOutputLost();

/// Why flush() fails for the standard output; empty if it does not.
QString outputError();

} // namespace Vorn::Workbench

#endif
