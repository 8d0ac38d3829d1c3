#include "Picture.h"

#include <QXmlStreamReader>

#include <gmock/gmock.h>

namespace Vorn::Test {

Picture::Picture(const QByteArray &svg)
{
    QXmlStreamReader reader(svg);
    QVector<int> open;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            Element element;
            element.name = reader.name().toString();
            for (const QXmlStreamAttribute &attribute : reader.attributes())
                element.attributes.insert(attribute.name().toString(),
                                          attribute.value().toString());
            element.cssClass = element.attributes.value("class");
            // The title of a text is that of the group around it.
            if (element.name == "text" && m_elements.at(open.last()).name == "g")
                element.title = m_elements.at(open.last()).title;
            open.append(static_cast<int>(m_elements.size()));
            m_elements.append(element);
        } else if (reader.isEndElement()) {
            open.removeLast();
        } else if (reader.isCharacters() && !open.isEmpty()) {
            addText(open, reader.text().toString());
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    EXPECT_THAT(m_elements, testing::Not(testing::IsEmpty()));
}

QVector<Element> Picture::ofClass(const QString &cssClass) const
{
    QVector<Element> found;
    for (const Element &element : m_elements) {
        if (element.cssClass == cssClass)
            found.append(element);
    }
    return found;
}

std::vector<std::string> Picture::texts(const QString &cssClass) const
{
    std::vector<std::string> texts;
    for (const Element &element : ofClass(cssClass)) {
        if (element.name == "text")
            texts.push_back(element.text.trimmed().toStdString());
    }
    return texts;
}

std::vector<std::string> Picture::titles(const QString &cssClass) const
{
    std::vector<std::string> titles;
    for (const Element &element : ofClass(cssClass))
        titles.push_back(element.title.toStdString());
    return titles;
}

std::string Picture::drawing() const
{
    QString lines;
    for (const Element &element : m_elements) {
        if (element.cssClass.isEmpty())
            continue;
        lines += element.cssClass;
        for (const char *name :
             {"x", "y", "x1", "y1", "x2", "y2", "width", "height", "transform", "text-anchor"})
        {
            if (element.attributes.contains(name))
                lines += QLatin1Char(' ') + element.attributes.value(name);
        }
        if (element.name == "text")
            lines += QStringLiteral(" '%1'").arg(element.text.trimmed());
        lines += QLatin1Char('\n');
        if (!element.title.isEmpty())
            lines += QStringLiteral("  %1\n").arg(element.title);
    }
    return lines.toStdString();
}

void Picture::addText(const QVector<int> &open, const QString &text)
{
    Element &element = m_elements[open.last()];
    if (element.name == "title" && open.size() > 1)
        m_elements[open.at(open.size() - 2)].title += text;
    else
        element.text += text;
}

} // namespace Vorn::Test
