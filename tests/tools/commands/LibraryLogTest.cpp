#include "LibraryLog.h"

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <gtest/gtest.h>

TEST(LibraryLog, ControlsNoTerminal)
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    const log4cplus::LogLevel before = root.getLogLevel();
    testing::internal::CaptureStderr();
    Vorn::Tools::showLibraryLog("warn");
    LOG4CPLUS_WARN(log4cplus::Logger::getInstance("Scan"), "'a\x1b[2J\nb\u202e' 100%");
    LOG4CPLUS_INFO(log4cplus::Logger::getInstance("Scan"), "too detailed");
    root.removeAllAppenders();
    root.setLogLevel(before);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "WARN  Scan: 'a\\u001b[2J\\nb\\u202e' 100%\n");
}
