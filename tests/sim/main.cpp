#include <QCoreApplication>

#include <log4cplus/configurator.h>
#include <log4cplus/initializer.h>
#include <log4cplus/loglevel.h>

#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    // Fatal messages are read from stderr by the death tests, also where Qt would log to a journal.
    qputenv("QT_LOGGING_TO_CONSOLE", "1");
    log4cplus::Initializer initializer;
    log4cplus::BasicConfigurator::doConfigure();
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::OFF_LOG_LEVEL);
    QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    // A death test starts the executable anew instead of forking a process that has threads.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    return RUN_ALL_TESTS();
}
