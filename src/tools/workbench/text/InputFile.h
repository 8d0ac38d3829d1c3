#ifndef VORN_WORKBENCH_INPUTFILE_H
#define VORN_WORKBENCH_INPUTFILE_H

#include <QIODevice>
#include <QString>

namespace Vorn::Workbench {

/// Whether a name may be that of a pipe: only where a person gave it on the command line. A file
/// that names a pipe would be waited for by surprise.
enum class Pipes { Refused, Allowed };

/// A file or a pipe that is being read; "-" is the standard input. A signal that the process
/// handles ends the wait for a pipe with an error.
class InputFile : public QIODevice
{
public:
    ~InputFile() override;

    /// @return why it cannot be read (missing, a folder, a device); empty if it can be
    QString openForReading(const QString &path, Pipes pipes = Pipes::Allowed);

    bool isSequential() const override { return true; }
    /// 0 for a pipe.
    qint64 size() const override { return m_size; }

    /// What becomes readable at a signal, so that one that comes just before a wait ends it, too;
    /// -1 for nothing.
    static void endWaitsAt(int descriptor);

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    QString openNamed(const QString &path, Pipes pipes);

    int m_fd = -1;
    bool m_isFile = false;
    qint64 m_size = 0;
};

/// Whether a file has been opened for reading in this process, under this or any other name.
bool wasRead(const QString &path);

} // namespace Vorn::Workbench

#endif
