#include "ScenarioParser.h"

#include "Quoting.h"
#include "ScenarioReader.h"
#include "TextFile.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

constexpr int maxDepth = 16;
constexpr int maxDiagnostics = 100;
constexpr int maxSteps = 100'000;
// Includes may multiply: 16 files that include the next one twice are 65536 files.
constexpr int maxLines = 100'000;
constexpr qint64 maxDuration = 100LL * 24 * 60 * 60 * 1000;
constexpr qint64 maxClockStep = 3650LL * 24 * 60 * 60 * 1000;
// What 32 bits of seconds can stamp, with a year to spare for the waits.
constexpr qint64 maxWallClock = 4'260'000'000'000;
constexpr qint64 defaultStart = 1'767'348'000'000; // 2026-01-02T10:00:00Z

} // namespace

QStringList scenarioSteps()
{
    return {QStringLiteral("profile"), QStringLiteral("include"),
            QStringLiteral("start"),   QStringLiteral("device"),
            QStringLiteral("wait"),    QStringLiteral("clock"),
            QStringLiteral("select"),  QStringLiteral("input-directory"),
            QStringLiteral("play"),    QStringLiteral("ignore"),
            QStringLiteral("expect")};
}

QString pathFrom(const QString &file, const QString &name)
{
    return QDir::cleanPath(
        QDir::isAbsolutePath(name) ? name : QFileInfo(file).path() + QLatin1Char('/') + name);
}

ParsedScenario parseScenario(const QByteArray &text, const QString &file,
                             const FileReader &readInclude)
{
    ScenarioReader reader(readInclude);
    reader.readFile(text, file);
    return reader.take();
}

ScenarioReader::ScenarioReader(const FileReader &readInclude)
    : m_readInclude(readInclude)
    , m_wallClock(defaultStart)
{
    m_result.scenario.start = defaultStart;
}

ParsedScenario ScenarioReader::take()
{
    return m_result;
}

void ScenarioReader::readFile(const QByteArray &text, const QString &file)
{
    if (m_openFiles.isEmpty())
        m_result.scenario.file = file;
    m_openFiles.append(QDir::cleanPath(file));

    // Line by line, so that a large file is not there as a whole a second time.
    int number = 0;
    int begin = text.startsWith("\xef\xbb\xbf") ? 3 : 0;
    while (begin < text.size() && !isFull()) {
        int end = text.indexOf('\n', begin);
        if (end < 0)
            end = text.size();
        ++number;
        ++m_lines;
        const QString content = QString::fromUtf8(text.constData() + begin, end - begin);
        ScenarioLine line(content, file, number, &m_result.diagnostics);
        if (m_lines > maxLines || m_result.scenario.steps.size() > maxSteps)
            line.error(1, QStringLiteral("the scenario is too long; split it into several"));
        else if (line.isOk() && !line.atEnd())
            readLine(&line);
        begin = end + 1;
    }
    m_openFiles.removeLast();
    if (m_openFiles.isEmpty())
        m_result.scenario.lastLine = std::max(number, 1);
}

bool ScenarioReader::isFull() const
{
    return m_result.diagnostics.size() >= maxDiagnostics || m_lines > maxLines
        || m_result.scenario.steps.size() > maxSteps;
}

void ScenarioReader::readLine(ScenarioLine *line)
{
    struct Keyword
    {
        const char *word;
        void (ScenarioReader::*read)(ScenarioLine *);
    };
    static constexpr Keyword keywords[] = {
        {"profile", &ScenarioReader::readProfile},
        {"include", &ScenarioReader::readInclude},
        {"start", &ScenarioReader::readStart},
        {"device", &ScenarioReader::readDevice},
        {"wait", &ScenarioReader::readWait},
        {"clock", &ScenarioReader::readClock},
        {"select", &ScenarioReader::readSelect},
        {"input-directory", &ScenarioReader::readInputDirectory},
        {"play", &ScenarioReader::readPlay},
        {"ignore", &ScenarioReader::readIgnore},
        {"expect", &ScenarioReader::readExpect},
    };

    const ScenarioWord *first = line->take(QStringLiteral("a step"));
    for (const Keyword &keyword : keywords) {
        if (!first->isQuoted && first->text == QLatin1String(keyword.word)) {
            (this->*keyword.read)(line);
            line->finish();
            return;
        }
    }
    const int device = deviceNamed(first->text);
    if (device >= 0) {
        readAction(line, device);
        line->finish();
        return;
    }
    line->unknown(first->column, QStringLiteral("step or device"), first->text,
                  scenarioSteps() + labels());
}

void ScenarioReader::add(const ScenarioLine &line, const StepKind &what, bool continues)
{
    m_hasEffect = true;
    m_result.scenario.steps.append(
        ScenarioStep{line.file(), line.number(), line.text(), what, continues});
}

void ScenarioReader::addTime(ScenarioLine *line, qint64 duration)
{
    m_duration += duration;
    if (m_duration > maxDuration)
        line->error(QStringLiteral("a scenario lasts at most 100 days in all"));
}

void ScenarioReader::readProfile(ScenarioLine *line)
{
    const ScenarioWord *name = line->take(QStringLiteral("the file's name in quotes"));
    if (!name)
        return;
    Scenario &scenario = m_result.scenario;
    if (!scenario.profile.isEmpty()) {
        line->error(1,
                    QStringLiteral("a profile is named already in %1, line %2")
                        .arg(scenario.profileNamedIn)
                        .arg(scenario.profileLine));
        return;
    }
    scenario.profile = pathFrom(line->file(), name->text);
    scenario.profileNamedIn = line->file();
    scenario.profileLine = line->number();
}

void ScenarioReader::readInclude(ScenarioLine *line)
{
    const ScenarioWord *name = line->take(QStringLiteral("the file's name in quotes"));
    if (!name)
        return;
    line->finish();
    if (!line->isOk())
        return;
    const QString path = pathFrom(line->file(), name->text);
    if (m_openFiles.contains(path)) {
        line->error(QStringLiteral("%1 includes itself, by way of %2")
                        .arg(quoted(path), m_openFiles.join(QStringLiteral(", "))));
        return;
    }
    if (m_openFiles.size() >= maxDepth) {
        line->error(QStringLiteral("files include one another more than %1 deep").arg(maxDepth));
        return;
    }
    QString reason;
    const std::optional<QByteArray> text = m_readInclude(path, &reason);
    if (!text) {
        line->error(QStringLiteral("cannot include %1: %2").arg(quoted(path), reason));
        return;
    }
    readFile(*text, path);
}

void ScenarioReader::readStart(ScenarioLine *line)
{
    const ScenarioWord *word = line->take(QStringLiteral("a time like 2026-01-02T10:00:00Z"));
    if (!word)
        return;
    if (m_hasEffect) {
        line->error(1, QStringLiteral("'start' comes before the first step that does something"));
        return;
    }
    const QDateTime time = word->text.size() <= 32
        ? QDateTime::fromString(word->text, Qt::ISODateWithMs)
        : QDateTime();
    // Without a time zone it would be another moment on each machine.
    if (!time.isValid() || time.timeSpec() == Qt::LocalTime) {
        line->error(QStringLiteral("%1 is no time like 2026-01-02T10:00:00Z, in UTC")
                        .arg(quoted(word->text)));
        return;
    }
    m_wallClock = time.toMSecsSinceEpoch();
    if (m_wallClock < 0 || m_wallClock > maxWallClock)
        line->error(QStringLiteral("the wall clock shows 1970 to 2104, which records can carry"));
    m_result.scenario.start = m_wallClock;
}

void ScenarioReader::readWait(ScenarioLine *line)
{
    if (line->takeKeyword(QLatin1String("end"))) {
        add(*line, Step::WaitForEnd{});
        return;
    }
    const std::optional<qint64> duration = line->takeDuration();
    if (!duration)
        return;
    addTime(line, *duration);
    add(*line, Step::Wait{*duration});
}

void ScenarioReader::readClock(ScenarioLine *line)
{
    const ScenarioWord *word = line->take(QStringLiteral("a step of the clock like +1h or -5s"));
    if (!word)
        return;
    const std::optional<qint64> delta = signedMilliseconds(word->text);
    if (!delta || *delta > maxClockStep || *delta < -maxClockStep) {
        line->error(QStringLiteral("%1 is no step of the clock; write one like +1h or -5s, of at "
                                   "most 10 years")
                        .arg(quoted(word->text)));
        return;
    }
    m_wallClock += *delta;
    if (m_wallClock < 0 || m_wallClock > maxWallClock) {
        line->error(QStringLiteral("the wall clock shows 1970 to 2104, which records can carry"));
        return;
    }
    add(*line, Step::StepClock{*delta});
}

void ScenarioReader::readSelect(ScenarioLine *line)
{
    if (const ScenarioWord *word = line->take(QStringLiteral("the identifier")))
        add(*line, Step::Select{word->text});
}

void ScenarioReader::readInputDirectory(ScenarioLine *line)
{
    const ScenarioWord *word = line->take(QStringLiteral("'remove' or 'create'"));
    if (!word)
        return;
    const bool isCreate = word->text == QLatin1String("create");
    if (!isCreate && word->text != QLatin1String("remove")) {
        line->unknown(word->column, QStringLiteral("word"), word->text,
                      {QStringLiteral("create"), QStringLiteral("remove")});
        return;
    }
    if (isCreate == m_directoryExists) {
        line->error(
            QStringLiteral("/dev/input %1")
                .arg(isCreate ? QStringLiteral("is there") : QStringLiteral("is not there")));
        return;
    }
    m_directoryExists = isCreate;
    add(*line, Step::InputDirectory{isCreate});
}

void ScenarioReader::readPlay(ScenarioLine *line)
{
    const ScenarioWord *name = line->take(QStringLiteral("the recording's name in quotes"));
    if (!name)
        return;
    Step::Play play;
    play.file = pathFrom(line->file(), name->text);
    if (line->takeKeyword(QLatin1String("on"))) {
        const ScenarioWord *label = line->take(QStringLiteral("the device that it is played on"));
        if (!label)
            return;
        play.device = deviceNamed(label->text);
        if (play.device < 0) {
            line->unknown(label->column, QStringLiteral("device"), label->text, labels());
            return;
        }
        if (!m_states[play.device].isPlugged) {
            line->error(QStringLiteral("%1 is not plugged in").arg(label->text));
            return;
        }
    }
    add(*line, play);
}

void ScenarioReader::readIgnore(ScenarioLine *line)
{
    if (line->takeKeyword(QLatin1String("events")))
        add(*line, Step::IgnoreEvents{});
    else
        line->error(line->peek() ? line->peek()->column : 1,
                    QStringLiteral("the step is 'ignore events'"));
}

} // namespace Vorn::Workbench
