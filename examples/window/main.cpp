#include "PanelKeys.h"
#include "PanelWindow.h"

#include <QApplication>
#include <QCommandLineParser>

#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>

#include <iostream>

int main(int argc, char *argv[])
{
    // The library's warnings go to stderr.
    const log4cplus::Initializer logging;
    log4cplus::BasicConfigurator::doConfigure(log4cplus::Logger::getDefaultHierarchy(), true);
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.setLogLevel(log4cplus::WARN_LOG_LEVEL);

    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Shows the keys of a front panel."));
    parser.addHelpOption();
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("At the end, save a picture of the window in <file>."),
        QStringLiteral("file"));
    parser.addOption(screenshot);
    parser.process(application);

    PanelWindow window; // before the devices, so that it misses nothing
    window.show();
    const PanelKeys keys;
    const int status = QApplication::exec();

    const QString file = parser.value(screenshot);
    if (!file.isEmpty() && !window.grab().save(file)) {
        std::cerr << "window: cannot write " << qPrintable(file) << std::endl;
        return EXIT_FAILURE;
    }
    return status;
}
