#ifndef VORN_WORKBENCH_KEYBOARD_H
#define VORN_WORKBENCH_KEYBOARD_H

#include <QObject>

#include <functional>

namespace Vorn::Workbench {

/// Reports single characters from the standard input while it is alive; on a terminal without
/// waiting for Enter and without echo. Only one may exist at a time.
class Keyboard : public QObject
{
public:
    explicit Keyboard(std::function<void(char)> onKey);
    ~Keyboard() override;
};

} // namespace Vorn::Workbench

#endif
