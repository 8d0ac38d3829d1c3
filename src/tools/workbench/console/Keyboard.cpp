#include "Keyboard.h"

#include "vorn.h"

#include <QSocketNotifier>

#include <unistd.h>

#include <utility>

namespace Vorn::Workbench {

Keyboard::Keyboard(int shownOn, std::function<void(char)> onKey)
    : m_singleKeys(shownOn)
{
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

} // namespace Vorn::Workbench
