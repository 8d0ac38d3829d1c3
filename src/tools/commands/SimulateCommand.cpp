#include "SimulateCommand.h"

#include "CommandOptions.h"
#include "Simulation.h"

namespace Vorn::Tools {

CLI::App *addSimulate(CLI::App *app, SimulateOptions *options)
{
    CLI::App *command = addCommand(
        app, "simulate", "Run scenarios and recordings",
        "Runs scenarios through the real library, on simulated devices and in virtual\n"
        "time, and checks that everything happens as expected. A recording (*.evemu,\n"
        "*.umockdev) is played and compared with the .expect file of the same name, if\n"
        "there is one. The same input gives the same output, byte for byte.\n"
        "\n"
        "Exit status: 0 all as expected, 1 a failed expectation, 2 a file that cannot be used\n"
        "\n"
        "Examples:\n"
        "  vorn-input simulate --profile panel.toml long-press.scenario\n"
        "  vorn-input simulate scenarios/*.scenario --quiet --junit results.xml\n"
        "  vorn-input simulate --profile panel.toml lost-release/session.umockdev -t session.svg");
    addScenarioOptions(command, options);
    return command;
}

int simulate(const SimulateOptions &options)
{
    return runBatch(
        options,
        {QStringLiteral("simulate"), true,
         [](const Workbench::LoadedScenario &loaded, const Workbench::SessionLog::Sink &sink) {
             return ScenarioOutcome{Workbench::simulate(loaded, sink), {}, {}, {}};
         }});
}

} // namespace Vorn::Tools
