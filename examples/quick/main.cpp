#include "InputAdapter.h"
#include "QuickKeys.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>
#include <QVariant>

#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>

#include <cstdlib>

int main(int argc, char *argv[])
{
    // The library's warnings go to stderr.
    const log4cplus::Initializer logging;
    log4cplus::BasicConfigurator::doConfigure(log4cplus::Logger::getDefaultHierarchy(), true);
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.setLogLevel(log4cplus::WARN_LOG_LEVEL);

    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows the keys of a front panel."));
    parser.addHelpOption();
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("After each event, save a picture of the window in <file>."),
        QStringLiteral("file"));
    parser.addOption(screenshot);
    parser.process(application);

    InputAdapter adapter; // before the devices, so that it misses nothing
    QQmlApplicationEngine engine;
    engine.setInitialProperties(
        {{QStringLiteral("input"), QVariant::fromValue<QObject *>(&adapter)},
         {QStringLiteral("screenshot"), parser.value(screenshot)}});
    engine.load(QUrl(QStringLiteral("qrc:/Panel.qml")));
    if (engine.rootObjects().isEmpty())
        return EXIT_FAILURE; // the engine has told why
    const QuickKeys keys;
    return QGuiApplication::exec();
}
