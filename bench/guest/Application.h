#ifndef APPLICATION_H
#define APPLICATION_H

#include <QCoreApplication>

#include <log4cplus/initializer.h>

#include <string>

namespace Vorn::Bench {

/// What a product sets up before it uses the library: logging of warnings and errors, and an event
/// loop. Throws if its dispatcher is not the one that was chosen, see useDispatcher().
class Application
{
public:
    Application();

private:
    int m_argumentCount = 1;
    char m_name[6] = "bench";
    char *m_arguments[2] = {m_name, nullptr};
    const log4cplus::Initializer m_logging;
    QCoreApplication m_application{m_argumentCount, m_arguments};
};

/// Chooses Qt's event dispatcher, "glib" or "unix", for this process and those it starts.
void useDispatcher(const std::string &name);
/// The chosen one.
std::string dispatcher();

} // namespace Vorn::Bench

#endif
