#include "Output.h"

#include "PlainText.h"
#include "Quoting.h"

#include <cerrno>

namespace Vorn::Workbench {

namespace {

// The stream remembers that there was an error, but not which.
int firstOutputError = 0;

bool noteError(std::FILE *stream, bool isWritten)
{
    if (!isWritten && stream == stdout)
        loseOutput(errno);
    return isWritten;
}

} // namespace

void print(std::FILE *stream, const QByteArray &bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    noteError(stream, std::fwrite(bytes.constData(), 1, size, stream) == size);
}

void printText(std::FILE *stream, const QString &text)
{
    print(stream, encoded(text, localeCharset()));
}

void printLine(std::FILE *stream, const QString &line)
{
    printColoured(stream, printable(line));
}

void printColoured(std::FILE *stream, const QString &line)
{
    printText(stream, line + QLatin1Char('\n'));
}

void printDiagnostics(const Diagnostics &diagnostics)
{
    for (const Diagnostic &diagnostic : diagnostics)
        printLine(stderr, diagnostic.toString());
}

bool flush(std::FILE *stream)
{
    // Flushing succeeds when an earlier write has failed already and nothing is left.
    return noteError(stream, std::fflush(stream) == 0) && std::ferror(stream) == 0
        && (stream != stdout || firstOutputError == 0);
}

void loseOutput(int error)
{
    if (firstOutputError == 0)
        firstOutputError = error;
}

bool isOutputLost()
{
    return firstOutputError != 0;
}

QString outputError()
{
    return firstOutputError == 0 ? QString()
                                 : QStringLiteral("cannot write to the standard output: ")
            + qt_error_string(firstOutputError);
}

} // namespace Vorn::Workbench
