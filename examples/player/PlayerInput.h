#ifndef PLAYERINPUT_H
#define PLAYERINPUT_H

#include <vorn/input/BasicInputHandler.h>

#include <QString>

/// The input of a small player: which device carries which keys, and what each key means.
///
/// | device, by its kernel name | keys and switches |
/// |---|---|
/// | "front-panel" | volume, Info, Stop, Play, both together for FactoryReset; the line-in jack |
/// | "front-panel-jacks" | the line-in jack, on models that wire it separately |
/// | "hostlink" | Power, from the host that the player is built into |
/// | any other | a remote control: cursor keys or characters |
///
/// Two identifiers give the keys of a remote control two meanings. "browse" is selected at first;
/// `Search` selects "text", and `Submit` or `Cancel` selects "browse" again. All other keys mean
/// the same in both.
///
/// @code
/// PlayerInput input; // before the event loop runs
/// Vorn::connect(Input::instance(), &Input::inputEvent, &player, &Player::on_inputEvent);
/// return application.exec();
/// @endcode
///
/// **Thread**: that of the event loop, like the whole library.
class PlayerInput : public BasicInputHandler
{
    Q_OBJECT

public:
    PlayerInput();

    void addDevice(const QString &device, const QString &name) override;
    void removeDevice(const QString &device) override;

    /// The number of devices present now.
    int deviceCount() const;

private Q_SLOTS:
    void on_inputEvent(InputEvent event);

private:
    void addFrontPanel(const QString &device, const QString &name);
    void addJacks(const QString &device, const QString &name);
    void addHostlink(const QString &device, const QString &name);
    void addRemote(const QString &device, const QString &name);
    void addInBothModes(const QString &device, BasicKeyInputHandler *keys);

    int m_deviceCount = 0;
};

#endif
