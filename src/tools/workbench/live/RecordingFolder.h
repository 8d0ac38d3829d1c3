#ifndef VORN_WORKBENCH_RECORDINGFOLDER_H
#define VORN_WORKBENCH_RECORDINGFOLDER_H

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <memory>

namespace Vorn::Workbench {

/// The folder of a recording while it is being written. The first error is kept until it is asked
/// for.
class RecordingFolder
{
public:
    enum class Readers { AsUsual, Owner };

    /// @param readers who may read what is written; a folder that exists is left as it is
    explicit RecordingFolder(const QString &path, Readers readers = Readers::AsUsual);

    /// Makes the folder if it does not exist.
    /// @return why it cannot be used; empty if it can. One that holds a recording is refused.
    QString open();

    QString path() const { return m_path; }

    /// A file that is written bit by bit, from @p start on; null if that is not possible.
    std::unique_ptr<QFile> create(const QString &name, const QByteArray &start);

    /// Adds all of a text, or nothing of it, to a file from create(); on disk when it returns.
    /// Nothing if @p file is null.
    void append(QFile *file, const QByteArray &text);

    /// Writes a whole file in place of the previous one.
    void replace(const QString &name, const QByteArray &content);

    void makeExecutable(const QString &name) const;

    /// Removes the files that were written since open(), and the folder if that made it.
    void discard();

    /// The first error since open(); empty if there was none.
    QString error() const { return m_error; }

private:
    QString filePath(const QString &name) const;
    void fail(const QString &file, const QString &reason);
    void keep(const QString &error);

    const QString m_path;
    const Readers m_readers;
    bool m_isNew = false;
    QStringList m_files;
    QString m_error;
};

} // namespace Vorn::Workbench

#endif
