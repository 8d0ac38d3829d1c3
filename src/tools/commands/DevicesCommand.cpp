#include "Commands.h"

#include "NodeTable.h"

#include <cstdio>

namespace Vorn::Tools {

namespace {

void write(FILE *stream, const QByteArray &text)
{
    // What went wrong is asked for in the end.
    static_cast<void>(
        std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stream));
}

QVector<Workbench::NodeInfo> readDevices(const QStringList &paths)
{
    QVector<Workbench::NodeInfo> nodes;
    for (const QString &path : paths) {
        const Workbench::NodeInfo node = Workbench::readNode(path);
        // Where devices are replayed, absent ones are plain files.
        if (node.isDevice)
            nodes += node;
    }
    return nodes;
}

} // namespace

int devices(const DevicesOptions &options)
{
    QString error;
    const QVector<Workbench::NodeInfo> nodes = readDevices(Workbench::inputNodes(&error));
    if (!error.isEmpty()) {
        write(stderr, "vorn-input: " + error.toUtf8() + '\n');
        return Failure;
    }
    if (nodes.isEmpty()) {
        write(stderr,
              "vorn-input: there are no input devices in /dev/input; to try recorded ones, run "
              "'examples/player/recordings/replay.sh vorn-input devices'\n");
        return Success;
    }
    if (options.json) {
        for (const Workbench::NodeInfo &node : nodes)
            write(stdout, Workbench::nodeJson(node));
    } else {
        write(stdout,
              Workbench::nodeTable(nodes, Workbench::isColoured(options.colour, 1)).toUtf8());
    }
    return std::fflush(stdout) == 0 && !std::ferror(stdout) ? Success : Failure;
}

} // namespace Vorn::Tools
