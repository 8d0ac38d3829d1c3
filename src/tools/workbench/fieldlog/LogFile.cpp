#include "LogFile.h"

#include <zlib.h>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

constexpr int bufferSize = 256 * 1024;
static_assert(bufferSize <= LogFile::maxLineSize, "a line within a buffer is not cut");
constexpr std::string_view gzipMagic = "\x1f\x8b";
constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

QString unpackingError(const z_stream_s &stream)
{
    const QString reason = stream.msg != nullptr ? QString::fromLatin1(stream.msg)
                                                 : QStringLiteral("no valid gzip data");
    return QStringLiteral("the compressed data is damaged (%1); what comes before is read")
        .arg(reason);
}

} // namespace

void LogFile::EndStream::operator()(z_stream_s *stream) const
{
    inflateEnd(stream);
    delete stream;
}

LogFile::LogFile() = default;
LogFile::~LogFile() = default;

QString LogFile::open(const QString &path)
{
    m_buffer.resize(bufferSize);
    return m_file.openForReading(path);
}

bool LogFile::next()
{
    m_kept.clear();
    m_isTooLong = false;
    for (;;) {
        if (m_rest.empty() && !fill()) {
            // The last line may lack its end.
            if (m_kept.empty())
                return false;
            finishLine(m_kept);
            return true;
        }
        const std::size_t end = m_rest.find('\n');
        const std::string_view part = m_rest.substr(0, end);
        const bool isWhole = end != std::string_view::npos;
        m_rest.remove_prefix(isWhole ? end + 1 : m_rest.size());
        if (isWhole && m_kept.empty()) {
            finishLine(part);
            return true;
        }
        keep(part);
        if (isWhole) {
            finishLine(m_kept);
            return true;
        }
    }
}

void LogFile::keep(std::string_view part)
{
    const std::size_t room = maxLineSize - std::min(maxLineSize, m_kept.size());
    m_isTooLong = m_isTooLong || part.size() > room;
    m_kept.append(part.substr(0, room));
}

void LogFile::finishLine(std::string_view line)
{
    ++m_number;
    m_isCut = m_isTooLong;
    if (m_number == 1 && line.substr(0, byteOrderMark.size()) == byteOrderMark)
        line.remove_prefix(byteOrderMark.size());
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    line.remove_prefix(std::min(line.find_first_not_of('\0'), line.size()));
    m_line = line;
}

bool LogFile::fill()
{
    if (!m_error.isEmpty())
        return false;
    const qint64 size =
        m_stream ? unpack(m_buffer.data(), bufferSize) : readPlain(m_buffer.data(), bufferSize);
    m_rest = {m_buffer.constData(), static_cast<std::size_t>(std::max<qint64>(size, 0))};
    if (!m_isStarted) {
        m_isStarted = true;
        if (m_rest.substr(0, gzipMagic.size()) == gzipMagic) {
            startUnpacking();
            return fill();
        }
    }
    m_bytes += static_cast<qint64>(m_rest.size());
    return !m_rest.empty();
}

qint64 LogFile::readPlain(char *data, qint64 size)
{
    // A pipe may deliver a single byte first, which does not show yet whether it is compressed.
    qint64 total = 0;
    do {
        const qint64 count = m_file.read(data + total, size - total);
        if (count < 0)
            m_error = m_file.errorString();
        if (count <= 0)
            break;
        total += count;
    } while (!m_isStarted && total < static_cast<qint64>(gzipMagic.size()));
    return total;
}

void LogFile::startUnpacking()
{
    auto stream = std::make_unique<z_stream_s>();
    constexpr int gzipOnly = 16;
    if (inflateInit2(stream.get(), MAX_WBITS + gzipOnly) != Z_OK) {
        m_error = unpackingError(*stream);
        return;
    }
    m_stream.reset(stream.release());
    m_packed = QByteArray(m_rest.data(), static_cast<int>(m_rest.size()));
    m_stream->next_in = reinterpret_cast<Bytef *>(m_packed.data());
    m_stream->avail_in = static_cast<uInt>(m_packed.size());
}

bool LogFile::readPacked()
{
    m_packed.resize(bufferSize);
    const qint64 size = readPlain(m_packed.data(), bufferSize);
    m_stream->next_in = reinterpret_cast<Bytef *>(m_packed.data());
    m_stream->avail_in = static_cast<uInt>(std::max<qint64>(size, 0));
    return size > 0;
}

qint64 LogFile::unpack(char *data, qint64 size)
{
    m_stream->next_out = reinterpret_cast<Bytef *>(data);
    m_stream->avail_out = static_cast<uInt>(size);
    while (m_stream->avail_out > 0 && m_error.isEmpty()) {
        if (m_stream->avail_in == 0 && !readPacked()) {
            if (!m_isBetweenMembers && m_error.isEmpty())
                m_error = QStringLiteral(
                    "the compressed data ends too early; what there is of it is read");
            break;
        }
        if (m_isBetweenMembers) {
            // gzip -c a b > ab makes two streams in a row; zeros may fill up a tape's block.
            if (*m_stream->next_in == 0)
                break;
            inflateReset(m_stream.get());
            m_isBetweenMembers = false;
        }
        const int status = inflate(m_stream.get(), Z_NO_FLUSH);
        if (status == Z_STREAM_END)
            m_isBetweenMembers = true;
        else if (status != Z_OK && status != Z_BUF_ERROR)
            m_error = unpackingError(*m_stream);
    }
    return size - m_stream->avail_out;
}

} // namespace Vorn::Workbench
