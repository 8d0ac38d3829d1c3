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

} // namespace

ProfileWatcher::ProfileWatcher(const QString &path, OnChange onChange)
    : m_path(path)
    , m_onChange(std::move(onChange))
{
    Diagnostics ignored;
    m_content = readFile(m_path, maxProfileSize, &ignored, Pipes::Refused).value_or(QByteArray());
    m_settled.setSingleShot(true);
    m_settled.setInterval(settleMs);
    Vorn::connect(&m_settled, &QTimer::timeout, this, &ProfileWatcher::lookAgain);
    const auto restart = [this] { m_settled.start(); };
    Vorn::connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, restart);
    Vorn::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, restart);
    m_watcher.addPath(m_path);
    m_watcher.addPath(QFileInfo(m_path).absolutePath());
}

void ProfileWatcher::lookAgain()
{
    // The watcher follows the old file; one that was renamed to its name is not watched yet.
    if (QFileInfo::exists(m_path))
        m_watcher.addPath(m_path);
    Diagnostics unreadable;
    const auto content = readFile(m_path, maxProfileSize, &unreadable, Pipes::Refused);
    if (!content || *content == m_content)
        return;
    m_content = *content;
    m_onChange(parseProfile(m_content, m_path));
}

} // namespace Vorn::Workbench
