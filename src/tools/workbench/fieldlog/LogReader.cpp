#include "LogReader.h"

#include "KnownLayouts.h"
#include "LayoutGuess.h"
#include "LibrarySigns.h"
#include "LogLineMaker.h"
#include "LogOrder.h"
#include "LogSource.h"
#include "MisfitCount.h"

#include <QFileInfo>

#include <limits>
#include <utility>
#include <vector>

namespace Vorn::Workbench {

namespace {

using Sample = std::vector<LogSource::Copy>;

/// A sample has so many lines from the first one of the library on, and at most as many before it.
constexpr std::size_t sampleLines = 200;
constexpr std::size_t sampleBytes = std::size_t{1024} * 1024;
/// Each guess takes as long as reading some thousand lines.
constexpr int maxGuesses = 30;

std::vector<std::string> textsOf(const Sample &sample)
{
    std::vector<std::string> texts;
    for (const LogSource::Copy &copy : sample)
        texts.push_back(copy.text);
    return texts;
}

std::optional<qint64> firstTimeOf(const QString &path, LogReaderOptions options)
{
    // A pipe can be read once only.
    if (!QFileInfo(path).isFile())
        return std::nullopt;
    options.rotated = false;
    LogReader reader({path}, options);
    while (const std::optional<LogLine> line = reader.next()) {
        if (line->time && line->hasDate)
            return line->time;
    }
    return std::nullopt;
}

} // namespace

class LogReader::Parts
{
public:
    Parts(const QStringList &files, const LogReaderOptions &options, const Diagnostics &found);

    std::optional<LogLine> next();

    const Diagnostics &diagnostics() const { return m_diagnostics; }
    LogCounts counts() const;
    const QStringList &files() const { return m_source.files(); }
    QString layoutText() const;

private:
    bool compilePattern(const QString &text);
    bool learnFirstLayout();
    bool guessFrom(Sample *sample);
    void learnFurtherLayout(const RawLine &first);
    bool fitsMore(LogLayout layout, const Sample &sample);
    std::optional<LogLine> lineOf(const RawLine &raw);
    void finish();
    void report(Diagnostic::Severity severity, int file, qint64 line, const QString &message);

    LogSource m_source;
    LogLineMaker m_maker;
    KnownLayouts m_layouts;
    std::optional<LogPattern> m_given;
    Diagnostics m_diagnostics;
    MisfitCount m_misfits;
    qint64 m_before = 0;
    int m_guesses = 0;
    qint64 m_noGuessBefore = 0; ///< the index of a line
    bool m_isOfLibrary = false;
    bool m_isAtEnd = false;
    int m_file = -1;
};

LogReader::Parts::Parts(const QStringList &files, const LogReaderOptions &options,
                        const Diagnostics &found)
    : m_source(files)
    , m_maker(options.zone)
    , m_diagnostics(found)
{
    if (!options.pattern.isEmpty() && !compilePattern(options.pattern))
        m_isAtEnd = true;
}

bool LogReader::Parts::compilePattern(const QString &text)
{
    LogPattern::Error error;
    m_given = LogPattern::compile(text, &error);
    if (!m_given)
        m_diagnostics += Diagnostic{Diagnostic::Severity::Error, QStringLiteral("--pattern"), 1,
                                    error.column, error.message};
    return m_given.has_value();
}

std::optional<LogLine> LogReader::Parts::next()
{
    RawLine raw;
    while (!m_isAtEnd) {
        if ((m_layouts.isEmpty() && !learnFirstLayout()) || !m_source.next(&raw)) {
            finish();
            break;
        }
        std::optional<LogLine> line = lineOf(raw);
        if (line)
            return line;
    }
    return std::nullopt;
}

/// Reads up to the library's first lines and puts back what shows the layout.
bool LogReader::Parts::learnFirstLayout()
{
    Sample sample;
    std::size_t bytes = 0;
    std::size_t showing = 0; // lines since the first one of the library
    RawLine raw;
    while (m_guesses < maxGuesses && m_source.next(&raw)) {
        sample.push_back(LogSource::copyOf(raw));
        bytes += raw.text.size();
        if (showing > 0 || m_given || libraryMessageIn(raw.text))
            ++showing;
        const bool isLarge = bytes > sampleBytes;
        if (showing == 0 && (sample.size() == 2 * sampleLines || isLarge)) {
            const std::size_t dropped = isLarge ? sample.size() : sampleLines;
            m_before += static_cast<qint64>(dropped);
            sample.erase(sample.begin(), sample.begin() + static_cast<std::ptrdiff_t>(dropped));
            bytes = 0;
        }
        if (showing > 0 && (showing == sampleLines || isLarge)) {
            if (guessFrom(&sample))
                return true;
            showing = 0;
            bytes = 0;
        }
    }
    return guessFrom(&sample);
}

bool LogReader::Parts::guessFrom(Sample *sample)
{
    ++m_guesses;
    const std::optional<LogLayout> layout = guessLayout(textsOf(*sample), m_given);
    if (layout)
        m_layouts.add(*layout);
    if (layout)
        m_source.putBack(std::move(*sample));
    else
        m_before += static_cast<qint64>(sample->size());
    sample->clear();
    return layout.has_value();
}

std::optional<LogLine> LogReader::Parts::lineOf(const RawLine &raw)
{
    if (raw.file != m_file) {
        m_file = raw.file;
        m_maker.setLastDay(m_source.lastDay(raw.file));
    }
    LogFields fields;
    const LogLayout::Fit fit = m_layouts.parse(raw.text, &fields);
    const bool isWhole = fit == LogLayout::Fit::Whole;
    if (!isWhole && raw.index >= m_noGuessBefore && !m_given && !m_layouts.isFull()
        && libraryMessageIn(raw.text))
    {
        const qint64 index = raw.index;
        learnFurtherLayout(raw);
        // Either way the line comes again.
        m_noGuessBefore = std::max(m_noGuessBefore, index + 1);
        return std::nullopt;
    }
    if (fit == LogLayout::Fit::None) {
        m_misfits.add(raw.file, raw.number);
        return std::nullopt;
    }
    m_isOfLibrary = m_isOfLibrary || isLibraryLogger(fields.logger)
        || (isWhole && !m_layouts.current().hasLogger() && libraryMessageIn(fields.message) == 0U);
    LogLine line = m_maker.line(fields);
    line.file = raw.file;
    line.number = raw.number;
    return line;
}

/// Whether a layout reads what no known one does. A single line may just be damaged.
bool LogReader::Parts::fitsMore(LogLayout layout, const Sample &sample)
{
    int lines = 0;
    for (const LogSource::Copy &copy : sample) {
        LogFields known;
        LogFields fields;
        if (m_layouts.parse(copy.text, &known) != LogLayout::Fit::Whole
            && layout.parse(copy.text, &fields) == LogLayout::Fit::Whole)
            ++lines;
    }
    return lines > 1;
}

/// A line of the library does not fit: the product may have been updated.
void LogReader::Parts::learnFurtherLayout(const RawLine &first)
{
    constexpr std::size_t lines = 50;
    Sample sample = {LogSource::copyOf(first)};
    RawLine raw;
    while (sample.size() < lines && m_source.next(&raw))
        sample.push_back(LogSource::copyOf(raw));
    const std::optional<LogLayout> layout = guessLayout(textsOf(sample));
    const bool isNew = layout && fitsMore(*layout, sample) && m_layouts.add(*layout);
    if (isNew)
        report(Diagnostic::Severity::Warning, first.file, first.number,
               QStringLiteral("the layout changes here: ") + layout->text());
    // A message that only looks like one of the library's is looked at less and less often.
    else
        m_noGuessBefore =
            first.index + static_cast<qint64>(lines) * (qint64{1} << ++m_guesses % 20);
    m_source.putBack(std::move(sample));
}

void LogReader::Parts::finish()
{
    m_isAtEnd = true;
    m_diagnostics += m_source.diagnostics();
    m_diagnostics += m_misfits.toDiagnostics([this](int file) { return m_source.name(file); });
    if (m_maker.hasGuessedYears())
        report(Diagnostic::Severity::Warning, 0, 0,
               QStringLiteral("the dates have no year; the log is taken to end in the year in "
                              "which the file was last written"));
    if (m_layouts.areDaysOpen())
        report(Diagnostic::Severity::Warning, 0, 0,
               QStringLiteral("the dates do not show which number is the day and which the month; "
                              "read with the %1; if it is the other way round, use --pattern")
                   .arg(m_layouts.current().text()));
    if (m_isOfLibrary || m_source.lines() == 0 || hasErrors(m_source.diagnostics()))
        return;
    const QString hint = m_given ? QStringLiteral("check --pattern, and that these loggers were on")
                                 : QStringLiteral("if it is one, give its layout with --pattern");
    report(Diagnostic::Severity::Error, 0, 0,
           QStringLiteral("no log of the library: in %1 lines there is no message of the loggers "
                          "%2; %3")
               .arg(m_source.lines())
               .arg(libraryLoggers(), hint));
}

void LogReader::Parts::report(Diagnostic::Severity severity, int file, qint64 line,
                              const QString &message)
{
    const int number = static_cast<int>(std::min<qint64>(line, std::numeric_limits<int>::max()));
    m_diagnostics += Diagnostic{severity, m_source.name(file), number, 0, message};
}

LogCounts LogReader::Parts::counts() const
{
    return {m_source.filesRead(), m_source.bytes(), m_source.lines(), m_before, m_misfits.count()};
}

QString LogReader::Parts::layoutText() const
{
    if (m_layouts.isEmpty())
        return QStringLiteral("unknown");
    QStringList remarks;
    if (!m_given)
        remarks += QStringLiteral("guessed");
    if (!m_layouts.haveTimes())
        remarks += QStringLiteral("without times");
    if (!m_layouts.haveLoggers())
        remarks += QStringLiteral("without loggers");
    const QString texts = m_layouts.texts().join(QStringLiteral("; "));
    return remarks.isEmpty()
        ? texts
        : texts + QStringLiteral(" (%1)").arg(remarks.join(QStringLiteral(", ")));
}

LogReader::LogReader(const QStringList &files, const LogReaderOptions &options)
{
    QStringList all;
    for (const QString &file : files)
        all +=
            options.rotated && file != QLatin1String("-") ? rotatedFiles(file) : QStringList{file};
    Diagnostics found;
    const QStringList ordered = inLogOrder(
        all, [&](const QString &path) { return firstTimeOf(path, options); }, &found);
    m_parts = std::make_unique<Parts>(ordered, options, found);
}

LogReader::~LogReader() = default;

std::optional<LogLine> LogReader::next()
{
    return m_parts->next();
}

const Diagnostics &LogReader::diagnostics() const
{
    return m_parts->diagnostics();
}

LogCounts LogReader::counts() const
{
    return m_parts->counts();
}

QStringList LogReader::files() const
{
    return m_parts->files();
}

QString LogReader::layoutText() const
{
    return m_parts->layoutText();
}

} // namespace Vorn::Workbench
