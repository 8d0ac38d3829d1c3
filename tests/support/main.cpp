#include <QCoreApplication>

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

#include <gmock/gmock.h>

#include <iostream>

// Only the timer that each long-press detector leaks on purpose.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the runtime's name
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions()
{
    return "leak:LongPressDetect::LongPressDetect\n";
}

// Qt is not instrumented, so the end of a QThread appears to race with the thread that has waited
// for it and now destroys it.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the runtime's name
extern "C" __attribute__((visibility("default"))) const char *__tsan_default_suppressions()
{
    return "race:QWaitCondition::~QWaitCondition\n";
}

// For the same reason, what Qt's locks guard appears unguarded where Qt copies memory.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the runtime's name
extern "C" __attribute__((visibility("default"))) const char *__tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}

int main(int argc, char **argv)
{
    // Death tests read assertions from stderr, even where Qt would log to the journal.
    qputenv("QT_LOGGING_TO_CONSOLE", "1");
    log4cplus::Initializer initializer;
    // Keep log output off stderr for tests that do not examine it.
    log4cplus::Logger::getRoot().addAppender(
        log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    // The tests use sockets, timers and threads, so death tests must re-execute the program.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const int status = RUN_ALL_TESTS();
    const bool isRun = testing::UnitTest::GetInstance()->test_to_run_count() > 0;
    if (!isRun && !GTEST_FLAG_GET(list_tests)) {
        std::cerr << "no test of that name" << std::endl;
        return 1;
    }
    return status;
}
