#include "Umockdev.h"

#include "Bitmaps.h"
#include "LineReader.h"
#include "Problems.h"
#include "Quoting.h"
#include "RecordedDevice.h"
#include "Recording.h"

#include <QHash>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

// evdev's nodes: the first 32 have minor numbers of their own, the others follow at 256.
constexpr int evdevMajor = 13;
constexpr int firstMinor = 64;
constexpr int numberedNodes = 32;
constexpr int firstFreeMinor = 256;
// More than a system can have.
constexpr int lastNode = 99'999;

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

/// A device in the file, which may be an input device, the node of one, or anything else.
struct Block
{
    QByteArray path;
    int line = 0;
    int node = -1; ///< N of input/eventN
    bool isDescribed = false;
    bool isFinished = false;
    RecordedDevice device;
    QMap<int, QByteArray> words; ///< by event type; the event types themselves at EV_SYN
    QByteArray properties;
    QByteArray alias;
};

// Writers replace what would end the line.
QByteArray unescaped(std::string_view text)
{
    QByteArray result;
    result.reserve(static_cast<int>(text.size()));
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            ++i;
            result += text[i] == 'n' ? '\n' : text[i];
        } else {
            result += text[i];
        }
    }
    return result;
}

QByteArray escaped(QByteArray text)
{
    return text.replace('\\', "\\\\").replace('\n', "\\n");
}

std::string_view withoutQuotes(std::string_view text)
{
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return text.substr(1, text.size() - 2);
    return text;
}

const QHash<QByteArray, int> &typesByName()
{
    static const QHash<QByteArray, int> types{{"ev", EV_SYN},  {"key", EV_KEY}, {"rel", EV_REL},
                                              {"abs", EV_ABS}, {"msc", EV_MSC}, {"led", EV_LED},
                                              {"snd", EV_SND}, {"ff", EV_FF},   {"sw", EV_SW}};
    return types;
}

/// A bitmap from words of the recorded machine, the highest first.
/// @return nothing if they are no words of that size, or too many
std::optional<QByteArray> bitsOf(const QByteArray &words, int wordSize)
{
    QByteArray highestFirst;
    std::string_view rest(words.constData(), static_cast<std::size_t>(words.size()));
    for (std::string_view field = takeField(&rest); !field.empty(); field = takeField(&rest)) {
        const auto word = toNumber<quint64>(field, 16);
        if (!word || field.size() > static_cast<std::size_t>(wordSize) * 2
            || highestFirst.size() >= KEY_CNT / 8)
            return std::nullopt;
        for (int byte = wordSize - 1; byte >= 0; --byte)
            highestFirst += static_cast<char>(*word >> (8 * byte));
    }
    QByteArray bits;
    bits.reserve(highestFirst.size());
    for (int i = highestFirst.size() - 1; i >= 0; --i)
        bits += highestFirst.at(i);
    return withoutTrailingZeros(bits);
}

/// The last key of "input:b0019v0001p0001e0001-e0,1,k72,73,166,ramlsfw"; -1 without any.
int lastKeyOfAlias(const QByteArray &alias)
{
    const int start = alias.indexOf(",k", alias.indexOf("-e"));
    const int end = alias.indexOf(",r", start);
    if (start < 0 || end < 0)
        return -1;
    const int last = alias.lastIndexOf(',', end - 1) + 1;
    bool isNumber = false;
    const int code = alias.mid(last, end - last).replace("k", "").toInt(&isNumber, 16);
    return isNumber ? code : -1;
}

class DeviceFileParser
{
public:
    DeviceFileParser(const QByteArray &text, Problems *problems)
        : m_lines(text)
        , m_problems(problems)
    { }

    QVector<DeviceFileNode> parse()
    {
        bool isBetween = true;
        while (!m_problems->isFull() && m_lines.next()) {
            const std::string_view line = m_lines.line();
            if (line.empty() || line == "\r") {
                isBetween = true;
            } else if (isBetween && !startsWith(line, "P: ")) {
                error(QStringLiteral("a device begins with its path, as in 'P: /devices/…', "
                                     "found %1")
                          .arg(quoted(line)));
                return {};
            } else {
                isBetween = false;
                parseLine(line);
            }
        }
        return nodes();
    }

private:
    void error(const QString &message) { m_problems->error(m_lines.number(), message); }

    void parseLine(std::string_view line)
    {
        constexpr std::string_view kinds = "PNSLEAH";
        if (line.size() < 2 || kinds.find(line[0]) == std::string_view::npos || line[1] != ':') {
            error(QStringLiteral("expected a line of P:, N:, S:, L:, E:, A: or H:, found %1")
                      .arg(quoted(line)));
            return;
        }
        const char kind = line[0];
        line.remove_prefix(line.size() > 2 && line[2] == ' ' ? 3 : 2);
        if (kind == 'P') {
            Block block;
            block.path = toByteArray(line);
            block.line = m_lines.number();
            m_blocks += block;
        } else if (kind == 'N') {
            parseNode(line);
        } else if (kind == 'E' || kind == 'A') {
            const std::size_t equals = line.find('=');
            if (equals == std::string_view::npos) {
                error(QStringLiteral("expected a name and a value, as in 'E: NAME=value', found %1")
                          .arg(quoted(line)));
            } else if (kind == 'E') {
                parseProperty(line.substr(0, equals), line.substr(equals + 1));
            } else {
                parseAttribute(line.substr(0, equals), line.substr(equals + 1));
            }
        }
    }

    // With a content behind the number it is a file, and no device.
    void parseNode(std::string_view name)
    {
        constexpr std::string_view prefix = "input/event";
        if (!startsWith(name, prefix))
            return;
        name.remove_prefix(prefix.size());
        if (name.find('=') != std::string_view::npos)
            return;
        const auto number = toNumber<quint32>(name);
        if (!number || *number > lastNode) {
            error(QStringLiteral("expected the number of a node, as in 'input/event0', found %1")
                      .arg(quoted(name)));
            return;
        }
        m_blocks.last().node = static_cast<int>(*number);
    }

    void parseProperty(std::string_view name, std::string_view value)
    {
        Block &block = m_blocks.last();
        value = withoutQuotes(value);
        if (name == "PRODUCT" && !startsWith(value, "/"))
            parseProduct(value);
        else if (name == "MODALIAS")
            block.alias = toByteArray(value);
        else
            parseText(toByteArray(name).toLower(), unescaped(value));
    }

    void parseAttribute(std::string_view name, std::string_view value)
    {
        constexpr std::string_view capabilities = "capabilities/";
        constexpr std::string_view identity = "id/";
        if (startsWith(name, identity)) {
            parseIdentity(name.substr(identity.size()), value);
        } else if (name == "properties") {
            parseText("prop", toByteArray(value));
        } else if (name == "modalias") {
            m_blocks.last().alias = toByteArray(value);
        } else if (startsWith(name, capabilities)) {
            parseText(toByteArray(name.substr(capabilities.size())), toByteArray(value));
        } else if (!typesByName().contains(toByteArray(name))) {
            parseText(toByteArray(name), unescaped(value));
        }
    }

    void parseText(const QByteArray &name, const QByteArray &value)
    {
        Block &block = m_blocks.last();
        const auto type = typesByName().constFind(name);
        if (type != typesByName().cend())
            block.words[*type] = value;
        else if (name == "prop")
            block.properties = value;
        else if (name == "name")
            block.device.name = kernelText(value);
        else if (name == "phys")
            block.device.phys = kernelText(value);
        else if (name == "uniq")
            block.device.uniq = kernelText(value);
        else
            return;
        block.isDescribed = true;
    }

    // Other kinds of devices have a PRODUCT of another form, which tells nothing.
    void parseProduct(std::string_view value)
    {
        __u16 numbers[4] = {};
        for (__u16 &number : numbers) {
            const std::size_t end = std::min(value.find('/'), value.size());
            const auto parsed = toNumber<quint16>(value.substr(0, end), 16);
            if (!parsed)
                return;
            number = *parsed;
            value.remove_prefix(std::min(end + 1, value.size()));
        }
        m_blocks.last().device.id = {numbers[0], numbers[1], numbers[2], numbers[3]};
        m_blocks.last().isDescribed = true;
    }

    void parseIdentity(std::string_view name, std::string_view value)
    {
        Block &block = m_blocks.last();
        const auto number = toNumber<quint16>(takeField(&value), 16);
        __u16 *field = name == "bustype" ? &block.device.id.bustype
            : name == "vendor"           ? &block.device.id.vendor
            : name == "product"          ? &block.device.id.product
            : name == "version"          ? &block.device.id.version
                                         : nullptr;
        if (!field)
            return;
        if (!number) {
            error(QStringLiteral("expected four hexadecimal digits"));
            return;
        }
        *field = *number;
        block.isDescribed = true;
    }

    // The words are those of the machine where the file was written, which it does not tell.
    static int wordSize(const Block &block)
    {
        const int lastKey = lastKeyOfAlias(block.alias);
        const auto keys = bitsOf(block.words.value(EV_KEY), 4);
        if (lastKey >= 0 && keys && !setBits(*keys).isEmpty() && setBits(*keys).last() == lastKey)
            return 4;
        for (const QByteArray &words : block.words) {
            if (bitsOf(words, 8))
                continue;
            return 4;
        }
        return 8;
    }

    // Of other kinds of devices nothing is understood, so only what a node needs is looked at.
    void finish(Block *block)
    {
        if (block->isFinished)
            return;
        block->isFinished = true;
        const int size = wordSize(*block);
        const auto types = bitsOf(block->words.value(EV_SYN), size);
        const auto properties = bitsOf(block->properties, size);
        bool isValid = types && properties;
        if (isValid)
            block->device.properties = properties->left(maxPropertyBytes);
        for (int type = EV_SYN + 1; isValid && type < typeCount; ++type) {
            const auto codes = bitsOf(block->words.value(type), size);
            if (!codes)
                isValid = false;
            else if (!codes->isEmpty() || testBit(*types, type))
                isValid = declareCodes(&block->device, type, *codes).isEmpty();
        }
        if (!isValid) {
            m_problems->error(block->line,
                              QStringLiteral("the capabilities of %1 are no bitmaps of codes")
                                  .arg(quoted(QString::fromUtf8(block->path))));
        }
    }

    RecordedDevice deviceOf(Block *block)
    {
        finish(block);
        return block->device;
    }

    QVector<DeviceFileNode> nodes()
    {
        QHash<QByteArray, int> byPath;
        for (int i = 0; i < m_blocks.size(); ++i)
            byPath.insert(m_blocks.at(i).path, i);
        QVector<DeviceFileNode> nodes;
        QHash<int, int> lines;
        for (Block &block : m_blocks) {
            if (block.node < 0)
                continue;
            if (lines.contains(block.node)) {
                m_problems->error(block.line,
                                  QStringLiteral("event%1 is described in line %2 already")
                                      .arg(block.node)
                                      .arg(lines.value(block.node)));
                continue;
            }
            lines.insert(block.node, block.line);
            const QByteArray folder = block.path.left(qMax(0, block.path.lastIndexOf('/')));
            DeviceFileNode node;
            node.folder = QString::fromUtf8(folder.mid(folder.lastIndexOf('/') + 1));
            node.node.number = block.node;
            const auto parent = byPath.constFind(folder);
            if (block.isDescribed)
                node.node.device = deviceOf(&block);
            else if (parent != byPath.cend() && m_blocks.at(*parent).isDescribed)
                node.node.device = deviceOf(&m_blocks[*parent]);
            nodes += node;
        }
        return nodes;
    }

    LineReader m_lines;
    Problems *const m_problems;
    QVector<Block> m_blocks;
};

// Words are written in full, so that their size shows.
QByteArray wordsOf(const QByteArray &bits)
{
    constexpr int wordSize = 8;
    QByteArray words;
    const int count = qMax(1, (bits.size() + wordSize - 1) / wordSize);
    const QByteArray whole = padded(bits, count * wordSize);
    for (int i = whole.size() - 1; i >= 0; --i) {
        words += whole.mid(i, 1).toHex();
        if (i > 0 && i % wordSize == 0)
            words += ' ';
    }
    return words;
}

QByteArray attribute(const QByteArray &name, const QByteArray &value)
{
    return "A: " + name + '=' + escaped(value) + '\n';
}

QByteArray identityNumber(const QByteArray &name, int number)
{
    return attribute("id/" + name, QByteArray::number(number, 16).rightJustified(4, '0'));
}

} // namespace

QVector<DeviceFileNode> readDeviceFile(const QByteArray &text, Problems *problems)
{
    return DeviceFileParser(text, problems).parse();
}

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

    QByteArray text = path + "\nE: SUBSYSTEM=input\n";
    text += identityNumber("bustype", device.id.bustype);
    text += identityNumber("vendor", device.id.vendor);
    text += identityNumber("product", device.id.product);
    text += identityNumber("version", device.id.version);
    text += attribute("name", device.name);
    text += attribute("phys", device.phys);
    text += attribute("uniq", device.uniq);
    text += attribute("properties", wordsOf(device.properties));
    text += attribute("capabilities/ev", wordsOf(typeBits(device)));
    for (auto it = typesByName().cbegin(); it != typesByName().cend(); ++it) {
        if (*it != EV_SYN && device.has(*it))
            text += attribute("capabilities/" + it.key(), wordsOf(device.codes.value(*it)));
    }
    text += '\n' + path + "/event" + digits + '\n';
    text += "N: input/event" + digits + '\n';
    text += "E: DEVNAME=/dev/input/event" + digits + '\n';
    text += "E: SUBSYSTEM=input\n";
    text += "A: dev=" + QByteArray::number(evdevMajor) + ':' + QByteArray::number(minor) + '\n';
    return text;
}

} // namespace Vorn::Workbench
