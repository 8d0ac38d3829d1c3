#ifndef VORN_WORKBENCH_INTERRUPTION_H
#define VORN_WORKBENCH_INTERRUPTION_H

#include <QObject>

#include <functional>

namespace Vorn::Workbench {

/// Catches SIGINT, SIGTERM and SIGHUP while it is alive, so that work ends cleanly: the first one
/// sets a flag and, in an event loop, calls back; one that comes repetitionMs later or more ends
/// the process. So it stays after a signal, also when it is destroyed, since the process ends then.
class Interruption : public QObject
{
public:
    static constexpr int repetitionMs = 500;

    explicit Interruption(std::function<void()> callback = {});
    ~Interruption() override;

    /// Whether a signal has come.
    static bool isRequested();
};

} // namespace Vorn::Workbench

#endif
