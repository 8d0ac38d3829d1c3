#ifndef VORN_WORKBENCH_PROFILEWATCHER_H
#define VORN_WORKBENCH_PROFILEWATCHER_H

#include "ProfileReader.h"

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>

namespace Vorn::Workbench {

/// Reloads a profile whenever its file changes, however an editor saves it: in place, or by
/// renaming a new file to it. A file that is gone is waited for; the same content is not a change.
class ProfileWatcher : public QObject
{
public:
    using OnChange = std::function<void(const ParsedProfile &)>;
    using OnPresence = std::function<void(const QString &problem)>;

    /// @param onChange called with each new content, whether it has errors or not
    /// @param onPresence called when the file can no longer be read, with "is gone" or the reason,
    /// and with an empty text when it can be read again, before a new content
    ProfileWatcher(const QString &path, OnChange onChange, OnPresence onPresence);

private:
    void lookAgain();
    void setProblem(const QString &problem);

    const QString m_path;
    const OnChange m_onChange;
    const OnPresence m_onPresence;
    QString m_problem; ///< why it cannot be read; empty if it can be
    QByteArray m_content;
    QFileSystemWatcher m_watcher;
    QTimer m_settled;
};

} // namespace Vorn::Workbench

#endif
