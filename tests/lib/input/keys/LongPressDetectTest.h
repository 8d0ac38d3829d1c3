#ifndef LONGPRESSDETECTTEST_H
#define LONGPRESSDETECTTEST_H

#include "KeyProcessing.h"

#include "Records.h"
#include "VirtualClock.h"
#include "vorn.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>
#include <QTimerEvent>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

/// A notification, in ms since the test began.
struct Notification
{
    qint64 at;
    int key;
    int repeat;

    bool operator==(const Notification &other) const
    {
        return at == other.at && key == other.key && repeat == other.repeat;
    }
};

inline std::ostream &operator<<(std::ostream &stream, const Notification &notification)
{
    return stream << notification.key << " #" << notification.repeat << " at " << notification.at;
}

/// The clock starts on the grid of Qt's coarse timers, so the ticks after a press at its start come
/// at exactly 50, 100, 150 … ms.
class LongPressDetectTest : public testing::Test
{
protected:
    LongPressDetectTest()
        : start(clock.now())
        , detector(std::make_unique<LongPressDetect>())
    {
        QCoreApplication::instance()->installEventFilter(&ticks);
        Vorn::connect(detector.get(), &LongPressDetect::keyLongPress, detector.get(),
                      [this](int key, int repeat) {
                          notifications.push_back({clock.now() - start, key, repeat});
                          // A copy, because the callback may replace itself.
                          if (const auto callback = onNotification)
                              callback(key, repeat);
                      });
    }

    void feed(int code, int value) { feedAt(code, value, clock.now()); }
    void press(int code) { feed(code, 1); }
    void release(int code) { feed(code, 0); }

    void feedAt(int code, int value, qint64 msecs)
    {
        input_event event = keyRecord(code, value, msecs);
        const std::string before = describe({event});
        detector->process(event);
        EXPECT_EQ(describe({event}), before) << "the record is only read";
    }

    std::vector<Notification> take() { return std::exchange(notifications, {}); }

    /// Counts the timeouts of all QTimers.
    class TickCounter : public QObject
    {
    public:
        int take() { return std::exchange(m_count, 0); }
        QPointer<QTimer> timer;

    protected:
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (event->type() == QEvent::Timer && qobject_cast<QTimer *>(watched)) {
                timer = qobject_cast<QTimer *>(watched);
                ++m_count;
            }
            return false;
        }

    private:
        int m_count = 0;
    };

    Vorn::Sim::VirtualClock clock;
    const qint64 start;
    TickCounter ticks;
    std::unique_ptr<LongPressDetect> detector;
    std::vector<Notification> notifications;
    std::function<void(int, int)> onNotification;
};

#endif
