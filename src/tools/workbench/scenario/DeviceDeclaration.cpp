#include "DeviceDeclaration.h"

#include "BusNames.h"
#include "EventNames.h"
#include "LibraryFacts.h"
#include "Quoting.h"
#include "ScenarioContext.h"
#include "ScenarioLimits.h"
#include "ScenarioLine.h"

#include <QRegularExpression>

namespace Vorn::Workbench {

namespace {

/// A device while its options are being parsed.
struct Declaration
{
    ScenarioDevice device;
    bool isUnplugged = false;
    int hostlinkColumn = 0; ///< of the value of `bus=Hostlink`; 0: not given
};

QStringList options()
{
    return {QStringLiteral("name="), QStringLiteral("bus="),        QStringLiteral("node="),
            QStringLiteral("keys="), QStringLiteral("switches="),   QStringLiteral("on="),
            QStringLiteral("held="), QStringLiteral("auto-repeat"), QStringLiteral("unplugged"),
            QStringLiteral("from")};
}

std::optional<int> nodeNumber(const QString &text)
{
    bool isNumber = false;
    const QString digits = text.startsWith(QLatin1String("event")) ? text.mid(5) : text;
    const int number = digits.toInt(&isNumber);
    // "01" and "+1" would be second ways to write the same node.
    if (!isNumber || number < 0 || number > ScenarioLimit::node
        || digits != QString::number(number))
        return std::nullopt;
    return number;
}

QStringList allBusNames()
{
    QStringList names = busNames();
    for (int number = 0; number < 256; ++number) {
        const QString name = kernelBusName(number);
        if (name.startsWith(QLatin1String("BUS_")))
            names += name;
    }
    return names;
}

/// The kernel's number of a bus that is given by the library's name, the kernel's, or a number.
std::optional<int> busNumber(const QString &text)
{
    if (const std::optional<InputEvent::Bus> known = bus(text))
        return kernelBusOf(*known);
    return kernelBus(text);
}

/// The codes of `keys=KEY_A,KEY_B`; an empty value is an empty list.
QVector<int> readCodes(ScenarioLine *line, const ScenarioWord &word, bool isKey)
{
    QVector<int> list;
    int column = word.valueColumn;
    const QStringList texts =
        word.value.isEmpty() ? QStringList() : word.value.split(QLatin1Char(','));
    for (const QString &text : texts) {
        const std::optional<int> code = isKey ? keyCode(text) : switchCode(text);
        if (!code) {
            line->unknown(column, isKey ? QStringLiteral("key") : QStringLiteral("switch"), text,
                          isKey ? keyNames() : switchNames());
            break;
        }
        if (!list.contains(*code))
            list.append(*code);
        column += static_cast<int>(text.size()) + 1;
    }
    return list;
}

/// An option with a value: `name="…"`.
void readOption(ScenarioLine *line, const ScenarioWord &word, Declaration *declaration)
{
    ScenarioDevice &device = declaration->device;
    if (word.option == QLatin1String("name")) {
        // Not null, which would stand for no name given.
        device.name = word.value.isNull() ? QByteArray("") : word.value.toUtf8();
    } else if (word.option == QLatin1String("bus")) {
        device.bus = busNumber(word.value);
        if (!device.bus)
            line->unknown(word.valueColumn, QStringLiteral("bus"), word.value, allBusNames());
        if (bus(word.value) == InputEvent::Bus::Hostlink)
            declaration->hostlinkColumn = word.valueColumn;
    } else if (word.option == QLatin1String("node")) {
        device.node = nodeNumber(word.value);
        if (!device.node)
            line->error(word.valueColumn,
                        QStringLiteral("%1 is not a node; write one from event0 to event%2")
                            .arg(quoted(word.value), QString::number(ScenarioLimit::node)));
    } else if (word.option == QLatin1String("keys")) {
        device.keys = readCodes(line, word, true);
    } else if (word.option == QLatin1String("switches")) {
        device.switches = readCodes(line, word, false);
    } else if (word.option == QLatin1String("held")) {
        device.held = readCodes(line, word, true);
    } else if (word.option == QLatin1String("on")) {
        device.on = readCodes(line, word, false);
    } else {
        line->unknown(word.column, QStringLiteral("option"), word.option, options());
    }
}

void readOptions(ScenarioLine *line, Declaration *declaration)
{
    QStringList seen;
    while (line->isOk() && !line->atEnd()) {
        const ScenarioWord *word = line->take(QString());
        const QString name = word->option.isEmpty() ? word->text : word->option;
        if (seen.contains(name)) {
            line->error(QStringLiteral("%1 is given twice").arg(quoted(name)));
            return;
        }
        seen += name;
        if (!word->option.isEmpty()) {
            readOption(line, *word, declaration);
        } else if (word->text == QLatin1String("auto-repeat")) {
            declaration->device.autoRepeat = true;
        } else if (word->text == QLatin1String("unplugged")) {
            declaration->isUnplugged = true;
        } else if (word->text == QLatin1String("from")) {
            if (const ScenarioWord *file = line->take(QStringLiteral("the recording's name")))
                declaration->device.recording = line->pathTo(file->text);
        } else {
            line->unknown(word->column, QStringLiteral("option"), word->text, options());
        }
    }
}

// The library ignores the kernel's bus number here, so `bus=Hostlink` alone would have no effect.
void checkHostlink(ScenarioLine *line, const Declaration &declaration)
{
    const ScenarioDevice &device = declaration.device;
    // The name in a recording is not known before the recording is loaded.
    const bool isUnknown = !device.recording.isEmpty() && !device.name;
    if (declaration.hostlinkColumn > 0 && !isUnknown
        && device.name.value_or(device.label.toUtf8()) != hostlinkName)
        line->error(declaration.hostlinkColumn,
                    QStringLiteral("only its name puts a device on the bus Hostlink; give it "
                                   "name=\"%1\"")
                        .arg(QLatin1String(hostlinkName)));
}

void checkNode(ScenarioLine *line, const ScenarioDevice &device, const ScenarioContext &context)
{
    // Devices without node= get a free one once all files have been parsed.
    for (const ScenarioDevice &other : context.scenario().devices) {
        if (device.node && other.node == device.node)
            line->error(1,
                        QStringLiteral("event%1 is already the node of %2, line %3")
                            .arg(*device.node)
                            .arg(other.label)
                            .arg(other.line));
    }
}

bool canBeCalled(ScenarioLine *line, const ScenarioWord &label, const ScenarioContext &context)
{
    static const QRegularExpression pattern(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_-]{0,63}\\z"));
    if (label.isQuoted || !pattern.match(label.text.left(65)).hasMatch()) {
        line->error(
            QStringLiteral("%1 cannot be the name of a device; use up to 64 letters, digits, "
                           "'-' and '_', and give the kernel's name with name=\"…\"")
                .arg(quoted(label.text)));
        return false;
    }
    if (context.scenario().devices.size() >= ScenarioLimit::devices) {
        line->error(
            QStringLiteral("a scenario has at most %1 devices").arg(ScenarioLimit::devices));
        return false;
    }
    // A line that starts with it would be ambiguous.
    if (context.keywords().contains(label.text)) {
        line->error(QStringLiteral("%1 is a keyword; choose another name for the device")
                        .arg(quoted(label.text)));
        return false;
    }
    const int other = context.deviceNamed(label.text);
    if (other >= 0) {
        const ScenarioDevice &first = context.scenario().devices[other];
        line->error(QStringLiteral("%1 is already declared in %2, line %3")
                        .arg(label.text, first.file, QString::number(first.line)));
        return false;
    }
    return true;
}

} // namespace

void readDevice(ScenarioLine *line, ScenarioContext *context)
{
    const ScenarioWord *label = line->take(QStringLiteral("a name for the device"));
    if (!label || !canBeCalled(line, *label, *context))
        return;
    Declaration declaration;
    declaration.device.label = label->text;
    declaration.device.file = line->file();
    declaration.device.line = line->number();
    readOptions(line, &declaration);
    checkHostlink(line, declaration);
    checkNode(line, declaration.device, *context);
    // Even with an error: otherwise every step of the device would be an error, too.
    const int device = context->addDevice(declaration.device);
    if (line->isOk() && declaration.isUnplugged)
        return;
    context->plug(device);
    context->addStep(*line, Step::Plug{device});
}

std::optional<Replacement> readReplacement(ScenarioLine *line)
{
    Declaration other;
    while (line->isOk() && !line->atEnd()) {
        const ScenarioWord *word = line->take(QString());
        if (word->option != QLatin1String("name") && word->option != QLatin1String("bus"))
            line->unknown(word->column, QStringLiteral("option"),
                          word->option.isEmpty() ? word->text : word->option + QLatin1Char('='),
                          {QStringLiteral("name="), QStringLiteral("bus=")});
        else
            readOption(line, *word, &other);
    }
    if (line->isOk() && !other.device.name)
        line->error(QStringLiteral("the other device's name=\"…\" is missing"));
    checkHostlink(line, other);
    if (!line->isOk())
        return std::nullopt;
    return Replacement{*other.device.name, other.device.bus};
}

} // namespace Vorn::Workbench
