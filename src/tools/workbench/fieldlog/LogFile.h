#ifndef VORN_WORKBENCH_LOGFILE_H
#define VORN_WORKBENCH_LOGFILE_H

#include "InputFile.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <string>
#include <string_view>

struct z_stream_s;

namespace Vorn::Workbench {

/// The lines of a file, of a pipe, or of the standard input ("-"), whichever of them is compressed
/// with gzip or not. It holds a part of the file in memory, however long file and lines are.
class LogFile
{
public:
    /// What is longer is cut: no log of the library has such lines.
    static constexpr std::size_t maxLineSize = std::size_t{256} * 1024;

    LogFile();
    ~LogFile();
    LogFile(const LogFile &) = delete;
    LogFile &operator=(const LogFile &) = delete;

    /// @return why it cannot be read; empty if it can be
    QString open(const QString &path);

    /// Goes to the next line; false at the end, and where the file cannot be read any further.
    bool next();

    /// Without its end, until next() is called. Zeros in front, which a file system may leave
    /// behind when the power fails, are no part of it.
    std::string_view line() const { return m_line; }
    qint64 number() const { return m_number; } ///< from 1
    bool isCut() const { return m_isCut; } ///< whether the line was too long
    qint64 bytes() const { return m_bytes; } ///< read so far, unpacked

    /// Why the file was not read to its end; empty if it was.
    const QString &error() const { return m_error; }

private:
    struct EndStream
    {
        void operator()(z_stream_s *stream) const;
    };

    bool fill();
    qint64 readPlain(char *data, qint64 size);
    qint64 unpack(char *data, qint64 size);
    bool readPacked();
    void startUnpacking();
    void keep(std::string_view part);
    void finishLine(std::string_view line);

    InputFile m_file;
    std::unique_ptr<z_stream_s, EndStream> m_stream;
    QByteArray m_packed;
    bool m_isStarted = false;
    bool m_isBetweenMembers = false;

    QByteArray m_buffer;
    std::string_view m_rest; ///< of the buffer
    std::string m_kept; ///< the front of a line that began in an earlier buffer
    bool m_isTooLong = false;

    std::string_view m_line;
    qint64 m_number = 0;
    bool m_isCut = false;
    qint64 m_bytes = 0;
    QString m_error;
};

} // namespace Vorn::Workbench

#endif
