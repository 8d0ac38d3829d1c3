#ifndef VORN_WORKBENCH_RECORDINGFOLDER_H
#define VORN_WORKBENCH_RECORDINGFOLDER_H

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>

namespace Vorn::Workbench {

/// The folder of a recording while it is being written. Errors do not stop a recording: the first
/// one is kept and reported at its end.
class RecordingFolder
{
public:
    explicit RecordingFolder(const QString &path);

    /// Makes the folder if it does not exist.
    /// @return why it cannot be used; empty if it can. One that holds a recording is refused.
    QString open();

    QString path() const { return m_path; }

    /// A file that is written bit by bit, from @p start on; null if that is not possible.
    std::unique_ptr<QFile> create(const QString &name, const QByteArray &start);

    /// Adds to a file from create(), on disk when it returns; nothing if @p file is null.
    void append(QFile *file, const QByteArray &text);

    /// Writes a whole file in place of the previous one.
    void replace(const QString &name, const QByteArray &content);

    void makeExecutable(const QString &name) const;

    /// The first error since open() or the last call; empty if there was none.
    QString takeError();

private:
    QString filePath(const QString &name) const;
    void fail(const QString &error);

    const QString m_path;
    QString m_error;
};

} // namespace Vorn::Workbench

#endif
