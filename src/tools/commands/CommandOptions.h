#ifndef VORN_TOOLS_COMMANDOPTIONS_H
#define VORN_TOOLS_COMMANDOPTIONS_H

#include <QString>
#include <QStringList>

#include <string>

namespace CLI {
class App;
}

/// The kinds of options that sub-commands have. The parser's own header takes seconds to compile,
/// so no other header and no sub-command includes it.
///
/// The values must live until the command line has been parsed; an option that is not given leaves
/// its value alone. Names are those of CLI::App::add_option(): "-p,--profile", or "FILE" for an
/// argument without a dash.
namespace Vorn::Tools {

enum class Presence { Optional, Required };

/// @param footer printed below the options: details and examples
CLI::App *addCommand(CLI::App *app, const std::string &name, const std::string &description,
                     const std::string &footer);

void addFlag(CLI::App *command, const std::string &name, bool *value,
             const std::string &description);

/// @param placeholder of the value in the help
void addText(CLI::App *command, const std::string &name, QString *value,
             const std::string &description, const std::string &placeholder,
             Presence presence = Presence::Optional);

/// The name of a file or a folder, which must not be empty.
void addFile(CLI::App *command, const std::string &name, QString *value,
             const std::string &description, const std::string &placeholder = "FILE",
             Presence presence = Presence::Optional);

/// One value, which is a list: "VolumeUp,VolumeDown".
void addCommaList(CLI::App *command, const std::string &name, QStringList *values,
                  const std::string &description, const std::string &placeholder);

/// One or more arguments without a dash.
void addFiles(CLI::App *command, QStringList *files, const std::string &description);

/// From @p shortest to a week.
void addSeconds(CLI::App *command, const std::string &name, double *value,
                const std::string &description, double shortest = 0.001);

/// A number from 1.
void addNumber(CLI::App *command, const std::string &name, int *value,
               const std::string &description);

} // namespace Vorn::Tools

#endif
