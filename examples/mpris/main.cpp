#include "MediaKeys.h"
#include "MediaPlayer.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char *argv[])
{
    // The library's warnings go to stderr.
    const log4cplus::Initializer logging;
    log4cplus::BasicConfigurator::doConfigure(log4cplus::Logger::getDefaultHierarchy(), true);
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.setLogLevel(log4cplus::WARN_LOG_LEVEL);

    const QCoreApplication application(argc, argv);
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        std::cerr << "mpris: no session bus: " << qPrintable(bus.lastError().message())
                  << std::endl;
        return EXIT_FAILURE;
    }
    const MediaPlayer player(bus); // before the devices, so that it misses nothing
    const MediaKeys keys;
    return QCoreApplication::exec();
}
