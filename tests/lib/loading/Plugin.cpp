#include "Plugin.h"

#include "BasicInputHandler.h"
#include "Input.h"
#include "vorn.h"

#include <memory>

namespace {

class Devices : public BasicInputHandler
{
    void addDevice(const QString &device, const QString &name) override
    {
        auto *keys = new BasicKeyInputHandler(name);
        addKeyHandler(device, keys, QString());
        keys->registerKey(KEY_MUTE, InputEvent::Mute, true);
    }
};

} // namespace

/// A part of a program's user interface that brings the library in as its dependency.
class Panel : public QObject, public PanelPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "vorn.tests.PanelPlugin")
    Q_INTERFACES(PanelPlugin)

public:
    void start() override
    {
        Vorn::connect(Input::instance(), &Input::inputEvent, this,
                      [this](const InputEvent &event) { m_events.append(event.toString()); });
        m_devices = std::make_unique<Devices>();
    }

    QStringList events() const override { return m_events; }

private:
    std::unique_ptr<Devices> m_devices;
    QStringList m_events;
};

#include "Plugin.moc"
