#ifndef LOGTEXT_H
#define LOGTEXT_H

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <zlib.h>

/// Files of logs, which go when it goes.
class LogFolder
{
public:
    QString path(const char *name) const { return m_folder.filePath(name); }

    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

private:
    QTemporaryDir m_folder;
};

/// As gzip compresses it.
inline QByteArray gzipped(const QByteArray &content)
{
    z_stream stream = {};
    constexpr int gzip = 16;
    EXPECT_EQ(deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + gzip, 8, Z_DEFAULT_STRATEGY), Z_OK);
    QByteArray result(static_cast<int>(deflateBound(&stream, static_cast<uLong>(content.size()))),
                      Qt::Uninitialized);
    QByteArray input = content;
    stream.next_in = reinterpret_cast<Bytef *>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef *>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    result.truncate(static_cast<int>(stream.total_out));
    deflateEnd(&stream);
    return result;
}

#endif
