#include "StandardStreams.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

using namespace Vorn::Workbench;

TEST(StandardStreamsDeathTest, ThatAreClosedAreNotThoseOfTheNextFile)
{
    EXPECT_EXIT(
        {
            close(STDIN_FILENO);
            close(STDOUT_FILENO);
            prepareStandardStreams();
            char byte = 0;
            const bool isLow = open("/dev/null", O_RDONLY) <= STDERR_FILENO;
            const bool isWritten = write(STDOUT_FILENO, &byte, 1) == 1 || errno != EBADF;
            const bool isRead = read(STDIN_FILENO, &byte, 1) >= 0 || errno != EBADF;
            std::_Exit(isLow || isWritten || isRead ? 0 : 3);
        },
        testing::ExitedWithCode(3), "");
}

TEST(StandardStreamsDeathTest, ThatWereClosedCanBeUsedForNothing)
{
    EXPECT_EXIT(
        {
            for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                close(descriptor);
            prepareStandardStreams();
            const bool isRight = (fcntl(STDIN_FILENO, F_GETFL) & O_ACCMODE) == O_WRONLY
                && (fcntl(STDOUT_FILENO, F_GETFL) & O_ACCMODE) == O_RDONLY
                && (fcntl(STDERR_FILENO, F_GETFL) & O_ACCMODE) == O_RDONLY;
            std::_Exit(isRight ? 3 : 0);
        },
        testing::ExitedWithCode(3), "");
}

TEST(StandardStreamsDeathTest, ThatAreOpenStayAsTheyAre)
{
    EXPECT_EXIT(
        {
            const int next = dup(STDIN_FILENO);
            close(next);
            errno = EBADF;
            prepareStandardStreams();
            std::_Exit(dup(STDIN_FILENO) == next ? 3 : 0);
        },
        testing::ExitedWithCode(3), "");
}

TEST(StandardStreamsDeathTest, WithoutAReaderAreAnError)
{
    EXPECT_EXIT(
        {
            prepareStandardStreams();
            int ends[2] = {};
            const bool isOpen = pipe(ends) == 0;
            close(ends[0]);
            const bool isError = write(ends[1], "x", 1) == -1 && errno == EPIPE;
            std::_Exit(isOpen && isError ? 3 : 0);
        },
        testing::ExitedWithCode(3), "");
}
