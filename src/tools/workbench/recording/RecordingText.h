#ifndef VORN_WORKBENCH_RECORDINGTEXT_H
#define VORN_WORKBENCH_RECORDINGTEXT_H

#include "Diagnostic.h"
#include "Recording.h"

#include <QByteArray>
#include <QString>

#include <charconv>
#include <optional>
#include <string_view>

/// What the readers and writers of recordings share. Not for other parts.
namespace Vorn::Workbench {

/// What is wrong with one file. Only the first errors and warnings are kept, so that a file of
/// another kind is not answered with a million lines.
class Problems
{
public:
    explicit Problems(const QString &file)
        : m_file(file)
    { }

    void error(int line, const QString &message);
    void warning(int line, const QString &message);

    /// Whether there are so many errors that reading on is no use.
    bool isFull() const { return m_errors >= limit; }

    const Diagnostics &diagnostics() const { return m_diagnostics; }

private:
    static constexpr int limit = 20;

    const QString m_file;
    Diagnostics m_diagnostics;
    int m_errors = 0;
    int m_warnings = 0;
};

/// The lines of a text, one after the other. The text must stay.
class LineReader
{
public:
    explicit LineReader(const QByteArray &text)
        : m_rest(text.constData(), static_cast<std::size_t>(text.size()))
    { }

    /// Goes to the next line; false at the end.
    bool next();

    std::string_view line() const { return m_line; } ///< without its end
    int number() const { return m_number; } ///< from 1

private:
    std::string_view m_rest;
    std::string_view m_line;
    int m_number = 0;
};

/// Takes the next field off a line whose fields are separated by blanks; empty at the end.
std::string_view takeField(std::string_view *rest);

/// The whole of @p text as a number, or nothing.
template <typename Number>
std::optional<Number> toNumber(std::string_view text, int base = 10)
{
    Number number = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    if (text.empty() || result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

/// Bytes that are written as hexadecimal digits; nothing if they are not.
std::optional<QByteArray> toBytes(std::string_view hex);

/// A piece of a file for a message: in quotes, shortened, without what is not to be printed.
QString quoted(std::string_view text);

QByteArray toByteArray(std::string_view text);

/// A kernel text: up to the first zero byte.
QByteArray kernelText(const QByteArray &bytes);

/// @name Bitmaps, as the kernel gives them: the lowest code is the lowest bit of the first byte
/// @{
bool testBit(const QByteArray &bits, int bit);
void setBit(QByteArray *bits, int bit);
QVector<int> setBits(const QByteArray &bits);
/// The bitmap without zero bytes at its end.
QByteArray withoutTrailingZeros(QByteArray bits);
/// The bitmap in exactly @p size bytes.
QByteArray padded(const QByteArray &bits, int size);
/// @}

/// Number of event types.
constexpr int typeCount = EV_CNT;

/// Bytes that the kernel has for the properties of a device, where a word has 64 bits.
constexpr int maxPropertyBytes = 8;

/// How many codes a type has; 0 for types without codes of their own.
int codeCount(int type);

/// Bytes that the kernel has for the codes of a type, where a word has 64 bits.
int bitmapSize(int type);

/// The bitmap of event types, EVIOCGBIT(0).
QByteArray typeBits(const RecordedDevice &device);

/// Declares a type with its codes.
/// @return why it cannot be; empty if it was
QString declareCodes(RecordedDevice *device, int type, const QByteArray &bits);

/// parseEvemu(), but the times are those of the file.
ParsedRecording parseEvemuAsRecorded(const QByteArray &text, const QString &file);

/// A node of a device file.
struct DeviceFileNode
{
    RecordedNode node;
    QString folder; ///< name of the folder that the node is in, below /sys
};

/// Reads a device file, see parseUmockdev().
QVector<DeviceFileNode> readDeviceFile(const QByteArray &text, Problems *problems);

} // namespace Vorn::Workbench

#endif
