#include "CommandOptions.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <vector>

namespace Vorn::Tools {

namespace {

// The parser knows nothing of QString, and a file name may be in any encoding.
QString text(const std::string &argument)
{
    return QString::fromLocal8Bit(argument.data(), static_cast<int>(argument.size()));
}

// A script's variable that is not set, and nothing that anybody means.
CLI::Validator isNamed()
{
    const auto complaint = [](const std::string &argument) {
        return argument.empty() ? std::string("the name is empty") : std::string();
    };
    // It is not described, since it would be part of the help.
    return {complaint, ""};
}

CLI::Option *addTexts(CLI::App *command, const std::string &name, QStringList *values,
                      const std::string &description)
{
    const auto store = [values](const std::vector<std::string> &arguments) {
        values->clear();
        for (const std::string &argument : arguments)
            values->append(text(argument));
    };
    return command->add_option_function<std::vector<std::string>>(name, store, description);
}

} // namespace

CLI::App *addCommand(CLI::App *app, const std::string &name, const std::string &description,
                     const std::string &footer)
{
    CLI::App *command = app->add_subcommand(name, description);
    command->footer(footer);
    return command;
}

void addFlag(CLI::App *command, const std::string &name, bool *value,
             const std::string &description)
{
    command->add_flag(name, *value, description);
}

void addText(CLI::App *command, const std::string &name, QString *value,
             const std::string &description, const std::string &placeholder, Presence presence)
{
    const auto store = [value](const std::string &argument) { *value = text(argument); };
    command->add_option_function<std::string>(name, store, description)
        ->type_name(placeholder)
        ->required(presence == Presence::Required);
}

void addFile(CLI::App *command, const std::string &name, QString *value,
             const std::string &description, const std::string &placeholder, Presence presence)
{
    addText(command, name, value, description, placeholder, presence);
    command->get_options().back()->check(isNamed());
}

void addCommaList(CLI::App *command, const std::string &name, QStringList *values,
                  const std::string &description, const std::string &placeholder)
{
    addTexts(command, name, values, description)->type_name(placeholder)->delimiter(',');
}

void addFiles(CLI::App *command, QStringList *files, const std::string &description)
{
    addTexts(command, "FILE", files, description)->type_name("")->required()->check(isNamed());
}

void addSeconds(CLI::App *command, const std::string &name, double *value,
                const std::string &description, double shortest)
{
    constexpr double longest = 7 * 24 * 60 * 60;
    // The range would be part of the help, where it is of no use.
    command->add_option(name, *value, description)
        ->type_name("SECONDS")
        ->check(CLI::Range(shortest, longest).description(""))
        // "nan" is in every range: it compares with nothing.
        ->check(CLI::Validator(
            [](const std::string &text) {
                return text.find_first_of("nN") == std::string::npos
                    ? std::string()
                    : text + " is not a number of seconds";
            },
            ""));
}

void addNumber(CLI::App *command, const std::string &name, int *value,
               const std::string &description)
{
    command->add_option(name, *value, description)
        ->type_name("NUMBER")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()).description(""));
}

} // namespace Vorn::Tools
