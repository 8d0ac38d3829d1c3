#include "FuzzedProcess.h"

#include <QCoreApplication>

#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>

namespace {

struct Process
{
    Process()
    {
        log4cplus::Logger::getRoot().addAppender(
            log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    }

    int argc = 1;
    char name[5] = "fuzz";
    char *argv[2] = {name, nullptr};
    log4cplus::Initializer initializer;
    QCoreApplication application{argc, argv};
};

} // namespace

void prepareFuzzedProcess()
{
    // Never destroyed, since libFuzzer ends the process in its own ways.
    static const auto *const process = new Process;
    Q_UNUSED(process)
}
