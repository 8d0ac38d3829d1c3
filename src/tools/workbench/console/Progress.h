#ifndef VORN_WORKBENCH_PROGRESS_H
#define VORN_WORKBENCH_PROGRESS_H

#include <QString>
#include <QtGlobal>

namespace Vorn::Workbench {

/// A line on stderr that is overwritten in place to show how far a long job has come. Does nothing
/// if stderr is not a terminal, or a simple one. The destructor removes the line.
class Progress
{
public:
    Progress();
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Whether show() would do anything: there is a terminal, and 0.1 s of processor time have been
    /// spent since the start or the last call.
    bool isDue() const;
    /// Shows @p text if isDue(), shortened to the terminal's width.
    void show(const QString &text);
    /// Removes the line to make way for other output.
    void clear();

private:
    const bool m_isShown;
    qint64 m_lastTime;
    bool m_isDrawn = false;
};

} // namespace Vorn::Workbench

#endif
