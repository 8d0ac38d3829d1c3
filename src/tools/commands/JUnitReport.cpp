#include "JUnitReport.h"

#include "Quoting.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace Vorn::Tools {

using namespace Workbench;

namespace {

using Outcome = FileResult::Outcome;

QString suiteName(const QString &command)
{
    return QStringLiteral("vorn-input ") + command;
}

/// What JUnit calls it; nothing for success.
const char *elementOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Passed:
    case Outcome::NothingToCheck:
        return nullptr;
    case Outcome::Failed:
    case Outcome::ProgramFailed:
        return "failure";
    case Outcome::NotRun:
        return "skipped";
    case Outcome::CannotBeRun:
    case Outcome::StepCannotBeRun:
    case Outcome::Interrupted:
        break;
    }
    return "error";
}

QString count(const QVector<FileResult> &results, const char *element)
{
    return QString::number(
        std::count_if(results.begin(), results.end(), [element](const FileResult &result) {
            const char *its = elementOf(result.outcome);
            return its && qstrcmp(its, element) == 0;
        }));
}

void attribute(QXmlStreamWriter *xml, const char *name, const QString &value)
{
    // XML has no way to write most control characters.
    xml->writeAttribute(QLatin1String(name), printable(value));
}

void writeCase(QXmlStreamWriter *xml, const FileResult &result, const QString &command)
{
    xml->writeStartElement(QStringLiteral("testcase"));
    attribute(xml, "classname", QStringLiteral("vorn-input.") + command);
    attribute(xml, "name", result.file);
    attribute(xml, "file", result.file);
    attribute(xml, "assertions", QString::number(result.met + result.failed));
    attribute(xml, "time", secondsText(result.duration));
    if (const char *element = elementOf(result.outcome)) {
        xml->writeStartElement(QLatin1String(element));
        attribute(xml, "message", result.message.isEmpty() ? summary(result) : result.message);
        QStringList lines;
        for (const QString &line : result.details)
            lines += printable(line);
        xml->writeCharacters(lines.join(QLatin1Char('\n')));
        xml->writeEndElement();
    }
    QStringList output = QStringList{summary(result)} + result.output;
    for (QString &line : output)
        line = printable(line);
    xml->writeTextElement(QStringLiteral("system-out"), output.join(QLatin1Char('\n')));
    xml->writeEndElement();
}

} // namespace

QByteArray toJUnit(const QVector<FileResult> &results, const QString &command)
{
    qint64 duration = 0;
    for (const FileResult &result : results)
        duration += result.duration;
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("testsuite"));
    attribute(&xml, "name", suiteName(command));
    attribute(&xml, "tests", QString::number(results.size()));
    attribute(&xml, "failures", count(results, "failure"));
    attribute(&xml, "errors", count(results, "error"));
    attribute(&xml, "skipped", count(results, "skipped"));
    attribute(&xml, "time", secondsText(duration));
    for (const FileResult &result : results)
        writeCase(&xml, result, command);
    xml.writeEndElement();
    xml.writeEndDocument();
    return text;
}

QByteArray junitSignature(const QString &command)
{
    return QByteArray("<testsuite name=\"") + suiteName(command).toUtf8() + '"';
}

} // namespace Vorn::Tools
