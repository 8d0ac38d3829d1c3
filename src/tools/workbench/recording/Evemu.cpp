#include "Evemu.h"

#include "Bitmaps.h"
#include "LineReader.h"
#include "Problems.h"
#include "Quoting.h"
#include "RecordedDevice.h"
#include "Recording.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace Vorn::Workbench {

namespace {

constexpr qint64 second = 1'000'000;
// In the year 5138. The limit keeps microseconds within 64 bits.
constexpr quint64 lastSecond = 100'000'000'000;

/*
 *  Each line stands for itself, so there is no state but what has been collected:
 *
 *  N I P B S ──▶ name, identity, properties, bytes of codes, switches ──┐
 *  E ──────────▶ events, never earlier than the one before              │
 *  A L, # ─────▶ skipped                                                │
 *                                                                       ▼
 *  end of the file: bitmaps are continued over several lines, so only now codes are checked
 *  and become a device; without any of N I P B S there is none
 */
class EvemuParser
{
public:
    EvemuParser(const QByteArray &text, const QString &file)
        : m_lines(text)
        , m_problems(file)
    { }

    ParsedRecording parse()
    {
        while (!m_isForeign && !m_problems.isFull() && m_lines.next())
            parseLine(m_lines.line());
        if (m_isDescribed) {
            describe();
            m_node.device = m_device;
        }
        ParsedRecording recording;
        recording.nodes += m_node;
        recording.diagnostics = m_problems.diagnostics();
        return recording;
    }

private:
    void error(const QString &message) { m_problems.error(m_lines.number(), message); }

    void parseLine(std::string_view line)
    {
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.empty() || line.front() == '#')
            return;
        const bool isKnown = line.size() >= 2 && line[0] >= 'A' && line[0] <= 'Z' && line[1] == ':';
        if (!isKnown && !std::exchange(m_isRecording, true)) {
            // Not quoted: a file that was named by a slip may hold anything.
            error(QStringLiteral("this is no recording of a device: it does not begin with a line "
                                 "like 'N: panel' or 'E: 1.500000 0001 0073 0001'"));
            m_isForeign = true;
            return;
        }
        m_isRecording = true;
        if (!isKnown) {
            error(QStringLiteral("expected a line like 'E: 1.500000 0001 0073 0001' or a comment, "
                                 "found %1")
                      .arg(quoted(line)));
            return;
        }
        const char kind = line[0];
        line.remove_prefix(2);
        m_isDescribed = m_isDescribed || kind == 'N' || kind == 'I' || kind == 'P' || kind == 'B'
            || kind == 'S';
        switch (kind) {
        case 'E':
            parseEvent(line);
            break;
        case 'N':
            if (!line.empty() && line.front() == ' ')
                line.remove_prefix(1);
            m_device.name = kernelText(toByteArray(line));
            break;
        case 'I':
            parseIdentity(line);
            break;
        case 'P':
            parseBytes(line, &m_properties);
            break;
        case 'B':
            parseCodes(line);
            break;
        case 'S':
            parseSwitch(line);
            break;
        case 'A':
        case 'L':
            // Ranges of axes and states of lights, neither of which the library uses.
            break;
        default:
            m_problems.warning(m_lines.number(),
                               QStringLiteral("unknown kind of line %1, ignored")
                                   .arg(quoted(std::string_view(&kind, 1))));
            break;
        }
    }

    void parseEvent(std::string_view rest)
    {
        const std::string_view time = takeField(&rest);
        const std::string_view typeText = takeField(&rest);
        const std::string_view codeText = takeField(&rest);
        const std::string_view valueText = takeField(&rest);
        const std::string_view comment = takeField(&rest);
        RecordedEvent event;
        if (!parseTime(time, &event.time))
            return;
        const auto type = toNumber<quint16>(typeText, 16);
        const auto code = toNumber<quint16>(codeText, 16);
        const auto value = toNumber<qint32>(valueText);
        if (!type || *type >= typeCount) {
            error(QStringLiteral("expected an event type from 0000 to 001f, found %1")
                      .arg(quoted(typeText)));
        } else if (!code) {
            error(QStringLiteral("expected a code of up to four hexadecimal digits, found %1")
                      .arg(quoted(codeText)));
        } else if (!value) {
            error(QStringLiteral("expected a value in decimal, found %1").arg(quoted(valueText)));
        } else if (!comment.empty() && comment.front() != '#') {
            error(
                QStringLiteral("expected nothing after the value, found %1").arg(quoted(comment)));
        } else {
            event.type = *type;
            event.code = *code;
            event.value = *value;
            addEvent(event);
        }
    }

    bool parseTime(std::string_view text, qint64 *time)
    {
        const std::size_t point = text.find('.');
        const auto seconds = toNumber<quint64>(text.substr(0, point));
        const std::string_view fraction =
            point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
        const auto microseconds = toNumber<quint32>(fraction);
        if (!seconds || !microseconds) {
            error(QStringLiteral("expected a time in seconds like 1.500000, found %1")
                      .arg(quoted(text)));
            return false;
        }
        // Other readers take the digits for a number of microseconds, and 1.5 for 1.000005.
        if (fraction.size() != 6) {
            error(QStringLiteral("expected six digits after the point of a time, as in 1.500000, "
                                 "found %1")
                      .arg(quoted(text)));
            return false;
        }
        if (*seconds > lastSecond) {
            error(QStringLiteral("%1 is out of range; a time is at most %2 seconds")
                      .arg(quoted(text), QString::number(lastSecond)));
            return false;
        }
        *time = static_cast<qint64>(*seconds) * second + static_cast<qint64>(*microseconds);
        return true;
    }

    void addEvent(RecordedEvent event)
    {
        if (!m_node.events.isEmpty() && event.time < m_node.events.last().time) {
            m_problems.warning(
                m_lines.number(),
                QStringLiteral("earlier than the event before it; using that event's time"));
            event.time = m_node.events.last().time;
        }
        m_node.events += event;
    }

    void parseIdentity(std::string_view rest)
    {
        __u16 *const fields[] = {&m_device.id.bustype, &m_device.id.vendor, &m_device.id.product,
                                 &m_device.id.version};
        for (__u16 *field : fields) {
            const std::string_view text = takeField(&rest);
            const auto number = toNumber<quint16>(text, 16);
            if (!number) {
                error(QStringLiteral("expected bus type, vendor, product and version, each of up "
                                     "to four hexadecimal digits, found %1")
                          .arg(quoted(text)));
                return;
            }
            *field = *number;
        }
    }

    // Grows up to the size of the largest bitmap; zeros beyond that do no harm.
    void parseBytes(std::string_view rest, QByteArray *bytes)
    {
        for (std::string_view field = takeField(&rest); !field.empty(); field = takeField(&rest)) {
            const auto byte = toNumber<quint8>(field, 16);
            if (!byte) {
                error(QStringLiteral("expected bytes of two hexadecimal digits, found %1")
                          .arg(quoted(field)));
                return;
            }
            if (bytes->size() < KEY_CNT / 8) {
                *bytes += static_cast<char>(*byte);
            } else if (*byte != 0) {
                error(QStringLiteral("more than %1 codes, which no device can have").arg(KEY_CNT));
                return;
            }
        }
    }

    void parseCodes(std::string_view rest)
    {
        const std::string_view text = takeField(&rest);
        const auto type = toNumber<quint16>(text, 16);
        if (!type || *type >= typeCount) {
            error(
                QStringLiteral("expected an event type from 00 to 1f, found %1").arg(quoted(text)));
            return;
        }
        m_codeLines.insert(*type, m_lines.number());
        parseBytes(rest, &m_codes[*type]);
    }

    void parseSwitch(std::string_view rest)
    {
        const std::string_view codeText = takeField(&rest);
        const std::string_view valueText = takeField(&rest);
        const auto code = toNumber<quint16>(codeText, 16);
        const auto value = toNumber<qint32>(valueText);
        if (!code || *code >= SW_CNT || !value) {
            error(QStringLiteral("expected the code of a switch in hexadecimal, and 0 or 1"));
            return;
        }
        m_device.switchesOn.removeAll(*code);
        if (*value != 0)
            m_device.switchesOn += *code;
    }

    // A type is declared by its bit among the types or by any of its codes: files that are written
    // by hand often have only the codes.
    void describe()
    {
        m_device.properties = withoutTrailingZeros(m_properties.left(maxPropertyBytes));
        for (int type = EV_SYN + 1; type < typeCount; ++type) {
            const QByteArray codes = withoutTrailingZeros(m_codes.value(type));
            if (codes.isEmpty() && !testBit(m_codes.value(EV_SYN), type))
                continue;
            const QString problem = declareCodes(&m_device, type, codes);
            if (!problem.isEmpty())
                m_problems.error(m_codeLines.value(type), problem);
        }
    }

    LineReader m_lines;
    Problems m_problems;
    RecordedNode m_node;
    RecordedDevice m_device;
    bool m_isRecording = false; ///< a line has been recognised
    bool m_isForeign = false;
    bool m_isDescribed = false;
    QByteArray m_properties;
    QMap<int, QByteArray> m_codes;
    QMap<int, int> m_codeLines;
};

// Eight bytes per line, as in the files that evemu writes.
QByteArray byteLines(const QByteArray &start, const QByteArray &bytes)
{
    QByteArray lines;
    for (int i = 0; i < bytes.size(); i += 8)
        lines += start + bytes.mid(i, 8).toHex(' ') + '\n';
    return lines;
}

QByteArray codeLines(int type, const QByteArray &bits)
{
    return byteLines("B: " + QByteArray(1, static_cast<char>(type)).toHex() + ' ', bits);
}

// A line feed in a name would begin another line.
QByteArray onOneLine(QByteArray text)
{
    for (char &character : text) {
        if (character == '\n' || character == '\r' || character == '\0')
            character = ' ';
    }
    return text;
}

} // namespace

ParsedRecording parseEvemuAsRecorded(const QByteArray &text, const QString &file)
{
    return EvemuParser(text, file).parse();
}

ParsedRecording parseEvemu(const QByteArray &text, const QString &file)
{
    ParsedRecording recording = parseEvemuAsRecorded(text, file);
    QVector<RecordedEvent> &events = recording.nodes.first().events;
    const qint64 first = events.isEmpty() ? 0 : events.first().time;
    for (RecordedEvent &event : events)
        event.time -= first;
    return recording;
}

QByteArray evemuDescription(const RecordedDevice &device)
{
    char identity[32];
    static_cast<void>(std::snprintf(identity, sizeof(identity), "I: %04x %04x %04x %04x\n",
                                    device.id.bustype, device.id.vendor, device.id.product,
                                    device.id.version));
    QByteArray text =
        "# EVEMU 1.3\nN: " + onOneLine(device.name) + '\n' + static_cast<const char *>(identity);
    text += byteLines("P: ", padded(device.properties, maxPropertyBytes));
    text += codeLines(EV_SYN, padded(typeBits(device), 8));
    for (auto it = device.codes.cbegin(); it != device.codes.cend(); ++it)
        text += codeLines(it.key(), padded(*it, bitmapSize(it.key())));
    const QVector<int> switches = device.codesOf(EV_SW);
    for (const int code : switches) {
        text += "S: " + QByteArray(1, static_cast<char>(code)).toHex()
            + (device.switchesOn.contains(code) ? " 1\n" : " 0\n");
    }
    return text;
}

QByteArray evemuEvent(const RecordedEvent &event)
{
    char line[96];
    static_cast<void>(std::snprintf(
        line, sizeof(line), "E: %lld.%06lld %04x %04x %04d\n",
        static_cast<long long>(event.time / second), static_cast<long long>(event.time % second),
        static_cast<unsigned int>(event.type), static_cast<unsigned int>(event.code), event.value));
    return line;
}

} // namespace Vorn::Workbench
