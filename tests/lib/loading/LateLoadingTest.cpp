#include "Plugin.h"

#include "InputSubsystem.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPluginLoader>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

constexpr int hundred = 100;

// Loads copies of a library that needs static room, until the loader has none left. The handles
// stay open, as those of a program's other plugins do.
int loadUntilTheRoomIsTaken(const QTemporaryDir &folder)
{
    constexpr int more = 2000;
    for (int i = 0; i < more; ++i) {
        const QString copy = folder.filePath(QString::number(i) + QLatin1String(".so"));
        if (!QFile::copy(QStringLiteral(VORN_STATIC_ROOM), copy))
            return -1;
        if (!dlopen(qPrintable(copy), RTLD_NOW))
            return i;
    }
    return -1;
}

} // namespace

TEST(LateLoading, ServesAPluginWhenTheRoomForStaticThreadLocalsIsTaken)
{
    int argc = 1;
    char name[] = "plugin-test";
    char *argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    Vorn::Sim::InputSubsystem subsystem;
    Vorn::Sim::InputNode &panel = subsystem.plug(
        0, Vorn::Sim::DeviceDescription::keyboard("front-panel", BUS_HOST, {KEY_MUTE}));

    const QTemporaryDir folder;
    const int loaded = loadUntilTheRoomIsTaken(folder);
    const QString refusal = QString::fromLocal8Bit(dlerror());
    ASSERT_GE(loaded, hundred) << qPrintable(refusal);
    ASSERT_TRUE(refusal.contains(QLatin1String("static TLS"))) << qPrintable(refusal);

    QPluginLoader loader(QStringLiteral(VORN_PLUGIN));
    auto *plugin = qobject_cast<PanelPlugin *>(loader.instance());
    ASSERT_TRUE(plugin) << qPrintable(loader.errorString());
    plugin->start();
    QElapsedTimer timer;
    timer.start();
    while (panel.openDescriptors() == 0 && timer.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    panel.press(KEY_MUTE);
    while (plugin->events().isEmpty() && timer.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    ASSERT_EQ(plugin->events().size(), 1);
    EXPECT_EQ(plugin->events().first(), QLatin1String("[cmd=Mute, state=KeyPressed, bus=LocalUI]"));
}
