#include "OutputWatch.h"

#include "Output.h"

#include <QCoreApplication>
#include <QTest>

#include <gmock/gmock.h>

#include <unistd.h>

#include <cstdlib>

using namespace Vorn::Workbench;

TEST(OutputWatchDeathTest, NoticesThatTheReaderHasGoneWithoutPrinting)
{
    EXPECT_EXIT(
        {
            int ends[2] = {};
            const bool isOpen = pipe(ends) == 0;
            dup2(ends[1], STDOUT_FILENO);
            int calls = 0;
            const OutputWatch watch([&] { ++calls; });
            QCoreApplication::processEvents();
            const bool isEarly = calls > 0 || isOutputLost();
            close(ends[0]);
            const bool isNoticed = QTest::qWaitFor([&] { return calls == 1; });
            const bool isLost = !flush(stdout);
            printLine(stderr, outputError());
            std::_Exit(isOpen && !isEarly && isNoticed && isLost ? 3 : 0);
        },
        testing::ExitedWithCode(3), "^cannot write to the standard output: Broken pipe\n$");
}
