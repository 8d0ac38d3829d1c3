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
