#ifndef PIPE_H
#define PIPE_H

#include <gtest/gtest.h>

#include <unistd.h>

/// Two connected descriptors.
class Pipe
{
public:
    Pipe() { EXPECT_EQ(::pipe(m_ends), 0); }
    ~Pipe()
    {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }

    int reader() const { return m_ends[0]; }
    void write() const { EXPECT_EQ(::write(m_ends[1], "x", 1), 1); }
    void read() const
    {
        char byte;
        EXPECT_EQ(::read(m_ends[0], &byte, 1), 1);
    }

private:
    int m_ends[2];
};

#endif
