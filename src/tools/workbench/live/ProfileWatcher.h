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
/// renaming a new file to it. A missing file is waited for; the same content is not a change.
class ProfileWatcher : public QObject
{
public:
    using OnChange = std::function<void(const ParsedProfile &)>;

    /// @param onChange called with each new content, whether it has errors or not
    ProfileWatcher(const QString &path, OnChange onChange);

private:
    void lookAgain();

    const QString m_path;
    const OnChange m_onChange;
    QByteArray m_content;
    QFileSystemWatcher m_watcher;
    QTimer m_settled;
};

} // namespace Vorn::Workbench

#endif
