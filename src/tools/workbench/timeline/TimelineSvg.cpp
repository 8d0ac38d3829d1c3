#include "TimelineSvg.h"

#include "Quoting.h"
#include "TimelineStyle.h"

#include <QStringList>

namespace Vorn::Workbench {

namespace {

/// To a tenth of a pixel, which is as fine as anyone can see, and keeps the file small.
QString number(double value)
{
    QString text = QString::number(value, 'f', 1);
    if (text.endsWith(QLatin1String(".0")))
        text.chop(2);
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

} // namespace

TimelineSvg::TimelineSvg(double width, double height, const QString &title,
                         const QString &description)
    : m_writer(&m_svg)
{
    m_writer.setAutoFormatting(true);
    m_writer.setAutoFormattingIndent(1);
    m_writer.writeStartDocument();
    m_writer.writeComment(QString::fromLatin1(pictureComment));
    m_writer.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
    m_writer.writeStartElement(QStringLiteral("http://www.w3.org/2000/svg"), QStringLiteral("svg"));
    attribute("width", width);
    attribute("height", height);
    m_writer.writeAttribute(QStringLiteral("viewBox"),
                            QStringLiteral("0 0 %1 %2").arg(number(width), number(height)));
    m_writer.writeAttribute(QStringLiteral("role"), QStringLiteral("img"));
    m_writer.writeTextElement(QStringLiteral("title"), printable(title));
    m_writer.writeTextElement(QStringLiteral("desc"), printable(description));
    m_writer.writeTextElement(QStringLiteral("style"), timelineStyle());
    rectangle(0, 0, width, height, "paper");
}

void TimelineSvg::rectangle(double x, double y, double width, double height, const char *cssClass,
                            const QString &title)
{
    start("rect", cssClass);
    attribute("x", x);
    attribute("y", y);
    attribute("width", width);
    attribute("height", height);
    end(title);
}

void TimelineSvg::line(double x1, double y1, double x2, double y2, const char *cssClass,
                       const QString &title)
{
    start("line", cssClass);
    attribute("x1", x1);
    attribute("y1", y1);
    attribute("x2", x2);
    attribute("y2", y2);
    end(title);
}

void TimelineSvg::shape(double x, double y, const char *path, const char *cssClass,
                        const QString &title)
{
    start("path", cssClass);
    m_writer.writeAttribute(QStringLiteral("transform"),
                            QStringLiteral("translate(%1 %2)").arg(number(x), number(y)));
    m_writer.writeAttribute(QStringLiteral("d"), QString::fromLatin1(path));
    end(title);
}

void TimelineSvg::text(double x, double y, const QString &text, const char *cssClass, Anchor anchor,
                       const QString &title)
{
    // Some viewers show a title within a text as part of it, so it is in a group around it.
    if (!title.isEmpty()) {
        m_writer.writeStartElement(QStringLiteral("g"));
        writeTitle(title);
    }
    start("text", cssClass);
    attribute("x", x);
    attribute("y", y);
    if (anchor != Anchor::Start)
        m_writer.writeAttribute(QStringLiteral("text-anchor"),
                                QString::fromLatin1(anchor == Anchor::Middle ? "middle" : "end"));
    m_writer.writeCharacters(printable(text));
    m_writer.writeEndElement();
    if (!title.isEmpty())
        m_writer.writeEndElement();
}

QByteArray TimelineSvg::finished()
{
    m_writer.writeEndDocument();
    return m_svg;
}

QString TimelineSvg::shortened(const QString &text, int length)
{
    if (text.size() <= length)
        return text;
    // Half of a character beyond the basic plane is none.
    const bool isSplit = length > 1 && text.at(length - 2).isHighSurrogate();
    return text.left(isSplit ? length - 2 : length - 1) + QChar(0x2026);
}

void TimelineSvg::start(const char *element, const char *cssClass)
{
    m_writer.writeStartElement(QString::fromLatin1(element));
    m_writer.writeAttribute(QStringLiteral("class"), QString::fromLatin1(cssClass));
}

void TimelineSvg::end(const QString &title)
{
    if (!title.isEmpty())
        writeTitle(title);
    m_writer.writeEndElement();
}

void TimelineSvg::writeTitle(const QString &title)
{
    // Titles of things that coincide are joined by line feeds, which tool tips show as such.
    QStringList lines = title.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = printable(line);
    m_writer.writeTextElement(QStringLiteral("title"), lines.join(QLatin1Char('\n')));
}

void TimelineSvg::attribute(const char *name, double value)
{
    m_writer.writeAttribute(QString::fromLatin1(name), number(value));
}

} // namespace Vorn::Workbench
