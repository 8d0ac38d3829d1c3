#include "Umockdev.h"

#include "DeviceFile.h"
#include "Problems.h"
#include "RecordedDevice.h"
#include "Recording.h"
#include "SysfsText.h"

namespace Vorn::Workbench {

namespace {

// Device numbers of evdev: event0 to event31 have minor numbers from 64, later nodes from 256.
constexpr int evdevMajor = 13;
constexpr int firstMinor = 64;
constexpr int numberedNodes = 32;
constexpr int firstFreeMinor = 256;

// A line feed would end the line.
QByteArray escaped(QByteArray text)
{
    return text.replace('\\', "\\\\").replace('\n', "\\n");
}

// umockdev refuses a whole file for bytes that are no UTF-8, and takes CR for the end of a line.
bool isPlain(const QByteArray &text)
{
    return !text.contains('\r') && QString::fromUtf8(text).toUtf8() == text;
}

QByteArray attribute(const QByteArray &name, const QByteArray &value)
{
    if (!isPlain(value))
        return "H: " + name + '=' + value.toHex().toUpper() + '\n';
    return "A: " + name + '=' + escaped(value) + '\n';
}

QByteArray identityNumber(const QByteArray &name, int number)
{
    return attribute("id/" + name, QByteArray::number(number, 16).rightJustified(4, '0'));
}

} // namespace

ParsedRecording parseUmockdev(const QByteArray &text, const QString &file)
{
    Problems problems(file);
    ParsedRecording recording;
    const QVector<DeviceFileNode> nodes = readDeviceFile(text, &problems);
    for (const DeviceFileNode &node : nodes)
        recording.nodes += node.node;
    recording.diagnostics = problems.diagnostics();
    return recording;
}

QByteArray umockdevBlock(int number, const RecordedDevice &device)
{
    const QByteArray digits = QByteArray::number(number);
    const QByteArray path = "P: /devices/virtual/input/input" + digits;
    const int minor =
        number < numberedNodes ? firstMinor + number : firstFreeMinor + number - numberedNodes;

    // Two devices as in sysfs: the input device with all attributes, and its node.
    QByteArray text = path + "\nE: SUBSYSTEM=input\n";
    text += identityNumber("bustype", device.id.bustype);
    text += identityNumber("vendor", device.id.vendor);
    text += identityNumber("product", device.id.product);
    text += identityNumber("version", device.id.version);
    text += attribute("name", device.name);
    text += attribute("phys", device.phys);
    text += attribute("uniq", device.uniq);
    text += attribute("properties", wordsOfBits(device.properties));
    text += attribute("capabilities/ev", wordsOfBits(typeBits(device)));
    // Types that sysfs does not list, EV_REP for example, show in "ev" alone.
    for (auto it = typesByName().cbegin(); it != typesByName().cend(); ++it) {
        if (*it != EV_SYN && device.has(*it))
            text += attribute("capabilities/" + it.key(), wordsOfBits(device.codes.value(*it)));
    }
    text += '\n' + path + "/event" + digits + '\n';
    text += "N: input/event" + digits + '\n';
    text += "E: DEVNAME=/dev/input/event" + digits + '\n';
    text += "E: SUBSYSTEM=input\n";
    text += "A: dev=" + QByteArray::number(evdevMajor) + ':' + QByteArray::number(minor) + '\n';
    return text;
}

} // namespace Vorn::Workbench
