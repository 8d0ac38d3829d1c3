#include "Session.h"
#include "SessionPrinter.h"
#include "SessionReader.h"
#include "SessionWriter.h"
#include "Timeline.h"

#include <QXmlStreamReader>

#include <cstdint>
#include <cstdlib>

using namespace Vorn::Workbench;

namespace {

QByteArray written(const QVector<SessionEntry> &entries)
{
    QByteArray text;
    for (const SessionEntry &entry : entries)
        text += toJsonLine(entry);
    return text;
}

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// A text that is too long goes on in the next line; nothing else may control a terminal.
void requireHarmless(const QString &text)
{
    for (const QChar character : text)
        require(character == QLatin1Char('\n') || character.category() != QChar::Other_Control);
}

/// Every image viewer must be able to read the picture.
void requireWellFormed(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
    require(!reader.hasError());
}

} // namespace

// Qt's JSON parser leaks a list if its member occurs twice. The parser's own frames have no names,
// so suppress by library.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions()
{
    return "leak:libQt5Core.so";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const ParsedSession session = parseSession(text, QStringLiteral("session"));

    const QByteArray once = written(session.entries);
    const ParsedSession again = parseSession(once, QStringLiteral("session"));
    require(again.diagnostics.isEmpty());
    require(again.entries.size() == session.entries.size());
    require(written(again.entries) == once);

    SessionPrinter::Options options;
    options.records = true;
    options.detectors = true;
    options.outcomes = true;
    options.latency = true;
    SessionPrinter lines(options);
    for (const SessionEntry &entry : session.entries)
        requireHarmless(lines.line(entry));

    requireWellFormed(timelineSvg(session.entries, {}));
    TimelineOptions part;
    part.from = 1'000'000;
    part.to = 2'000'000;
    requireWellFormed(timelineSvg(session.entries, part));
    return 0;
}
