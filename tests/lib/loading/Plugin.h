#ifndef VORN_TESTS_PLUGIN_H
#define VORN_TESTS_PLUGIN_H

#include <QStringList>
#include <QtPlugin>

/// What the plugin offers the program, which knows nothing of the library.
class PanelPlugin
{
public:
    virtual ~PanelPlugin() = default;

    /// Finds the devices and begins to listen.
    virtual void start() = 0;

    /// The texts of the events so far.
    virtual QStringList events() const = 0;
};

Q_DECLARE_INTERFACE(PanelPlugin, "vorn.tests.PanelPlugin")

#endif
