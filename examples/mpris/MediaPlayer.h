#ifndef MEDIAPLAYER_H
#define MEDIAPLAYER_H

#include <vorn/input/Input.h>

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>

#include <functional>

/// Hands commands on to a media player on the bus, by MPRIS. Of several players it is the one that
/// came first; when that goes, the next one.
class MediaPlayer : public QObject
{
public:
    explicit MediaPlayer(const QDBusConnection &bus);
    ~MediaPlayer() override;

private:
    void take(const InputEvent &event);
    void follow(const QString &name, const QString &newOwner);
    void announce() const;
    void changeVolume(double difference);
    void call(const QString &interface, const QString &method, const QVariantList &arguments = {},
              const std::function<void(const QVariant &result)> &done = {});

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QStringList m_names;
    QDBusPendingCall m_lastCall;
};

#endif
