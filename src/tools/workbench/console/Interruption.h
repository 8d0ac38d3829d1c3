#ifndef VORN_WORKBENCH_INTERRUPTION_H
#define VORN_WORKBENCH_INTERRUPTION_H

#include <QObject>

#include <functional>

namespace Vorn::Workbench {

/// Catches SIGINT, SIGTERM and SIGHUP while it is alive, so that work ends cleanly: the first
/// signal sets a flag and, in an event loop, calls back; one that comes repetitionMs later or more
/// kills the process. After a signal that remains so even when the object is destroyed, because the
/// process is about to end.
class Interruption : public QObject
{
public:
    static constexpr int repetitionMs = 500;

    explicit Interruption(std::function<void()> callback = {});
    ~Interruption() override;

    /// Ends work that asks isRequested(), without a signal and without the callback.
    static void request();

    /// Whether a signal or request() has come since the last construction.
    static bool isRequested();
};

} // namespace Vorn::Workbench

#endif
