#include "AutoRepeat.h"

#include <QMetaObject>
#include <QTimer>

#include <utility>

namespace Vorn::Sim {

AutoRepeat::AutoRepeat(std::function<int()> tick)
    : m_tick(std::move(tick))
{ }

AutoRepeat::~AutoRepeat() = default;

void AutoRepeat::start(int milliseconds)
{
    // Keys may be pressed on any thread, but a timer is only started on its own.
    const auto onOwnThread = [this, milliseconds] {
        if (!m_timer) {
            m_timer = std::make_unique<QTimer>();
            m_timer->setSingleShot(true);
            m_timer->setTimerType(Qt::PreciseTimer);
            QObject::connect(m_timer.get(), &QTimer::timeout, this, [this] {
                const int next = m_tick();
                if (next > 0)
                    m_timer->start(next);
            });
        }
        m_timer->start(milliseconds);
    };
    QMetaObject::invokeMethod(this, onOwnThread);
}

void AutoRepeat::stop()
{
    const auto onOwnThread = [this] {
        if (m_timer)
            m_timer->stop();
    };
    QMetaObject::invokeMethod(this, onOwnThread);
}

} // namespace Vorn::Sim
