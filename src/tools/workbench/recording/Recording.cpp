#include "Recording.h"

#include "RecordingText.h"

#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace Vorn::Workbench {

namespace {

constexpr int messageLength = 40;

// -1 for what is no hexadecimal digit.
int digitOf(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

// -1 if none is set.
int highestBit(const QByteArray &bits)
{
    int bit = bits.size() * 8 - 1;
    while (bit >= 0 && !testBit(bits, bit))
        --bit;
    return bit;
}

// The first of the files that exists; empty if none does.
QString existing(const QStringList &paths)
{
    for (const QString &path : paths) {
        if (QFileInfo::exists(path))
            return path;
    }
    return {};
}

// Reads the files that lie beside a device file into one of its nodes.
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
        // The name comes from the file, so it must not lead out of the folder.
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
        const auto text = readFile(path, maxRecordingSize, m_diagnostics);
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
        const auto text = readFile(path, maxRecordingSize, m_diagnostics);
        if (!text)
            return;
        RecordedDevice device = node->node.device.value_or(RecordedDevice());
        *m_diagnostics += parseIoctls(*text, path, &device);
        node->node.device = device;
    }

    const QString m_folder;
    Diagnostics *const m_diagnostics;
};

// All nodes begin together, with the first event of any.
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

    const auto hasEvents = [](const RecordedNode &node) { return !node.events.isEmpty(); };
    if (!hasErrors(recording.diagnostics)
        && std::none_of(recording.nodes.cbegin(), recording.nodes.cend(), hasEvents))
    {
        Problems empty(path);
        empty.warning(0,
                      QStringLiteral("no events; they are looked for beside the file, as "
                                     "'event0.evemu' for the node event0"));
        recording.diagnostics += empty.diagnostics();
    }
    return recording;
}

} // namespace

void Problems::error(int line, const QString &message)
{
    if (m_errors++ < limit)
        m_diagnostics += Diagnostic{Diagnostic::Severity::Error, m_file, line, 0, message};
}

void Problems::warning(int line, const QString &message)
{
    if (m_warnings++ < limit)
        m_diagnostics += Diagnostic{Diagnostic::Severity::Warning, m_file, line, 0, message};
}

bool LineReader::next()
{
    if (m_rest.empty())
        return false;
    const std::size_t end = std::min(m_rest.find('\n'), m_rest.size());
    m_line = m_rest.substr(0, end);
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    ++m_number;
    return true;
}

std::string_view takeField(std::string_view *rest)
{
    constexpr char blanks[] = " \t\r";
    rest->remove_prefix(std::min(rest->find_first_not_of(blanks), rest->size()));
    const std::size_t end = std::min(rest->find_first_of(blanks), rest->size());
    const std::string_view field = rest->substr(0, end);
    rest->remove_prefix(end);
    return field;
}

std::optional<QByteArray> toBytes(std::string_view hex)
{
    if (hex.size() % 2 != 0)
        return std::nullopt;
    QByteArray bytes;
    bytes.reserve(static_cast<int>(hex.size() / 2));
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const int high = digitOf(hex[i]);
        const int low = digitOf(hex[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

QString quoted(std::string_view text)
{
    QString shown =
        QString::fromUtf8(text.data(), static_cast<int>(std::min<std::size_t>(text.size(), 200)));
    if (shown.size() > messageLength)
        shown = shown.left(messageLength) + QChar(0x2026);
    for (QChar &character : shown) {
        if (!character.isPrint())
            character = QLatin1Char('?');
    }
    return QLatin1Char('\'') + shown + QLatin1Char('\'');
}

QByteArray toByteArray(std::string_view text)
{
    return {text.data(), static_cast<int>(text.size())};
}

QByteArray kernelText(const QByteArray &bytes)
{
    const int end = bytes.indexOf('\0');
    return end < 0 ? bytes : bytes.left(end);
}

bool testBit(const QByteArray &bits, int bit)
{
    return bit >= 0 && bit / 8 < bits.size() && ((bits.at(bit / 8) >> (bit % 8)) & 1) != 0;
}

void setBit(QByteArray *bits, int bit)
{
    if (bit / 8 >= bits->size())
        *bits = padded(*bits, bit / 8 + 1);
    (*bits)[bit / 8] = static_cast<char>(bits->at(bit / 8) | (1 << (bit % 8)));
}

QVector<int> setBits(const QByteArray &bits)
{
    QVector<int> set;
    for (int bit = 0; bit < bits.size() * 8; ++bit) {
        if (testBit(bits, bit))
            set += bit;
    }
    return set;
}

QByteArray withoutTrailingZeros(QByteArray bits)
{
    int size = bits.size();
    while (size > 0 && bits.at(size - 1) == '\0')
        --size;
    bits.truncate(size);
    return bits;
}

QByteArray padded(const QByteArray &bits, int size)
{
    return bits.leftJustified(size, '\0', true);
}

int codeCount(int type)
{
    switch (type) {
    case EV_KEY:
        return KEY_CNT;
    case EV_REL:
        return REL_CNT;
    case EV_ABS:
        return ABS_CNT;
    case EV_MSC:
        return MSC_CNT;
    case EV_SW:
        return SW_CNT;
    case EV_LED:
        return LED_CNT;
    case EV_SND:
        return SND_CNT;
    case EV_REP:
        return REP_CNT;
    case EV_FF:
        return FF_CNT;
    default:
        return 0;
    }
}

int bitmapSize(int type)
{
    return (codeCount(type) + 63) / 64 * 8;
}

QByteArray typeBits(const RecordedDevice &device)
{
    QByteArray bits;
    setBit(&bits, EV_SYN);
    for (auto it = device.codes.keyBegin(); it != device.codes.keyEnd(); ++it)
        setBit(&bits, *it);
    return bits;
}

QString declareCodes(RecordedDevice *device, int type, const QByteArray &bits)
{
    const QByteArray codes = withoutTrailingZeros(bits);
    if (codeCount(type) > 0 && highestBit(codes) >= codeCount(type))
        return QStringLiteral("codes beyond %1, which is the last one of event type %2")
            .arg(codeCount(type) - 1)
            .arg(type);
    // Types without codes of their own may come with any: they say nothing.
    device->codes.insert(type, codeCount(type) > 0 ? codes : QByteArray());
    return {};
}

bool RecordedDevice::has(int type, int code) const
{
    return testBit(codes.value(type), code);
}

QVector<int> RecordedDevice::codesOf(int type) const
{
    return setBits(codes.value(type));
}

void RecordedDevice::declare(int type, int code)
{
    if (type <= EV_SYN || type >= typeCount || code < 0)
        return;
    QByteArray &bits = codes[type];
    if (code < codeCount(type))
        setBit(&bits, code);
}

ParsedRecording loadRecording(const QString &path)
{
    ParsedRecording recording;
    const auto text = readFile(path, maxRecordingSize, &recording.diagnostics);
    if (!text)
        return recording;
    if (path.endsWith(QLatin1String(".umockdev")))
        return loadDeviceFile(*text, path);
    return parseEvemu(*text, path);
}

} // namespace Vorn::Workbench
