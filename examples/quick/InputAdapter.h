#ifndef INPUTADAPTER_H
#define INPUTADAPTER_H

#include <vorn/input/Input.h>

#include <QObject>
#include <QString>

/// What QML sees of the event bus: the last event, as properties to bind to.
class InputAdapter : public QObject
{
    Q_OBJECT
    /// The name of the command, e.g. "VolumeUp"; empty before the first event.
    Q_PROPERTY(QString command READ command NOTIFY changed)
    /// "pressed", "released" or "long press"; empty for switches.
    Q_PROPERTY(QString state READ state NOTIFY changed)
    /// Whether the key is down.
    Q_PROPERTY(bool down READ isDown NOTIFY changed)

public:
    explicit InputAdapter(QObject *parent = nullptr);

    QString command() const;
    QString state() const;
    bool isDown() const;

Q_SIGNALS:
    void changed();

private:
    void take(const InputEvent &event);

    InputEvent m_event;
};

#endif
