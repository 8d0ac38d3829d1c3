#ifndef PICTURE_H
#define PICTURE_H

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

#include <string>
#include <vector>

namespace Vorn::Test {

/// An element of a picture.
struct Element
{
    QString name;
    QString cssClass;
    QMap<QString, QString> attributes;
    QString text; ///< without the title
    QString title;

    double number(const char *attribute) const { return attributes.value(attribute).toDouble(); }
};

/// An SVG, parsed. One that is not well-formed fails the test.
class Picture
{
public:
    explicit Picture(const QByteArray &svg);

    QVector<Element> ofClass(const QString &cssClass) const;
    std::vector<std::string> texts(const QString &cssClass) const;
    std::vector<std::string> titles(const QString &cssClass) const;

    /// Everything that is drawn, from back to front: a line for the class, place and text of each
    /// element, and an indented one for its title.
    std::string drawing() const;

    const QVector<Element> &elements() const { return m_elements; }
    const Element &root() const { return m_elements.first(); }

private:
    void addText(const QVector<int> &open, const QString &text);

    QVector<Element> m_elements;
};

} // namespace Vorn::Test

#endif
