#include "Keyboard.h"

#include "Terminal.h"
#include "vorn.h"

#include <QSocketNotifier>

#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace Vorn::Workbench {

namespace {

termios savedTerminal;
bool isTerminalChanged = false;

void restoreTerminal()
{
    if (std::exchange(isTerminalChanged, false))
        tcsetattr(STDIN_FILENO, TCSANOW, &savedTerminal);
}

} // namespace

Keyboard::Keyboard(std::function<void(char)> onKey)
{
    if (isTerminal(STDIN_FILENO) && tcgetattr(STDIN_FILENO, &savedTerminal) == 0) {
        termios keys = savedTerminal;
        keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        keys.c_cc[VMIN] = 1;
        keys.c_cc[VTIME] = 0;
        // exit() runs no destructors of locals, and a shell without echo is no use to anyone.
        static const int registered = std::atexit(restoreTerminal);
        Q_UNUSED(registered)
        isTerminalChanged = tcsetattr(STDIN_FILENO, TCSANOW, &keys) == 0;
    }
    auto *notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    Vorn::connect(notifier, &QSocketNotifier::activated, this,
                  [notifier, onKey = std::move(onKey)] {
                      char key = 0;
                      // At the end of a pipe the descriptor stays readable for ever.
                      if (read(STDIN_FILENO, &key, 1) == 1)
                          onKey(key);
                      else
                          notifier->setEnabled(false);
                  });
}

Keyboard::~Keyboard()
{
    restoreTerminal();
}

} // namespace Vorn::Workbench
