#include "AgentStart.h"

#include "Agent.h"
#include "Operation.h"

#include <QCoreApplication>

#include <cstdlib>

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

namespace Vorn::Drive {

namespace {

int socketDescriptor = -1;

/// Takes this library out of a list of libraries to preload.
void removeFromPreload()
{
    constexpr char variable[] = "LD_PRELOAD";
    Dl_info info = {};
    if (dladdr(reinterpret_cast<void *>(&removeFromPreload), &info) == 0)
        return;
    QByteArrayList others;
    for (const QByteArray &library : qgetenv(variable).replace(' ', ':').split(':')) {
        if (!library.isEmpty() && library != info.dli_fname)
            others += library;
    }
    if (others.isEmpty())
        qunsetenv(variable);
    else
        qputenv(variable, others.join(':'));
}

void abandonChild()
{
    LoopWatch::abandon();
    ::close(socketDescriptor);
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
    removeFromPreload();
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
