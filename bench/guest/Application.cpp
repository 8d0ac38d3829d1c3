#include "Application.h"

#include <QAbstractEventDispatcher>

#include <log4cplus/consoleappender.h>
#include <log4cplus/logger.h>

#include <stdexcept>

namespace Vorn::Bench {

Application::Application()
{
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(log4cplus::SharedAppenderPtr(new log4cplus::ConsoleAppender(true, true)));
    root.setLogLevel(log4cplus::WARN_LOG_LEVEL);

    // Qt built without glib ignores the choice.
    const bool isGlib = QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib");
    if (isGlib != (dispatcher() == "glib"))
        throw std::runtime_error("this Qt does not have the dispatcher " + dispatcher());
}

void useDispatcher(const std::string &name)
{
    if (name == "glib")
        qunsetenv("QT_NO_GLIB");
    else
        qputenv("QT_NO_GLIB", "1");
}

std::string dispatcher()
{
    return qEnvironmentVariableIsSet("QT_NO_GLIB") ? "unix" : "glib";
}

} // namespace Vorn::Bench
