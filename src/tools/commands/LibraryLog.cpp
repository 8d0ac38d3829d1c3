#include "LibraryLog.h"

#include "Quoting.h"

#include <QString>

#include <log4cplus/consoleappender.h>
#include <log4cplus/layout.h>
#include <log4cplus/logger.h>

#include <memory>
#include <sstream>

namespace Vorn::Tools {

namespace {

class PrintableLayout : public log4cplus::PatternLayout
{
public:
    PrintableLayout()
        : PatternLayout("%-5p %c: %m")
    { }

    void formatAndAppend(log4cplus::tostream &output,
                         const log4cplus::spi::InternalLoggingEvent &event) override
    {
        std::ostringstream line;
        PatternLayout::formatAndAppend(line, event);
        output << printable(QString::fromStdString(line.str())).toStdString() << '\n';
    }
};

} // namespace

void showLibraryLog(const std::string &level)
{
    log4cplus::SharedAppenderPtr console(new log4cplus::ConsoleAppender(true, true));
    console->setLayout(std::make_unique<PrintableLayout>());
    log4cplus::Logger root = log4cplus::Logger::getRoot();
    root.addAppender(console);
    root.setLogLevel(log4cplus::getLogLevelManager().fromString(
        QString::fromStdString(level).toUpper().toStdString()));
}

} // namespace Vorn::Tools
