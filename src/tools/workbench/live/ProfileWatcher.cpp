#include "ProfileWatcher.h"

#include "Diagnostic.h"
#include "TextFile.h"
#include "vorn.h"

#include <QFileInfo>

#include <utility>

namespace Vorn::Workbench {

namespace {

// Editors save a file in several steps, and each would be read as a broken profile.
constexpr int settleMs = 100;
// If its folder went with it, nobody says when it is back.
constexpr int retryMs = 500;

} // namespace

ProfileWatcher::ProfileWatcher(const QString &path, OnChange onChange, OnPresence onPresence)
    : m_path(path)
    , m_onChange(std::move(onChange))
    , m_onPresence(std::move(onPresence))
{
    Diagnostics ignored;
    m_content = readFile(m_path, maxProfileSize, &ignored, Pipes::Refused).value_or(QByteArray());
    m_settled.setSingleShot(true);
    Vorn::connect(&m_settled, &QTimer::timeout, this, &ProfileWatcher::lookAgain);
    const auto restart = [this] { m_settled.start(settleMs); };
    Vorn::connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, restart);
    Vorn::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, restart);
    m_watcher.addPath(m_path);
    m_watcher.addPath(QFileInfo(m_path).absolutePath());
}

void ProfileWatcher::lookAgain()
{
    // The watcher follows the old file; one that was renamed to its name is not watched yet.
    if (QFileInfo::exists(m_path))
        m_watcher.addPaths({m_path, QFileInfo(m_path).absolutePath()});
    Diagnostics unreadable;
    const auto content = readFile(m_path, maxProfileSize, &unreadable, Pipes::Refused);
    if (!content) {
        setProblem(QFileInfo::exists(m_path) ? unreadable.first().message
                                             : QStringLiteral("is gone"));
        m_settled.start(retryMs);
        return;
    }
    setProblem({});
    if (*content == m_content)
        return;
    m_content = *content;
    m_onChange(parseProfile(m_content, m_path));
}

void ProfileWatcher::setProblem(const QString &problem)
{
    if (std::exchange(m_problem, problem) != problem)
        m_onPresence(problem);
}

} // namespace Vorn::Workbench
