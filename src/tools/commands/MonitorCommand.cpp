#include "MonitorCommand.h"

#include "CommandOptions.h"
#include "ExitStatus.h"
#include "LiveView.h"

namespace Vorn::Tools {

CLI::App *addMonitor(CLI::App *app, MonitorOptions *options)
{
    CLI::App *command = addCommand(
        app, "monitor", "Show what devices send and what the library makes of it",
        "Shows live what the library publishes, with time, device and latency. Without a\n"
        "profile it shows the codes that arrive and the registrations they would need.\n"
        "Devices may come and go and the profile may be edited while it runs. Ctrl-C or q\n"
        "ends it; digits select identifiers, r shows or hides the records, s shows what the\n"
        "library believes about the keys.\n"
        "\n"
        "Examples:\n"
        "  vorn-input monitor\n"
        "  vorn-input monitor --profile panel.toml --raw\n"
        "  vorn-input monitor --profile panel.toml --state\n"
        "  vorn-input monitor --profile panel.toml --record lost-release");
    addFile(command, "-p,--profile", &options->profile, "Profile: what the devices' keys mean",
            "FILE");
    addText(command, "--id", &options->identifier,
            "Identifier to select first (default: the profile's)", "ID");
    addFlag(command, "--raw", &options->raw, "Show the records next to the events");
    addFlag(command, "--state", &options->state,
            "Show what the library believes down, held back and timed, whenever it changes");
    addFlag(command, "--json", &options->json, "Print one JSON object per line");
    addFile(command, "--record", &options->record,
            "Record the session to a new folder, for umockdev-run, evemu-play and vorn-input "
            "simulate",
            "DIR");
    addFlag(command, "--show-text", &options->showText,
            "Record typed characters as they are instead of blanking them");
    addSeconds(command, "--duration", &options->duration, "End after this many seconds");
    return command;
}

int monitor(const MonitorOptions &options)
{
    LiveView view(options);
    const int status = view.prepare();
    return status == Success ? view.run() : status;
}

} // namespace Vorn::Tools
