#include "Ioctls.h"

#include "Bitmaps.h"
#include "Diagnostic.h"
#include "LibraryFacts.h"
#include "LineReader.h"
#include "Problems.h"
#include "Quoting.h"
#include "RecordedDevice.h"

#include <algorithm>
#include <cstring>

namespace Vorn::Workbench {

namespace {

// The answer to EVIOCGVERSION.
constexpr quint32 driverVersion = 0x010001;
// The kernel's delay and period of auto-repeat, in ms.
constexpr quint32 repeatDelay = 250;
constexpr quint32 repeatPeriod = 33;
// A replay answers a request only if a line has its exact size, so there is a line for each size
// that the library, libevdev and common tools use.
constexpr int textSizes[] = {scanNameBytes, listenerNameBytes};

/// The longest answer to one request.
struct Answer
{
    QByteArray bytes;
    int line = 0;
};

// The 1 of "EVIOCGBIT(1)", if that is the name of the call; -1 otherwise.
int argumentOf(std::string_view call, std::string_view name)
{
    if (call.substr(0, name.size()) != name || call.size() < name.size() + 3
        || call[name.size()] != '(' || call.back() != ')')
        return -1;
    call.remove_prefix(name.size() + 1);
    call.remove_suffix(1);
    const auto number = toNumber<quint16>(call);
    return number ? *number : -1;
}

/*
 *  Requests of several sizes share a name, and each answer holds as much as fitted:
 *
 *  EVIOCGNAME(0) 4 70616e65       ──┐  the longest one of each request
 *  EVIOCGNAME(0) 6 70616e656c00   ──┴─▶ is kept ──┐
 *  EVIOCGBIT(0) 8 03…             ────▶           ├─ end of the file ─▶ device: whatever was not
 *  EVIOCGBIT(1) 96 …              ────▶           ┘                     answered stays as it is
 */
class IoctlParser
{
public:
    IoctlParser(const QByteArray &text, const QString &file)
        : m_lines(text)
        , m_problems(file)
    { }

    Diagnostics parse(RecordedDevice *device)
    {
        while (!m_problems.isFull() && m_lines.next())
            parseLine(m_lines.line());
        if (!m_hasAnswers)
            m_problems.error(0,
                             QStringLiteral("contains no answers of a device, lines like "
                                            "'EVIOCGID 0 1900010001000100'"));
        describe(device);
        return m_problems.diagnostics();
    }

private:
    void parseLine(std::string_view line)
    {
        const std::string_view call = takeField(&line);
        constexpr std::string_view known = "EVIOCG";
        if (call.substr(0, known.size()) != known)
            return;
        m_hasAnswers = true;
        const std::string_view resultText = takeField(&line);
        const auto result = toNumber<qint32>(resultText);
        if (!result) {
            m_problems.error(m_lines.number(),
                             QStringLiteral("expected the result of the ioctl, found %1")
                                 .arg(quoted(resultText)));
            return;
        }
        // The request failed.
        if (*result < 0)
            return;
        const std::string_view hex = takeField(&line);
        const auto bytes = toBytes(hex);
        if (!bytes) {
            m_problems.error(
                m_lines.number(),
                QStringLiteral("expected pairs of hexadecimal digits, found %1").arg(quoted(hex)));
            return;
        }
        keep(call, *bytes);
    }

    void keep(std::string_view call, const QByteArray &bytes)
    {
        const int type = argumentOf(call, "EVIOCGBIT");
        if (type >= 0)
            keepLongest(bytes, &m_codes[type]);
        else if (call == "EVIOCGID")
            keepLongest(bytes, &m_id);
        else if (argumentOf(call, "EVIOCGNAME") == 0)
            keepLongest(bytes, &m_name);
        else if (argumentOf(call, "EVIOCGPHYS") == 0)
            keepLongest(bytes, &m_phys);
        else if (argumentOf(call, "EVIOCGUNIQ") == 0)
            keepLongest(bytes, &m_uniq);
        else if (argumentOf(call, "EVIOCGPROP") == 0)
            keepLongest(bytes, &m_properties);
        else if (argumentOf(call, "EVIOCGKEY") == 0)
            keepLongest(bytes, &m_keys);
        else if (argumentOf(call, "EVIOCGSW") == 0)
            keepLongest(bytes, &m_switches);
    }

    void keepLongest(const QByteArray &bytes, std::optional<Answer> *answer) const
    {
        if (!*answer || (*answer)->bytes.size() < bytes.size())
            *answer = Answer{bytes, m_lines.number()};
    }

    void describe(RecordedDevice *device)
    {
        if (m_id) {
            if (m_id->bytes.size() == static_cast<int>(sizeof(device->id)))
                std::memcpy(&device->id, m_id->bytes.constData(), sizeof(device->id));
            else
                m_problems.error(m_id->line, QStringLiteral("expected an identity of 8 bytes"));
        }
        if (m_name)
            device->name = kernelText(m_name->bytes);
        if (m_phys)
            device->phys = kernelText(m_phys->bytes);
        if (m_uniq)
            device->uniq = kernelText(m_uniq->bytes);
        if (m_properties)
            device->properties = withoutTrailingZeros(m_properties->bytes.left(maxPropertyBytes));
        if (m_keys)
            device->keysDown = setBits(m_keys->bytes.left(KEY_CNT / 8));
        if (m_switches)
            device->switchesOn = codesOfSwitches(m_switches->bytes);
        describeCodes(device);
    }

    static QVector<int> codesOfSwitches(const QByteArray &bytes)
    {
        QVector<int> codes = setBits(bytes.left((SW_CNT + 7) / 8));
        while (!codes.isEmpty() && codes.last() >= SW_CNT)
            codes.removeLast();
        return codes;
    }

    void describeCodes(RecordedDevice *device)
    {
        const std::optional<Answer> types = m_codes.value(EV_SYN);
        for (int type = EV_SYN + 1; type < typeCount; ++type) {
            const std::optional<Answer> codes = m_codes.value(type);
            const bool isDeclared = types && testBit(types->bytes, type);
            if (codes && (isDeclared || !withoutTrailingZeros(codes->bytes).isEmpty())) {
                const QString problem = declareCodes(device, type, codes->bytes);
                if (!problem.isEmpty())
                    m_problems.error(codes->line, problem);
            } else if (isDeclared && !device->has(type)) {
                device->codes.insert(type, {});
            }
        }
    }

    LineReader m_lines;
    Problems m_problems;
    bool m_hasAnswers = false;
    std::optional<Answer> m_id;
    std::optional<Answer> m_name;
    std::optional<Answer> m_phys;
    std::optional<Answer> m_uniq;
    std::optional<Answer> m_properties;
    std::optional<Answer> m_keys;
    std::optional<Answer> m_switches;
    QMap<int, std::optional<Answer>> m_codes;
};

QByteArray line(const QByteArray &call, int result, const QByteArray &bytes)
{
    return call + ' ' + QByteArray::number(result) + ' ' + bytes.toHex() + '\n';
}

QByteArray textLines(const QByteArray &call, const QByteArray &text)
{
    QByteArray lines;
    const int whole = static_cast<int>(text.size()) + 1;
    for (const int size : textSizes)
        lines += line(call, qMin(whole, size), padded(text, size));
    return lines;
}

/// A line for each size. The kernel fills as much as it has and returns how much that is.
QByteArray bitLines(const QByteArray &call, const QByteArray &bits, int kernelSize,
                    QVector<int> sizes)
{
    std::sort(sizes.begin(), sizes.end());
    sizes.erase(std::unique(sizes.begin(), sizes.end()), sizes.end());
    QByteArray lines;
    for (const int size : qAsConst(sizes))
        lines +=
            line(call, qMin(size, kernelSize), padded(padded(bits, qMin(size, kernelSize)), size));
    return lines;
}

QByteArray bitsOfCodes(const QVector<int> &codes, int count)
{
    QByteArray bits;
    for (const int code : codes) {
        if (code >= 0 && code < count)
            setBit(&bits, code);
    }
    return bits;
}

QByteArray structure(quint32 first, std::optional<quint32> second = {})
{
    QByteArray bytes(reinterpret_cast<const char *>(&first), sizeof(first));
    if (second)
        bytes += QByteArray(reinterpret_cast<const char *>(&*second), sizeof(*second));
    return bytes;
}

// The sizes that libevdev uses, whose bitmaps are made of words of 64 bits, or of 32.
QVector<int> usualSizes(int type)
{
    const int size = bitmapSize(type);
    return size == 8 ? QVector<int>{4, 8} : QVector<int>{size};
}

} // namespace

Diagnostics parseIoctls(const QByteArray &text, const QString &file, RecordedDevice *device)
{
    return IoctlParser(text, file).parse(device);
}

QByteArray ioctls(const RecordedDevice &device)
{
    QByteArray text = line("EVIOCGVERSION", 0, structure(driverVersion));
    text += line("EVIOCGID", 0,
                 QByteArray(reinterpret_cast<const char *>(&device.id), sizeof(device.id)));
    if (!device.name.isNull())
        text += textLines("EVIOCGNAME(0)", device.name);
    if (!device.phys.isEmpty())
        text += textLines("EVIOCGPHYS(0)", device.phys);
    if (!device.uniq.isEmpty())
        text += textLines("EVIOCGUNIQ(0)", device.uniq);
    text += bitLines("EVIOCGPROP(0)", device.properties, maxPropertyBytes, {4, maxPropertyBytes});
    text += bitLines("EVIOCGBIT(0)", typeBits(device), 8, {4, 8, typeBytes});
    for (int type = EV_SYN + 1; type < typeCount; ++type) {
        if (codeCount(type) == 0 || type == EV_REP)
            continue;
        text += bitLines("EVIOCGBIT(" + QByteArray::number(type) + ')', device.codes.value(type),
                         bitmapSize(type), usualSizes(type));
    }
    if (device.has(EV_REP))
        text += line("EVIOCGREP", 0, structure(repeatDelay, repeatPeriod));
    text += bitLines("EVIOCGKEY(0)", bitsOfCodes(device.keysDown, KEY_CNT), bitmapSize(EV_KEY),
                     {stateBytes, bitmapSize(EV_KEY)});
    text += bitLines("EVIOCGLED(0)", {}, 8, {4, 8});
    text += bitLines("EVIOCGSND(0)", {}, 8, {4, 8});
    text += bitLines("EVIOCGSW(0)", bitsOfCodes(device.switchesOn, SW_CNT), 8, {stateBytes, 8});
    return text;
}

} // namespace Vorn::Workbench
