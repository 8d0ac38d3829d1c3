#include "Output.h"

#include "Quoting.h"

namespace Vorn::Workbench {

void print(std::FILE *stream, const QByteArray &bytes)
{
    // A reader that goes away ends the process by SIGPIPE; a full disk is noticed in the end.
    static_cast<void>(
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream));
}

void printLine(std::FILE *stream, const QString &line)
{
    printColoured(stream, printable(line));
}

void printColoured(std::FILE *stream, const QString &line)
{
    print(stream, line.toUtf8() + '\n');
}

void printDiagnostics(const Diagnostics &diagnostics)
{
    for (const Diagnostic &diagnostic : diagnostics)
        printLine(stderr, diagnostic.toString());
}

bool flush(std::FILE *stream)
{
    // Flushing succeeds when an earlier write has failed already and nothing is left.
    return std::fflush(stream) == 0 && std::ferror(stream) == 0;
}

} // namespace Vorn::Workbench
