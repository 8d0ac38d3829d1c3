#ifndef TERMINALINPUT_H
#define TERMINALINPUT_H

#include <gmock/gmock.h>

#include <pty.h>
#include <termios.h>
#include <unistd.h>

/// Replaces standard input by a new terminal while it is alive.
class TerminalInput
{
public:
    TerminalInput()
        : m_saved(dup(STDIN_FILENO))
    {
        int terminal = -1;
        EXPECT_EQ(openpty(&m_keyboard, &terminal, nullptr, nullptr, nullptr), 0);
        dup2(terminal, STDIN_FILENO);
        close(terminal);
    }
    ~TerminalInput()
    {
        dup2(m_saved, STDIN_FILENO);
        close(m_saved);
        close(m_keyboard);
    }
    TerminalInput(const TerminalInput &) = delete;
    TerminalInput &operator=(const TerminalInput &) = delete;

    void type(char key) const { EXPECT_EQ(write(m_keyboard, &key, 1), 1); }

    static bool isLineBuffered()
    {
        termios state = {};
        return tcgetattr(STDIN_FILENO, &state) == 0 && (state.c_lflag & ICANON) != 0
            && (state.c_lflag & ECHO) != 0;
    }

private:
    int m_saved;
    int m_keyboard = -1;
};

#endif
