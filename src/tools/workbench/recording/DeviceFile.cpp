#include "DeviceFile.h"

#include "Bitmaps.h"
#include "LineReader.h"
#include "Problems.h"
#include "Quoting.h"
#include "RecordedDevice.h"
#include "SysfsText.h"

#include <QHash>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

// Above any number that a system uses, and small enough for all arithmetic with it.
constexpr int lastNode = 99'999;

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

/// One device of the file: an input device, the node of one, or something else altogether.
struct Block
{
    QByteArray path;
    int line = 0;
    int node = -1; ///< N of input/eventN
    bool isDescribed = false; ///< whether it says anything about an input device
    bool isFinished = false; ///< whether its bitmaps are part of `device` already
    RecordedDevice device;
    QMap<int, QByteArray> words; ///< by event type; the event types themselves at EV_SYN
    QByteArray properties;
    QByteArray alias;
};

// A backslash and a line feed are written as "\\" and "\n".
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

std::string_view withoutQuotes(std::string_view text)
{
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return text.substr(1, text.size() - 2);
    return text;
}

/*
 *             "P: path": a new block
 *   between ─────────────────────────▶ in a block ──┐ N: its node
 *   blocks  ◀───────────────────────── ▲            │ E: a property, A: H: an attribute: kept
 *      │           empty line          └────────────┘ S: L: skipped
 *      │
 *      ├─ any other line: not a device file, stop
 *      │
 *      └─ end of the file: for each block with a node, the bitmaps of its own block or of its
 *         parent's are decoded. Only now is the size of their words known, which may show in any
 *         line of the block.
 */
class DeviceFileReader
{
public:
    DeviceFileReader(const QByteArray &text, Problems *problems)
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
                // Not quoted at the start: a file that was named by a slip may hold anything.
                error(m_blocks.isEmpty()
                          ? QStringLiteral("this is no device file: it does not begin with the "
                                           "path of a device, as in 'P: /devices/…'")
                          : QStringLiteral("expected a device to start with its path, as in "
                                           "'P: /devices/…', found %1")
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
            error(QStringLiteral(
                      "expected a line starting with P:, N:, S:, L:, E:, A: or H:, found %1")
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
        } else if (kind == 'E' || kind == 'A' || kind == 'H') {
            const std::size_t equals = line.find('=');
            if (equals == std::string_view::npos) {
                error(QStringLiteral("expected a name and a value, as in 'E: NAME=value', found %1")
                          .arg(quoted(line)));
            } else if (kind == 'E') {
                parseProperty(line.substr(0, equals), line.substr(equals + 1));
            } else if (kind == 'A') {
                parseAttribute(line.substr(0, equals), line.substr(equals + 1));
            } else {
                parseBinary(line.substr(0, equals), line.substr(equals + 1));
            }
        }
    }

    // With content after the number, "event4=00", it stands for a file.
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
            error(QStringLiteral("expected the number of a node, up to %1, as in 'input/event0', "
                                 "found %2")
                      .arg(QString::number(lastNode), quoted(name)));
            return;
        }
        m_blocks.last().node = static_cast<int>(*number);
    }

    void parseProperty(std::string_view name, std::string_view value)
    {
        Block &block = m_blocks.last();
        value = withoutQuotes(value);
        if (name == "PRODUCT")
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

    // Texts that are no UTF-8; all other bytes are of no interest.
    void parseBinary(std::string_view name, std::string_view hex)
    {
        if (name != "name" && name != "phys" && name != "uniq")
            return;
        const auto bytes = toBytes(hex);
        if (bytes)
            parseText(toByteArray(name), *bytes);
        else
            error(
                QStringLiteral("expected pairs of hexadecimal digits, found %1").arg(quoted(hex)));
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

    // Other kinds of devices have a PRODUCT, too, in a form of their own: it is ignored.
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
            error(QStringLiteral("expected up to four hexadecimal digits"));
            return;
        }
        *field = *number;
        block.isDescribed = true;
    }

    // A file does not say whether it comes from a 32-bit machine or a 64-bit one. Leading zeros are
    // left out, so "1 0" is bit 32 or bit 64. The module alias lists the keys, which settles it;
    // otherwise a word that is too long or too many words do. In doubt it is 64 bits.
    static int wordSize(const Block &block)
    {
        const int lastKey = lastKeyOfAlias(block.alias);
        const auto keys = bitsOfWords(block.words.value(EV_KEY), 4);
        const QVector<int> codes = keys ? setBits(*keys) : QVector<int>();
        if (lastKey >= 0 && !codes.isEmpty() && codes.last() == lastKey)
            return 4;
        for (const QByteArray &words : block.words) {
            if (bitsOfWords(words, 8))
                continue;
            return 4;
        }
        return 8;
    }

    // Only called for blocks that a node needs: in others, "KEY" may mean anything.
    void finish(Block *block)
    {
        if (block->isFinished)
            return;
        block->isFinished = true;
        const int size = wordSize(*block);
        const auto types = bitsOfWords(block->words.value(EV_SYN), size);
        const auto properties = bitsOfWords(block->properties, size);
        bool isValid = types && properties;
        if (isValid)
            block->device.properties = properties->left(maxPropertyBytes);
        for (int type = EV_SYN + 1; isValid && type < typeCount; ++type) {
            const auto codes = bitsOfWords(block->words.value(type), size);
            if (!codes)
                isValid = false;
            else if (!codes->isEmpty() || testBit(*types, type))
                isValid = declareCodes(&block->device, type, *codes).isEmpty();
        }
        if (!isValid) {
            m_problems->error(block->line,
                              QStringLiteral("the capabilities of %1 are not valid bitmaps")
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
                                  QStringLiteral("event%1 is already described in line %2")
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

} // namespace

QVector<DeviceFileNode> readDeviceFile(const QByteArray &text, Problems *problems)
{
    return DeviceFileReader(text, problems).parse();
}

} // namespace Vorn::Workbench
