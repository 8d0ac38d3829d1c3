#include "TimelineSvg.h"

namespace Vorn::Workbench {

namespace {

/// Plain class selectors, with the dark colours repeating the rules: programs other than browsers
/// know neither custom properties nor media queries, and show the light ones.
const char *const styleSheet = R"(
text { font-family: system-ui, "Segoe UI", "Noto Sans", "Liberation Sans", Arial, sans-serif; font-size: 11px; fill: #1f2328 }
text.title { font-size: 16px; font-weight: 600 }
text.lane { font-size: 12px; font-weight: 600 }
text.muted { fill: #59636e }
text.tick { fill: #59636e }
text.event, text.tick { stroke: #ffffff; stroke-width: 3px; stroke-linejoin: round; paint-order: stroke }
text.failure-label { fill: #b3121f; font-weight: 600 }
text.identifier-label { fill: #0a4a8f }
.paper { fill: #ffffff }
.stripe { fill: #f4f6f8 }
.grid { stroke: #d5dbe1 }
.axis { stroke: #8a939d }
.bar { fill: #5b9bdf }
.bar-withdrawn { fill: #5b9bdf; fill-opacity: 0.35 }
.bar-switch { fill: #2f9e8f }
.bar-chord { fill: #8457d9 }
.bar-chord-unmapped { fill: none; stroke: #8457d9; stroke-dasharray: 3 2 }
.repeat { stroke: #ffffff; stroke-width: 1.5 }
.open { fill: #ffffff; fill-opacity: 0.75 }
.timer { stroke: #bc4c00; stroke-opacity: 0.8 }
.due { stroke: #bc4c00; stroke-width: 1.5; stroke-dasharray: 3 2; fill: #bc4c00 }
.flag { fill: #bc4c00 }
.late { fill: #fbc38b }
.withdrawn { stroke: #1f2328; stroke-width: 2.5; fill: none }
.dropped { stroke: #cf222e; stroke-width: 2; fill: #ffffff }
.leader { stroke: #8a939d }
.leader-long-press { stroke: #bc4c00; stroke-width: 1.5 }
.press { fill: #1a7f37 }
.release { fill: #57606a }
.long-press { fill: #bc4c00 }
.on { fill: #16776a }
.off { fill: #ffffff; stroke: #16776a; stroke-width: 1.5 }
.link { stroke: #8457d9; stroke-width: 2; fill: none }
.link-end { fill: #ffffff; stroke: #8457d9; stroke-width: 2 }
.identifier { fill: #d8e8fa; stroke: #9cc3ee }
.device { stroke: #59636e; stroke-dasharray: 5 4 }
.remark { stroke: #9a6700; stroke-dasharray: 1 3 }
.failure { stroke: #cf222e; stroke-width: 1.5 }
.break { fill: #ffffff; fill-opacity: 0.85 }
.break-edge { stroke: #8a939d; stroke-dasharray: 2 3 }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3 }
text.muted { fill: #9aa4af }
text.tick { fill: #9aa4af }
text.event, text.tick { stroke: #0d1117 }
text.failure-label { fill: #ff8b83 }
text.identifier-label { fill: #a9d1ff }
.paper { fill: #0d1117 }
.stripe { fill: #141a22 }
.grid { stroke: #2a313a }
.axis { stroke: #6b7580 }
.bar { fill: #4a8fe0 }
.bar-withdrawn { fill: #4a8fe0 }
.bar-switch { fill: #39b3a2 }
.bar-chord { fill: #9b74ef }
.bar-chord-unmapped { fill: none; stroke: #9b74ef }
.repeat { stroke: #0d1117 }
.open { fill: #0d1117 }
.timer { stroke: #f0883e }
.due { stroke: #f0883e; fill: #f0883e }
.flag { fill: #f0883e }
.late { fill: #8a4b1c }
.withdrawn { stroke: #e6edf3 }
.dropped { stroke: #f85149; fill: #0d1117 }
.leader { stroke: #6b7580 }
.leader-long-press { stroke: #f0883e }
.press { fill: #3fb950 }
.release { fill: #9aa4af }
.long-press { fill: #f0883e }
.on { fill: #39b3a2 }
.off { fill: #0d1117; stroke: #39b3a2 }
.link { stroke: #9b74ef }
.link-end { fill: #0d1117; stroke: #9b74ef }
.identifier { fill: #12335c; stroke: #2c5c99 }
.device { stroke: #9aa4af }
.remark { stroke: #d29922 }
.failure { stroke: #f85149 }
.break { fill: #0d1117 }
.break-edge { stroke: #6b7580 }
}
)";

/// With U+FFFD for what an XML document must not contain.
QString allowed(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool isPair =
            character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair) {
            result += character;
            result += text.at(++i);
            continue;
        }
        const bool isAllowed =
            character.unicode() >= 0x20 && character.unicode() < 0xfffe && !character.isSurrogate();
        result += isAllowed ? character : QChar(QChar::ReplacementCharacter);
    }
    return result;
}

/// Tenths of a unit; finer is not seen.
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
    m_writer.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
    m_writer.writeStartElement(QStringLiteral("http://www.w3.org/2000/svg"), QStringLiteral("svg"));
    attribute("width", width);
    attribute("height", height);
    m_writer.writeAttribute(QStringLiteral("viewBox"),
                            QStringLiteral("0 0 %1 %2").arg(number(width), number(height)));
    m_writer.writeAttribute(QStringLiteral("role"), QStringLiteral("img"));
    m_writer.writeTextElement(QStringLiteral("title"), allowed(title));
    m_writer.writeTextElement(QStringLiteral("desc"), allowed(description));
    m_writer.writeTextElement(QStringLiteral("style"), QString::fromLatin1(styleSheet));
    rectangle(0, 0, width, height, QStringLiteral("paper"));
}

void TimelineSvg::rectangle(double x, double y, double width, double height,
                            const QString &cssClass, const QString &title)
{
    start("rect", cssClass);
    attribute("x", x);
    attribute("y", y);
    attribute("width", width);
    attribute("height", height);
    end(title);
}

void TimelineSvg::line(double x1, double y1, double x2, double y2, const QString &cssClass,
                       const QString &title)
{
    start("line", cssClass);
    attribute("x1", x1);
    attribute("y1", y1);
    attribute("x2", x2);
    attribute("y2", y2);
    end(title);
}

void TimelineSvg::shape(double x, double y, const QString &path, const QString &cssClass,
                        const QString &title)
{
    start("path", cssClass);
    m_writer.writeAttribute(QStringLiteral("transform"),
                            QStringLiteral("translate(%1 %2)").arg(number(x), number(y)));
    m_writer.writeAttribute(QStringLiteral("d"), path);
    end(title);
}

void TimelineSvg::text(double x, double y, const QString &text, const QString &cssClass,
                       Anchor anchor, const QString &title)
{
    start("text", cssClass);
    attribute("x", x);
    attribute("y", y);
    if (anchor != Anchor::Start)
        m_writer.writeAttribute(QStringLiteral("text-anchor"),
                                QString::fromLatin1(anchor == Anchor::Middle ? "middle" : "end"));
    // A title's white space would become part of the text if it came after it.
    if (!title.isEmpty())
        m_writer.writeTextElement(QStringLiteral("title"), allowed(title));
    m_writer.writeCharacters(allowed(text));
    m_writer.writeEndElement();
}

QByteArray TimelineSvg::finished()
{
    m_writer.writeEndDocument();
    return m_svg;
}

QString TimelineSvg::shortened(const QString &text, int length)
{
    return text.size() <= length ? text : text.left(length - 1) + QChar(0x2026);
}

void TimelineSvg::start(const char *element, const QString &cssClass)
{
    m_writer.writeStartElement(QString::fromLatin1(element));
    m_writer.writeAttribute(QStringLiteral("class"), cssClass);
}

void TimelineSvg::end(const QString &title)
{
    if (!title.isEmpty())
        m_writer.writeTextElement(QStringLiteral("title"), allowed(title));
    m_writer.writeEndElement();
}

void TimelineSvg::attribute(const char *name, double value)
{
    m_writer.writeAttribute(QString::fromLatin1(name), number(value));
}

} // namespace Vorn::Workbench
