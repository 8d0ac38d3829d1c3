#ifndef VORN_WORKBENCH_KEYBOARD_H
#define VORN_WORKBENCH_KEYBOARD_H

#include "SingleKeys.h"

#include <QObject>

#include <functional>

namespace Vorn::Workbench {

/// Reports the characters of the standard input while it is alive; on a terminal single keys, see
/// SingleKeys. Only one may exist at a time.
class Keyboard : public QObject
{
public:
    /// @param shownOn descriptor on which the keys are explained
    Keyboard(int shownOn, std::function<void(char)> onKey);

private:
    const SingleKeys m_singleKeys;
};

} // namespace Vorn::Workbench

#endif
