#include <QCoreApplication>

#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>
#include <log4cplus/loglevel.h>

#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    // The death tests read fatal messages from stderr, which Qt may send to a journal instead.
    qputenv("QT_LOGGING_TO_CONSOLE", "1");
    log4cplus::Initializer initializer;
    log4cplus::BasicConfigurator::doConfigure();
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
    QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    // Death tests run the executable again: forking a process that has threads is not safe.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    return RUN_ALL_TESTS();
}
