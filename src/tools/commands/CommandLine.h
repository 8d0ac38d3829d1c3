#ifndef VORN_TOOLS_COMMANDLINE_H
#define VORN_TOOLS_COMMANDLINE_H

#include "ExitStatus.h"
#include "Terminal.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace CLI {
class App;
}

namespace Vorn::Tools {

/// The command line as a whole: the options that all sub-commands share, and what is said about
/// arguments that make no sense.
class CommandLine
{
public:
    explicit CommandLine(const std::string &version);
    ~CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    /// For sub-commands to be added to.
    CLI::App *app() const { return m_app.get(); }

    /// @param run called by parse() if @p command is the one given; returns the exit status
    void setAction(CLI::App *command, std::function<int()> run);

    /// What comes behind `--` after @p command is not parsed, but goes to @p arguments.
    void setTrailing(const CLI::App *command, QStringList *arguments);

    /// Adds `help`, parses the arguments and runs the sub-command that they name.
    /// @return the exit status of the process
    int parse(int argc, const char *const *argv);

    /// What was given, valid within actions.
    const std::string &logLevel() const { return m_logLevel; }
    Workbench::Colour colour() const { return m_colour; }

private:
    void addHelp();
    int explain(const QString &name) const;
    int takeTrailing(int argc, const char *const *argv);

    const std::unique_ptr<CLI::App> m_app;
    std::string m_logLevel = "error";
    Workbench::Colour m_colour = Workbench::Colour::Auto;
    std::string m_helpedCommand;
    std::map<std::string, QStringList *> m_trailing; ///< by the name of the command
    int m_status = Success;
};

} // namespace Vorn::Tools

#endif
