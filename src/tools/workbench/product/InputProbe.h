#ifndef VORN_WORKBENCH_INPUTPROBE_H
#define VORN_WORKBENCH_INPUTPROBE_H

#include "BasicInputHandler.h"
#include "KeyProcessing.h"
#include "LinuxInputListener.h"
#include "vorn.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QMap>
#include <QPair>
#include <QSet>
#include <QSocketNotifier>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <optional>

namespace Vorn {

/// Reads what the library's objects know, and connects around their slots. The library declares it
/// a friend, so that the workbench states what happens inside and never has to imitate it.
///
/// Nothing here changes what the library does: it takes the same steps, in the same order.
class InputProbe
{
public:
    /// A long press that a key's detector waits for.
    struct Timing
    {
        int count = 0; ///< number of the next notification, from 1
        /// ms since the epoch; none if no further notification of this hold is emitted
        std::optional<qint64> due;
    };

    static const QHash<int, InputEvent::Command> &keys(const BasicKeyInputHandler &handler)
    {
        return handler.keyMap;
    }

    /// The identifier under which it was registered last.
    static QString identifier(const BasicKeyInputHandler &handler) { return handler.id; }

    static const QHash<QPair<int, int>, InputEvent::Command> &
    chords(const BasicKeyInputHandler &handler)
    {
        return handler.doubleKeyMap;
    }

    /// The deferred keys that are down; true after a long press.
    static const QHash<int, bool> &heldKeys(const BasicKeyInputHandler &handler)
    {
        return handler.heldKeys;
    }

    static const QHash<int, InputEvent::Command> &switches(const BasicSwInputHandler &handler)
    {
        return handler.switchMap;
    }

    /// The latest record of each key that the chord detector has in hand, in order of the presses.
    static const QList<input_event> &storedEvents(const BasicKeyInputHandler &handler)
    {
        return handler.doubleKeyDetect->storedEvents;
    }

    /// Whether a chord is in progress.
    static bool isChord(const BasicKeyInputHandler &handler)
    {
        return handler.doubleKeyDetect->detected;
    }

    /// Whether the timer of the long presses runs.
    static bool isTiming(const BasicKeyInputHandler &handler)
    {
        return handler.longPressDetect->timer->isActive();
    }

    /// The keys that are down with a long press, by code. While the timer is stopped they wait.
    static QMap<int, Timing> timings(const BasicKeyInputHandler &handler);

    /// The paths of the devices that have arrived, some of them perhaps without handlers.
    static QStringList devices(const BasicInputHandler &manager)
    {
        return manager.keyListeners.keys();
    }

    static QString currentIdentifier(const BasicInputHandler &manager) { return manager.currentId; }

    /// Whether it has looked for devices.
    static bool hasLooked(const BasicInputHandler &manager)
    {
        return !manager.inputWatcher->directories().isEmpty();
    }

    /// Null for a device that the manager does not know.
    static LinuxInputListener *keyListener(const BasicInputHandler &manager, const QString &path);
    static LinuxInputListener *switchListener(const BasicInputHandler &manager,
                                              const QString &path);

    /// The identifiers under which a device has a handler for which @p matches.
    template <typename Predicate>
    static QStringList keyIdentifiers(const BasicInputHandler &manager, const QString &path,
                                      Predicate matches)
    {
        return identifiers(manager.keyHandlers.values(path), matches);
    }
    template <typename Predicate>
    static QStringList switchIdentifiers(const BasicInputHandler &manager, const QString &path,
                                         Predicate matches)
    {
        return identifiers(manager.switchHandlers.values(path), matches);
    }

    static InputHandler *receiver(const LinuxInputListener &listener) { return listener.m_handler; }

    /// Whether the listener reads its node.
    static bool isReading(const LinuxInputListener *listener)
    {
        return listener && listener->m_notifier;
    }

    static int descriptor(const LinuxInputListener &listener) { return listener.m_fd; }

    /// Calls @p before and @p after around each answer of the chord detector, both with the keys
    /// and whether it is synthetic.
    template <typename Before, typename After>
    static void surroundKeys(BasicKeyInputHandler *handler, Before before, After after)
    {
        surround(handler->doubleKeyDetect, &DoubleKeyDetect::keyDoubleDetect, handler,
                 &BasicKeyInputHandler::on_doubleKeyDetect, handler, before, after);
    }

    /// The same for each notification of the long-press detector, with the code and its count.
    template <typename Before, typename After>
    static void surroundLongPresses(BasicKeyInputHandler *handler, Before before, After after)
    {
        surround(handler->longPressDetect, &LongPressDetect::keyLongPress, handler,
                 &BasicKeyInputHandler::on_keyLongPress, handler, before, after);
    }

    /// The same for each tick of its timer, without arguments.
    template <typename Before, typename After>
    static void surroundTicks(BasicKeyInputHandler *handler, Before before, After after)
    {
        LongPressDetect *detector = handler->longPressDetect;
        surround(detector->timer, &QTimer::timeout, detector, &LongPressDetect::update, handler,
                 before, after);
    }

    /// The same for each time a listener reads its node, without arguments.
    template <typename Before, typename After>
    static void surroundReads(LinuxInputListener *listener, Before before, After after)
    {
        if (!listener->m_notifier)
            return;
        surround(listener->m_notifier, &QSocketNotifier::activated, listener,
                 &LinuxInputListener::readData, listener, before, after);
    }

    /// The same for each time a manager looks for devices, but the first, with the folder that has
    /// changed.
    template <typename Before, typename After>
    static void surroundScans(BasicInputHandler *manager, Before before, After after)
    {
        surround(manager->inputWatcher, &QFileSystemWatcher::directoryChanged, manager,
                 &BasicInputHandler::on_inputWatcher_changed, manager, before, after);
    }

private:
    template <typename Sender, typename Signal, typename Receiver, typename Slot, typename Before,
              typename After>
    static void surround(Sender *sender, Signal signal, Receiver *receiver, Slot slot,
                         QObject *context, Before before, After after)
    {
        // Slots are called in the order in which they were connected.
        QObject::disconnect(sender, nullptr, receiver, nullptr);
        Vorn::connect(sender, signal, context, before);
        Vorn::connect(sender, signal, receiver, slot);
        Vorn::connect(sender, signal, context, after);
    }

    template <typename Records, typename Predicate>
    static QStringList identifiers(const Records &records, Predicate matches)
    {
        QStringList ids;
        for (const auto &record : records) {
            if (matches(*record.handler) && !ids.contains(record.id))
                ids.prepend(record.id);
        }
        return ids;
    }
};

} // namespace Vorn

#endif
