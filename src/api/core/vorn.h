#ifndef VORN_CORE_VORN_H
#define VORN_CORE_VORN_H

#include <QMetaMethod>
#include <QMetaType>
#include <QObject>
#include <QThread>

/// @file
/// Checked connections. Header-only: needs nothing from the core library's binary.

/// The checked connection, profiles and the simulator; the library's own classes are global.
namespace Vorn {

/// Whether a connection of @p type from @p sender to @p receiver can deliver @p signal.
///
/// Direct delivery passes references and is always possible. Queued delivery
/// (`Qt::QueuedConnection`, or `Qt::AutoConnection` if sender and receiver live in different
/// threads) copies the arguments, so each parameter type must be a pointer or known to Qt's
/// meta-type system through `qRegisterMetaType` or `Q_DECLARE_METATYPE`.
/// `Qt::UniqueConnection` in @p type is ignored. Rejecting a null sender or receiver is left to
/// `QObject::connect`.
///
/// @tparam Signal a member function pointer
/// @param sender may be null
/// @param signal a signal of @p sender
/// @param receiver may be null
/// @param type how the connection is to be made
/// @return false if at least one parameter could not be copied for queued delivery
template <typename Signal>
bool verifyConnectionSignalParameters(const QObject *sender, Signal signal, const QObject *receiver,
                                      Qt::ConnectionType type)
{
    const int kind = static_cast<int>(type) & ~static_cast<int>(Qt::UniqueConnection);
    const bool acrossThreads = sender && receiver && sender->thread() != receiver->thread();
    if (kind != Qt::QueuedConnection && !(kind == Qt::AutoConnection && acrossThreads))
        return true;

    const QMetaMethod method = QMetaMethod::fromSignal(signal);
    const QList<QByteArray> names = method.parameterTypes();
    int index = 0;
    for (const QByteArray &name : names) {
        if (!name.endsWith('*') && method.parameterType(index) == QMetaType::UnknownType)
            return false;
        ++index;
    }
    return true;
}

/// Connects @p signal of @p sender to @p slot of @p receiver, or ends the process.
///
/// A silently missing connection loses key presses, so both errors are fatal in every build type,
/// whatever flags the including code is compiled with:
/// - a parameter that cannot be delivered over a queued connection fails the assertion
///   "verifyConnectionSignalParameters(sender, signal, receiver, type)";
/// - a connection that Qt rejects (null object, not a signal, a second
///   `Qt::UniqueConnection`) fails the assertion "connection".
///
/// **Thread**: any, as `QObject::connect`. **Log**: nothing; Qt prints a warning of its own.
///
/// @tparam Sender,Signal,Receiver,Slot as for `QObject::connect`
/// @param sender not owned
/// @param signal a member function pointer of @p sender
/// @param receiver not owned; its destruction ends the connection
/// @param slot a member function pointer of @p receiver, or a callable with @p receiver as context
/// @param type how the signal is delivered
/// @return the valid connection
/// @code
/// Vorn::connect(Input::instance(), &Input::inputEvent, this, &Player::on_inputEvent);
/// @endcode
template <typename Sender, typename Signal, typename Receiver, typename Slot>
QMetaObject::Connection connect(const Sender *sender, Signal signal, const Receiver *receiver,
                                Slot slot, Qt::ConnectionType type = Qt::AutoConnection)
{
    // qt_assert() directly, because Q_ASSERT is compiled out of release builds.
    if (!verifyConnectionSignalParameters(sender, signal, receiver, type))
        qt_assert("verifyConnectionSignalParameters(sender, signal, receiver, type)", __FILE__,
                  __LINE__);
    QMetaObject::Connection connection = QObject::connect(sender, signal, receiver, slot, type);
    if (!connection)
        qt_assert("connection", __FILE__, __LINE__);
    return connection;
}

} // namespace Vorn

#endif
