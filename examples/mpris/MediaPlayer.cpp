#include "MediaPlayer.h"

#include <vorn/core/vorn.h>

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <iostream>

namespace {

const QLatin1String players("org.mpris.MediaPlayer2.");
const QLatin1String path("/org/mpris/MediaPlayer2");
const QLatin1String playerInterface("org.mpris.MediaPlayer2.Player");
const QLatin1String propertyInterface("org.freedesktop.DBus.Properties");
const QLatin1String volume("Volume");
constexpr double volumeStep = 0.05;
constexpr int timeoutMs = 2000;

void print(const QString &text)
{
    std::cerr << "mpris: " << qPrintable(text) << std::endl;
}

} // namespace

MediaPlayer::MediaPlayer(const QDBusConnection &bus)
    : m_bus(bus)
    , m_watcher(QStringLiteral("org.mpris.MediaPlayer2*"), bus,
                QDBusServiceWatcher::WatchForOwnerChange)
    , m_lastCall(QDBusPendingCall::fromError(QDBusError()))
{
    Vorn::connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                  [this](const QString &name, const QString &, const QString &owner) {
                      follow(name, owner);
                  });
    const QStringList names = m_bus.interface()->registeredServiceNames();
    for (const QString &name : names) {
        if (name.startsWith(players))
            m_names.append(name);
    }
    announce();
    Vorn::connect(Input::instance(), &Input::inputEvent, this, &MediaPlayer::take);
}

// A command that came just before the end still reaches the player.
MediaPlayer::~MediaPlayer()
{
    m_lastCall.waitForFinished();
}

void MediaPlayer::take(const InputEvent &event)
{
    const bool isPressed = event.state() == InputEvent::KeyPressed;
    const bool isHeld = isPressed || event.state() == InputEvent::KeyLongPress;
    switch (event.command()) {
    case InputEvent::VolumeUp:
    case InputEvent::VolumeDown:
        if (isHeld)
            changeVolume(event.command() == InputEvent::VolumeUp ? volumeStep : -volumeStep);
        break;
    case InputEvent::StartPlay:
    case InputEvent::Pause:
        if (isPressed)
            call(playerInterface, QStringLiteral("PlayPause"));
        break;
    case InputEvent::Stop:
    case InputEvent::Next:
    case InputEvent::Previous:
        // They have the same names there.
        if (isPressed)
            call(playerInterface, event.cmdToString());
        break;
    default:
        break;
    }
}

void MediaPlayer::follow(const QString &name, const QString &newOwner)
{
    const QString before = m_names.value(0);
    m_names.removeAll(name);
    if (!newOwner.isEmpty())
        m_names.append(name);
    if (m_names.value(0) != before)
        announce();
}

void MediaPlayer::announce() const
{
    print(m_names.isEmpty() ? QStringLiteral("no media player on the bus; waiting for one")
                            : QStringLiteral("controls ") + m_names.first());
}

// Others change the volume as well, so it is asked for each time.
void MediaPlayer::changeVolume(double difference)
{
    call(propertyInterface, QStringLiteral("Get"), {playerInterface, volume},
         [this, difference](const QVariant &result) {
             const double now = result.value<QDBusVariant>().variant().toDouble();
             const QDBusVariant then(qBound(0.0, now + difference, 1.0));
             call(propertyInterface, QStringLiteral("Set"),
                  {playerInterface, volume, QVariant::fromValue(then)});
         });
}

// Never waits for the answer: the event loop has keys to read.
void MediaPlayer::call(const QString &interface, const QString &method,
                       const QVariantList &arguments,
                       const std::function<void(const QVariant &result)> &done)
{
    if (m_names.isEmpty()) {
        print(QStringLiteral("no media player on the bus"));
        return;
    }
    QDBusMessage message = QDBusMessage::createMethodCall(m_names.first(), path, interface, method);
    message.setArguments(arguments);
    m_lastCall = m_bus.asyncCall(message, timeoutMs);
    auto *watcher = new QDBusPendingCallWatcher(m_lastCall, this);
    Vorn::connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, method, done] {
        watcher->deleteLater();
        if (watcher->isError())
            print(method + QStringLiteral(" failed: ") + watcher->error().message());
        else if (done)
            done(watcher->reply().arguments().value(0));
    });
}
