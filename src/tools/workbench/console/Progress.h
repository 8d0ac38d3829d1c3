#ifndef VORN_WORKBENCH_PROGRESS_H
#define VORN_WORKBENCH_PROGRESS_H

#include <QString>
#include <QtGlobal>

namespace Vorn::Workbench {

/// A line on a terminal that is overwritten in place to show how far long work is, on stderr; does
/// nothing if that is no terminal. Goes with the object.
class Progress
{
public:
    Progress();
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Whether show() would do anything: there is a terminal, and so much has been done since the
    /// start or the last time that a person would like to know.
    bool isDue() const;
    /// Shows @p text, if that is due.
    void show(const QString &text);
    /// Removes the line, for other output.
    void clear();

private:
    const bool m_isShown;
    qint64 m_lastTime;
    bool m_isDrawn = false;
};

} // namespace Vorn::Workbench

#endif
