#include "AgentStart.h"

#include "Agent.h"
#include "Operation.h"
#include "RealCalls.h"

#include <QCoreApplication>

#include <cstdlib>

#include <pthread.h>

namespace Vorn::Drive {

namespace {

int socketDescriptor = -1;

/// What was preloaded before this library was.
void restorePreload()
{
    const QByteArray former = qgetenv(formerPreloadVariable);
    qunsetenv(formerPreloadVariable);
    if (former.isEmpty())
        qunsetenv("LD_PRELOAD");
    else
        qputenv("LD_PRELOAD", former);
}

void abandonChild()
{
    LoopWatch::abandon();
    // Past the simulation, whose lock another thread may have held at the fork.
    Sim::Real::close(socketDescriptor);
}

// As early as possible: programs that this one starts must not inherit it.
__attribute__((constructor)) void takeEnvironment()
{
    bool isNumber = false;
    const int descriptor = qEnvironmentVariableIntValue(socketVariable, &isNumber);
    if (!isNumber)
        return;
    socketDescriptor = descriptor;
    qunsetenv(socketVariable);
    restorePreload();
}

} // namespace

void startAgent()
{
    if (socketDescriptor < 0)
        return;
    // Never deleted: the library's calls come by until the process ends.
    static auto *const agent = new Agent(socketDescriptor);
    static const bool isStarted = [] {
        pthread_atfork(nullptr, nullptr, abandonChild);
        agent->start();
        return true;
    }();
    Q_UNUSED(isStarted)
}

} // namespace Vorn::Drive

using Vorn::Drive::startAgent;
Q_COREAPP_STARTUP_FUNCTION(startAgent)
