#include "RecordingLoader.h"

#include "DeviceFile.h"
#include "Diagnostic.h"
#include "Evemu.h"
#include "Ioctls.h"
#include "Problems.h"
#include "RecordedDevice.h"
#include "Recording.h"
#include "TextFile.h"

#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace Vorn::Workbench {

namespace {

// The first of the files that exists; empty if none does.
QString existing(const QStringList &paths)
{
    for (const QString &path : paths) {
        if (QFileInfo::exists(path))
            return path;
    }
    return {};
}

// Reads the files beside a device file into its nodes.
class SideFiles
{
public:
    SideFiles(const QString &folder, Diagnostics *diagnostics)
        : m_folder(folder)
        , m_diagnostics(diagnostics)
    { }

    void readInto(DeviceFileNode *node) const
    {
        readEvemu(node);
        readIoctls(node);
    }

private:
    QString pathOf(const DeviceFileNode &node, const QString &suffix) const
    {
        const QString byNumber =
            m_folder + QStringLiteral("/event%1.%2").arg(node.node.number).arg(suffix);
        // The device file chooses the name, which must not lead out of the folder.
        if (node.folder.isEmpty() || node.folder.startsWith(QLatin1Char('.')))
            return existing({byNumber});
        return existing(
            {m_folder + QLatin1Char('/') + node.folder + QLatin1Char('.') + suffix, byNumber});
    }

    void readEvemu(DeviceFileNode *node) const
    {
        const QString path = pathOf(*node, QStringLiteral("evemu"));
        if (path.isEmpty())
            return;
        const auto text = readFile(path, maxRecordingSize, m_diagnostics, Pipes::Refused);
        if (!text)
            return;
        const ParsedRecording recording = parseEvemuAsRecorded(*text, path);
        *m_diagnostics += recording.diagnostics;
        node->node.events = recording.nodes.first().events;
        if (recording.nodes.first().device)
            node->node.device = recording.nodes.first().device;
    }

    void readIoctls(DeviceFileNode *node) const
    {
        const QString path = pathOf(*node, QStringLiteral("ioctl"));
        if (path.isEmpty())
            return;
        const auto text = readFile(path, maxRecordingSize, m_diagnostics, Pipes::Refused);
        if (!text)
            return;
        RecordedDevice device = node->node.device.value_or(RecordedDevice());
        *m_diagnostics += parseIoctls(*text, path, &device);
        node->node.device = device;
    }

    const QString m_folder;
    Diagnostics *const m_diagnostics;
};

// The first event of any node is at 0; the others keep their distance from it.
void startAtFirstEvent(QVector<RecordedNode> *nodes)
{
    qint64 first = std::numeric_limits<qint64>::max();
    for (const RecordedNode &node : qAsConst(*nodes)) {
        if (!node.events.isEmpty())
            first = std::min(first, node.events.first().time);
    }
    for (RecordedNode &node : *nodes) {
        for (RecordedEvent &event : node.events)
            event.time -= first;
    }
}

/// What a device file and the files beside it have to say, and do not.
Diagnostics missingParts(const ParsedRecording &recording, const QString &path)
{
    Problems problems(path);
    if (recording.nodes.isEmpty())
        problems.error(0,
                       QStringLiteral("describes no input device: there is no line like "
                                      "'N: input/event0'"));
    for (const RecordedNode &node : recording.nodes) {
        if (!node.device)
            problems.error(0,
                           QStringLiteral("event%1 is not described; its answers are missing, in "
                                          "'event%1.ioctl' in the same folder")
                               .arg(node.number));
    }
    const auto hasEvents = [](const RecordedNode &node) { return !node.events.isEmpty(); };
    if (!problems.hasErrors()
        && std::none_of(recording.nodes.cbegin(), recording.nodes.cend(), hasEvents))
        problems.warning(0,
                         QStringLiteral("no events; those of event0, for example, are read from "
                                        "'event0.evemu' in the same folder"));
    return problems.diagnostics();
}

ParsedRecording loadDeviceFile(const QByteArray &text, const QString &path)
{
    Problems problems(path);
    QVector<DeviceFileNode> nodes = readDeviceFile(text, &problems);
    ParsedRecording recording;
    recording.diagnostics = problems.diagnostics();
    const SideFiles files(QFileInfo(path).path(), &recording.diagnostics);
    for (DeviceFileNode &node : nodes) {
        files.readInto(&node);
        recording.nodes += node.node;
    }
    startAtFirstEvent(&recording.nodes);
    if (!hasErrors(recording.diagnostics))
        recording.diagnostics += missingParts(recording, path);
    return recording;
}

ParsedRecording loadEvemu(const QByteArray &text, const QString &path)
{
    ParsedRecording recording = parseEvemu(text, path);
    const RecordedNode &node = recording.nodes.first();
    if (!hasErrors(recording.diagnostics) && !node.device && node.events.isEmpty()) {
        Problems empty(path);
        empty.error(0,
                    QStringLiteral("contains neither a device (lines like 'N: panel') nor events "
                                   "(lines like 'E: 1.500000 0001 0073 0001')"));
        recording.diagnostics += empty.diagnostics();
    }
    return recording;
}

} // namespace

ParsedRecording loadRecording(const QString &path, Pipes pipes)
{
    ParsedRecording recording;
    const auto text = readFile(path, maxRecordingSize, &recording.diagnostics, pipes);
    if (!text)
        return recording;
    if (path.endsWith(QLatin1String(".umockdev")))
        return loadDeviceFile(*text, path);
    return loadEvemu(*text, path);
}

} // namespace Vorn::Workbench
