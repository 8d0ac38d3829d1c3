#include <QCoreApplication>

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <gmock/gmock.h>

#include <iostream>

// The timer that each long-press detector leaves behind on purpose, and nothing else.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the runtime's name
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions()
{
    return "leak:LongPressDetect::LongPressDetect\n";
}

// Qt's library is not instrumented, so the end of a QThread seems to race with the one who waited
// for it and now destroys it.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the runtime's name
extern "C" __attribute__((visibility("default"))) const char *__tsan_default_suppressions()
{
    return "race:QWaitCondition::~QWaitCondition\n";
}

int main(int argc, char **argv)
{
    // Assertions are read from stderr by the death tests, also where Qt would log to a journal.
    qputenv("QT_LOGGING_TO_CONSOLE", "1");
    log4cplus::Initializer initializer;
    // Tests that do not look at the log keep stderr for what they find.
    log4cplus::Logger::getRoot().addAppender(
        log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    // The tests use sockets, timers and threads; a death test starts the executable anew.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const int status = RUN_ALL_TESTS();
    const bool isRun = testing::UnitTest::GetInstance()->test_to_run_count() > 0;
    if (!isRun && !GTEST_FLAG_GET(list_tests)) {
        std::cerr << "no test of that name" << std::endl;
        return 1;
    }
    return status;
}
