#include "Keyboard.h"

#include "TerminalInput.h"

#include <QSocketNotifier>
#include <QTest>

#include <gmock/gmock.h>

#include <string>

using namespace Vorn::Workbench;

TEST(Keyboard, GivesSingleKeysOfATerminalAndLeavesItAsItWas)
{
    const TerminalInput terminal;
    ASSERT_TRUE(TerminalInput::isLineBuffered());
    {
        std::string keys;
        const Keyboard keyboard(STDIN_FILENO, [&](char key) { keys += key; });
        EXPECT_FALSE(TerminalInput::isLineBuffered());
        terminal.type('r');
        EXPECT_TRUE(QTest::qWaitFor([&] { return keys == "r"; }));
        terminal.type('2');
        EXPECT_TRUE(QTest::qWaitFor([&] { return keys == "r2"; }));
    }
    EXPECT_TRUE(TerminalInput::isLineBuffered());
}

TEST(Keyboard, ReadsAPipeToItsEnd)
{
    const int saved = dup(STDIN_FILENO);
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    ASSERT_EQ(write(ends[1], "\nq", 2), 2);
    close(ends[1]);
    std::string keys;
    {
        const Keyboard keyboard(STDIN_FILENO, [&](char key) { keys += key; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return keys == "\nq"; }));
        // The end of the pipe is no key, and is read once.
        const auto *notifier = keyboard.findChild<QSocketNotifier *>();
        ASSERT_NE(notifier, nullptr);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !notifier->isEnabled(); }));
    }
    EXPECT_EQ(keys, "\nq");
    dup2(saved, STDIN_FILENO);
    close(saved);
}
