#include "DevicesCommand.h"

#include "CommandOptions.h"
#include "ExitStatus.h"
#include "NodeTable.h"
#include "Output.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <unistd.h>

namespace Vorn::Tools {

namespace {

using namespace Workbench;

QVector<NodeInfo> readDevices(const QStringList &paths)
{
    QVector<NodeInfo> nodes;
    for (const QString &path : paths) {
        const NodeInfo node = readNode(path);
        // Where a recording is replayed, absent devices are plain files.
        if (node.isDevice)
            nodes += node;
    }
    return nodes;
}

/// How to have devices without hardware, where the recorded ones are installed.
QString recordedDevices()
{
    const QDir folder(QCoreApplication::applicationDirPath());
    const QString replay =
        QDir::cleanPath(folder.filePath(QStringLiteral(VORN_REPLAY_INSTALLED_PATH)));
    if (!QFileInfo::exists(replay))
        return {};
    return QStringLiteral("; to try it with recorded ones, run '%1 vorn-input devices'")
        .arg(replay);
}

} // namespace

CLI::App *addDevices(CLI::App *app, DevicesOptions *options)
{
    CLI::App *command = addCommand(
        app, "devices", "List the input devices",
        "Shows each /dev/input/event* node: its name, the kernel's and the library's bus,\n"
        "its keys and switches, whether it can be read, and whether the library would use\n"
        "it.\n"
        "\n"
        "Examples:\n"
        "  vorn-input devices\n"
        "  vorn-input devices --json | jq -r 'select(.used) | .name'");
    addFlag(command, "--json", &options->json, "Print one JSON object per line");
    return command;
}

int devices(const DevicesOptions &options)
{
    QString error;
    const QVector<NodeInfo> nodes = readDevices(inputNodes(&error));
    if (!error.isEmpty()) {
        printLine(stderr, QStringLiteral("vorn-input: %1").arg(error));
        return Failure;
    }
    if (nodes.isEmpty()) {
        printLine(
            stderr,
            QStringLiteral("vorn-input: no input devices in /dev/input%1").arg(recordedDevices()));
        return Success;
    }
    if (options.json) {
        for (const NodeInfo &node : nodes)
            print(stdout, nodeJson(node));
    } else {
        printText(stdout, nodeTable(nodes, isColoured(options.colour, STDOUT_FILENO)));
    }
    return Success;
}

} // namespace Vorn::Tools
