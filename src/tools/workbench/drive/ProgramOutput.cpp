#include "ProgramOutput.h"

#include "Output.h"
#include "Quoting.h"

namespace Vorn::Workbench {

namespace {

QString toText(QByteArray line)
{
    if (line.endsWith('\r'))
        line.chop(1);
    // With its size, because it may contain zeros.
    return printable(QString::fromUtf8(line.constData(), line.size()));
}

/// Where to break a line that is too long: not within a character of UTF-8.
int breakIn(const QByteArray &line)
{
    int end = ProgramOutput::longestLine;
    while (end > ProgramOutput::longestLine - 4 && (line.at(end) & 0xc0) == 0x80)
        --end;
    return end;
}

} // namespace

ProgramOutput::ProgramOutput(const QString &name, Shown shown)
    : m_name(name)
    , m_shown(shown)
{ }

void ProgramOutput::add(const QByteArray &bytes)
{
    m_kept += bytes;
    if (m_kept.size() > 2 * keptSize) {
        m_kept = m_kept.right(keptSize);
        m_isCut = true;
    }
    if (m_shown == Shown::No)
        return;
    m_line += bytes;
    QByteArray::size_type begin = 0;
    for (auto end = begin; (end = m_line.indexOf('\n', begin)) >= 0; begin = end + 1) {
        QByteArray line = m_line.mid(begin, end - begin);
        showPieces(&line);
        show(line);
    }
    m_line.remove(0, begin);
    showPieces(&m_line);
}

void ProgramOutput::finish()
{
    if (!m_line.isEmpty())
        show(m_line);
    m_line.clear();
}

QByteArray ProgramOutput::kept() const
{
    return m_kept.right(keptSize);
}

QStringList ProgramOutput::lines() const
{
    QByteArray text = kept();
    if (m_isCut || text.size() < m_kept.size())
        text.remove(0, text.indexOf('\n') + 1);
    QStringList result;
    if (text.isEmpty())
        return result;
    if (text.endsWith('\n'))
        text.chop(1);
    const QList<QByteArray> lines = text.split('\n');
    for (const QByteArray &line : lines)
        result += toText(line);
    return result;
}

void ProgramOutput::showPieces(QByteArray *line) const
{
    while (line->size() > longestLine) {
        const int end = breakIn(*line);
        show(line->left(end));
        line->remove(0, end);
    }
}

void ProgramOutput::show(const QByteArray &line) const
{
    printLine(stderr, m_name + QStringLiteral("| ") + toText(line));
}

} // namespace Vorn::Workbench
