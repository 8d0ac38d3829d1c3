#include "RecordingFolder.h"

#include "TextFile.h"
#include "WriteAll.h"

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Vorn::Workbench {

namespace {

/// Sets who may read files that are made while it is alive.
class NewFiles
{
public:
    explicit NewFiles(RecordingFolder::Readers readers)
        : m_saved(umask(0))
    {
        umask(readers == RecordingFolder::Readers::Owner ? m_saved | 077 : m_saved);
    }
    ~NewFiles() { umask(m_saved); }
    NewFiles(const NewFiles &) = delete;
    NewFiles &operator=(const NewFiles &) = delete;

private:
    const mode_t m_saved;
};

} // namespace

RecordingFolder::RecordingFolder(const QString &path, Readers readers)
    : m_path(path)
    , m_readers(readers)
{ }

QString RecordingFolder::filePath(const QString &name) const
{
    return QDir(m_path).filePath(name);
}

QString RecordingFolder::open()
{
    m_error.clear();
    m_files.clear();
    const QDir folder(m_path);
    const QStringList present =
        folder.entryList({QStringLiteral("session.*"), QStringLiteral("event*.evemu"),
                          QStringLiteral("event*.ioctl")},
                         QDir::Files | QDir::System);
    // A node file that an earlier recording left would be replayed together with this one.
    if (!present.isEmpty()) {
        return QStringLiteral("'%1' already holds a recording ('%2'); choose another folder, or "
                              "remove it")
            .arg(m_path, present.first());
    }
    m_isNew = !folder.exists();
    const NewFiles newFiles(m_readers);
    errno = 0;
    if (!QDir().mkpath(m_path)) {
        return QStringLiteral("cannot create the folder '%1': %2")
            .arg(m_path, qt_error_string(errno != 0 ? errno : ENOTDIR));
    }
    return {};
}

std::unique_ptr<QFile> RecordingFolder::create(const QString &name, const QByteArray &start)
{
    const NewFiles newFiles(m_readers);
    auto file = std::make_unique<QFile>(filePath(name));
    if (!file->open(QIODevice::WriteOnly | QIODevice::Append)) {
        fail(file->fileName(), file->errorString());
        return nullptr;
    }
    m_files += name;
    append(file.get(), start);
    return file;
}

void RecordingFolder::append(QFile *file, const QByteArray &text)
{
    if (!file)
        return;
    const qint64 size = file->size();
    // Past Qt's buffer: what went wrong in a session may end the process.
    const int error = writeAll(file->handle(), text);
    if (error == 0)
        return;
    // Half a line would make a file unreadable that is good up to there; a device has no size.
    const int truncated = ftruncate(file->handle(), static_cast<off_t>(size));
    Q_UNUSED(truncated)
    fail(file->fileName(), qt_error_string(error));
}

void RecordingFolder::replace(const QString &name, const QByteArray &content)
{
    const NewFiles newFiles(m_readers);
    const QString error = writeFile(filePath(name), content);
    if (!error.isEmpty())
        keep(error);
    else if (!m_files.contains(name))
        m_files += name;
}

void RecordingFolder::makeExecutable(const QString &name) const
{
    const QString path = filePath(name);
    QFileDevice::Permissions permissions = QFile::permissions(path) | QFileDevice::ExeOwner;
    if (m_readers == Readers::AsUsual)
        permissions |= QFileDevice::ExeGroup | QFileDevice::ExeOther;
    QFile::setPermissions(path, permissions);
}

void RecordingFolder::discard()
{
    for (const QString &name : qAsConst(m_files))
        QFile::remove(filePath(name));
    m_files.clear();
    if (m_isNew)
        QDir().rmdir(m_path);
}

void RecordingFolder::fail(const QString &file, const QString &reason)
{
    keep(QStringLiteral("cannot write '%1': %2").arg(file, reason));
}

void RecordingFolder::keep(const QString &error)
{
    if (m_error.isEmpty())
        m_error = error;
}

} // namespace Vorn::Workbench
