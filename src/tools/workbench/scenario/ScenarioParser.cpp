#include "ScenarioParser.h"

#include "DeviceActions.h"
#include "DeviceDeclaration.h"
#include "ExpectSteps.h"
#include "GeneralSteps.h"
#include "Quoting.h"
#include "ScenarioContext.h"
#include "ScenarioLikeness.h"
#include "ScenarioLimits.h"
#include "ScenarioLine.h"

#include <QDir>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

void readProfile(ScenarioLine *line, ScenarioContext *context)
{
    const ScenarioWord *name = line->take(QStringLiteral("the file's name in quotes"));
    if (!name)
        return;
    Scenario &scenario = context->scenario();
    if (!scenario.profile.isEmpty()) {
        line->error(1,
                    QStringLiteral("the scenario already has a profile, see %1, line %2")
                        .arg(scenario.profileNamedIn, QString::number(scenario.profileLine)));
        return;
    }
    scenario.profile = line->pathTo(name->text);
    scenario.profileNamedIn = line->file();
    scenario.profileLine = line->number();
}

/// A word that starts a step, and what parses the rest of the line.
struct Keyword
{
    const char *word;
    void (*read)(ScenarioLine *, ScenarioContext *);
};

constexpr Keyword keywords[] = {
    {"profile", &readProfile}, {"start", &readStart},
    {"device", &readDevice},   {"wait", &readWait},
    {"clock", &readClock},     {"select", &readSelect},
    {"play", &readPlay},       {"input-directory", &readInputDirectory},
    {"ignore", &readIgnore},   {"expect", &readExpect},
};

// Not in the table: it alone needs to know which files are open.
const QLatin1String includeKeyword("include");

QStringList allKeywords()
{
    QStringList list{includeKeyword};
    for (const Keyword &keyword : keywords)
        list += QLatin1String(keyword.word);
    return list;
}

/// Parses a file and those it includes into one scenario.
class Parser
{
public:
    explicit Parser(const FileReader &readInclude)
        : m_readInclude(readInclude)
        , m_context(allKeywords())
    { }

    void readFile(const QByteArray &text, const QString &file);
    bool isScenario(const QByteArray &text) const
    {
        return looksLikeScenario(text, m_context.keywords() + m_context.labels(), actionNames());
    }
    void refuse(const QString &file, int line, const QString &message);
    const ParsedScenario &result() const { return m_context.result(); }

private:
    void readLine(ScenarioLine *line);
    void readInclude(ScenarioLine *line);
    QString tooLong() const;

    const FileReader &m_readInclude;
    ScenarioContext m_context;
    QStringList m_openFiles; ///< each includes the next
    int m_lines = 0; ///< of all files
    bool m_hasGivenUp = false; ///< the files that include this one end, too
};

void Parser::readFile(const QByteArray &text, const QString &file)
{
    Scenario &scenario = m_context.scenario();
    if (m_openFiles.isEmpty())
        scenario.file = file;
    m_openFiles.append(QDir::cleanPath(file));

    // Decoded line by line, so that a large file is not in memory a second time as UTF-16.
    int number = 0;
    // Some editors start UTF-8 files with a byte order mark.
    QByteArray::size_type begin = text.startsWith("\xef\xbb\xbf") ? 3 : 0;
    while (begin < text.size() && !m_hasGivenUp) {
        auto end = text.indexOf('\n', begin);
        if (end < 0)
            end = text.size();
        ++number;
        ++m_lines;
        const QString content = QString::fromUtf8(text.constData() + begin, end - begin);
        ScenarioLine line(content, file, number, m_context.diagnostics());
        if (const QString reason = tooLong(); !reason.isEmpty()) {
            line.error(1, reason);
            m_hasGivenUp = true;
        } else if (line.isOk() && !line.atEnd()) {
            readLine(&line);
        }
        begin = end + 1;
        if (m_context.result().diagnostics.size() >= ScenarioLimit::diagnostics && !m_hasGivenUp) {
            refuse(file, number,
                   QStringLiteral("these are %1 errors; the rest of the scenario is not read")
                       .arg(ScenarioLimit::diagnostics));
            m_hasGivenUp = true;
        }
    }
    m_openFiles.removeLast();
    if (m_openFiles.isEmpty())
        scenario.lastLine = std::max(number, 1);
}

void Parser::refuse(const QString &file, int line, const QString &message)
{
    m_context.diagnostics()->append({Diagnostic::Severity::Error, file, line, 0, message});
}

/// Why a scenario that goes on is too long; empty if it is not.
QString Parser::tooLong() const
{
    if (m_lines > ScenarioLimit::lines)
        return QStringLiteral("a scenario has at most %1 lines, with those of the files that it "
                              "includes; split it into several")
            .arg(ScenarioLimit::lines);
    if (m_context.scenario().steps.size() > ScenarioLimit::steps)
        return QStringLiteral("a scenario has at most %1 steps, where a click counts as three; "
                              "split it into several")
            .arg(ScenarioLimit::steps);
    return {};
}

void Parser::readLine(ScenarioLine *line)
{
    const ScenarioWord *first = line->take(QStringLiteral("a step"));
    const int device = m_context.deviceNamed(first->text);
    const Keyword *keyword =
        std::find_if(std::begin(keywords), std::end(keywords), [first](const Keyword &candidate) {
            return !first->isQuoted && first->text == QLatin1String(candidate.word);
        });
    if (!first->isQuoted && first->text == includeKeyword) {
        readInclude(line);
    } else if (keyword != std::end(keywords)) {
        keyword->read(line, &m_context);
    } else if (device >= 0) {
        readAction(line, &m_context, device);
    } else {
        line->unknown(first->column, QStringLiteral("step or device"), first->text,
                      m_context.keywords() + m_context.labels());
    }
    line->finish();
}

void Parser::readInclude(ScenarioLine *line)
{
    const ScenarioWord *name = line->take(QStringLiteral("the file's name in quotes"));
    if (!name)
        return;
    // Before the file is read: its errors would come first.
    line->finish();
    if (!line->isOk())
        return;
    const QString path = line->pathTo(name->text);
    // Includes of the same file twice in a row are fine: only a cycle would never end.
    if (m_openFiles.contains(path)) {
        line->error(QStringLiteral("%1 includes itself, by way of %2")
                        .arg(quotedPath(path), m_openFiles.join(QStringLiteral(", "))));
        return;
    }
    if (m_openFiles.size() >= ScenarioLimit::includeDepth) {
        line->error(QStringLiteral("includes are nested more than %1 deep")
                        .arg(ScenarioLimit::includeDepth));
        return;
    }
    QString reason;
    const std::optional<QByteArray> text = m_readInclude(path, &reason);
    if (!text) {
        line->error(QStringLiteral("cannot include %1: %2").arg(quotedPath(path), reason));
        return;
    }
    if (!isScenario(*text)) {
        line->error(QStringLiteral("cannot include %1: it is no scenario").arg(quotedPath(path)));
        return;
    }
    readFile(*text, path);
}

} // namespace

ParsedScenario parseScenario(const QByteArray &text, const QString &file,
                             const FileReader &readInclude)
{
    Parser parser(readInclude);
    if (parser.isScenario(text))
        parser.readFile(text, file);
    else
        parser.refuse(file, 0,
                      QStringLiteral("this is no scenario: its lines do not begin with steps like "
                                     "'profile', 'device', 'wait' or 'expect'"));
    return parser.result();
}

} // namespace Vorn::Workbench
