#ifndef VORN_WORKBENCH_TIMELINESVG_H
#define VORN_WORKBENCH_TIMELINESVG_H

#include <QByteArray>
#include <QString>
#include <QXmlStreamWriter>

namespace Vorn::Workbench {

/// Tells pictures of this program from those that people made.
constexpr char pictureComment[] = " drawn by vorn-input ";

/// Writes a picture (SVG). Elements have classes, to which timelineStyle() gives their colours. Any
/// text is allowed: characters that XML cannot represent are replaced.
class TimelineSvg
{
public:
    enum class Anchor { Start, Middle, End };

    /// @param title,description for people who cannot see the picture
    TimelineSvg(double width, double height, const QString &title, const QString &description);

    /// @param title shown while the pointer is on the element; empty: none
    void rectangle(double x, double y, double width, double height, const char *cssClass,
                   const QString &title = QString());
    void line(double x1, double y1, double x2, double y2, const char *cssClass,
              const QString &title = QString());
    /// @param path as in the attribute "d", relative to (x, y)
    void shape(double x, double y, const char *path, const char *cssClass,
               const QString &title = QString());
    void text(double x, double y, const QString &text, const char *cssClass,
              Anchor anchor = Anchor::Start, const QString &title = QString());

    /// Completes the picture; nothing can be added afterwards.
    QByteArray finished();

    /// At most @p length characters, the last of which is "…" if the text was cut.
    static QString shortened(const QString &text, int length);

private:
    void start(const char *element, const char *cssClass);
    void end(const QString &title);
    void writeTitle(const QString &title);
    void attribute(const char *name, double value);

    QByteArray m_svg;
    QXmlStreamWriter m_writer;
};

} // namespace Vorn::Workbench

#endif
