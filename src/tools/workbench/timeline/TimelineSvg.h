#ifndef VORN_WORKBENCH_TIMELINESVG_H
#define VORN_WORKBENCH_TIMELINESVG_H

#include <QByteArray>
#include <QString>
#include <QXmlStreamWriter>

namespace Vorn::Workbench {

/// Writes a picture (SVG) whose elements have classes, coloured by one style sheet for light and
/// dark surroundings. Texts may be anything: what XML cannot hold is replaced.
class TimelineSvg
{
public:
    enum class Anchor { Start, Middle, End };

    /// @param title,description for people who do not see the picture
    TimelineSvg(double width, double height, const QString &title, const QString &description);

    /// @param title is shown while the pointer is on the element
    void rectangle(double x, double y, double width, double height, const QString &cssClass,
                   const QString &title = QString());
    void line(double x1, double y1, double x2, double y2, const QString &cssClass,
              const QString &title = QString());
    /// @param path as in the attribute "d", at (x, y)
    void shape(double x, double y, const QString &path, const QString &cssClass,
               const QString &title = QString());
    void text(double x, double y, const QString &text, const QString &cssClass,
              Anchor anchor = Anchor::Start, const QString &title = QString());

    /// The picture, after which nothing can be added.
    QByteArray finished();

    /// At most @p length characters, the last being "…" where more were left out.
    static QString shortened(const QString &text, int length);

private:
    void start(const char *element, const QString &cssClass);
    void end(const QString &title);
    void attribute(const char *name, double value);

    QByteArray m_svg;
    QXmlStreamWriter m_writer;
};

} // namespace Vorn::Workbench

#endif
