#include "RecordingFolder.h"

#include "TextFile.h"

#include <QDir>

#include <utility>

namespace Vorn::Workbench {

RecordingFolder::RecordingFolder(const QString &path)
    : m_path(path)
{ }

QString RecordingFolder::filePath(const QString &name) const
{
    return QDir(m_path).filePath(name);
}

QString RecordingFolder::open()
{
    m_error.clear();
    const QDir folder(m_path);
    const QStringList present =
        folder.entryList({QStringLiteral("session.*"), QStringLiteral("event*.evemu"),
                          QStringLiteral("event*.ioctl")},
                         QDir::Files | QDir::Hidden | QDir::System);
    // A node file that an earlier recording left would be replayed together with this one.
    if (!present.isEmpty()) {
        return QStringLiteral("'%1' already holds a recording ('%2'); choose another folder, or "
                              "remove it")
            .arg(m_path, present.first());
    }
    if (!QDir().mkpath(m_path))
        return QStringLiteral("cannot create the folder '%1'").arg(m_path);
    return {};
}

std::unique_ptr<QFile> RecordingFolder::create(const QString &name, const QByteArray &start)
{
    auto file = std::make_unique<QFile>(filePath(name));
    if (!file->open(QIODevice::WriteOnly | QIODevice::Append)) {
        fail(QStringLiteral("cannot write '%1': %2").arg(file->fileName(), file->errorString()));
        return nullptr;
    }
    append(file.get(), start);
    return file;
}

void RecordingFolder::append(QFile *file, const QByteArray &text)
{
    if (!file)
        return;
    // What went wrong in a session may end the process: flushed, its last moments are on disk.
    if (file->write(text) != text.size() || !file->flush())
        fail(QStringLiteral("cannot write '%1': %2").arg(file->fileName(), file->errorString()));
}

void RecordingFolder::replace(const QString &name, const QByteArray &content)
{
    const QString error = writeFile(filePath(name), content);
    if (!error.isEmpty())
        fail(error);
}

void RecordingFolder::makeExecutable(const QString &name) const
{
    const QString path = filePath(name);
    QFile::setPermissions(path,
                          QFile::permissions(path) | QFileDevice::ExeOwner | QFileDevice::ExeGroup
                              | QFileDevice::ExeOther);
}

QString RecordingFolder::takeError()
{
    return std::exchange(m_error, QString());
}

void RecordingFolder::fail(const QString &error)
{
    if (m_error.isEmpty())
        m_error = error;
}

} // namespace Vorn::Workbench
