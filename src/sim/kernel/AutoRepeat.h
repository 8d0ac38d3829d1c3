#ifndef VORN_SIM_AUTOREPEAT_H
#define VORN_SIM_AUTOREPEAT_H

#include <QObject>

#include <functional>
#include <memory>

class QTimer;

namespace Vorn::Sim {

/// The timer of one device's auto-repeat, on the thread that constructed it.
class AutoRepeat : public QObject
{
public:
    /// @param tick called when the key is to be repeated; returns the milliseconds until the next
    /// repeat, 0 to stop
    explicit AutoRepeat(std::function<int()> tick);
    ~AutoRepeat() override;

    /// May be called on any thread.
    void start(int milliseconds);
    void stop();

private:
    const std::function<int()> m_tick;
    std::unique_ptr<QTimer> m_timer;
};

} // namespace Vorn::Sim

#endif
