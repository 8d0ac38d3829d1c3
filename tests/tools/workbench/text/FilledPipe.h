#ifndef FILLEDPIPE_H
#define FILLEDPIPE_H

#include <QByteArray>
#include <QString>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

/// A pipe with a name, from which a text can be read once, and then its end.
class FilledPipe
{
public:
    explicit FilledPipe(const QByteArray &text)
    {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        EXPECT_EQ(write(ends[1], text.constData(), static_cast<std::size_t>(text.size())),
                  text.size());
        close(ends[1]);
        m_end = ends[0];
    }
    ~FilledPipe() { close(m_end); }
    FilledPipe(const FilledPipe &) = delete;
    FilledPipe &operator=(const FilledPipe &) = delete;

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_end); }

private:
    int m_end = -1;
};

#endif
