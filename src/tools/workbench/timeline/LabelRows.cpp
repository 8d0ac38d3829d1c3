#include "LabelRows.h"

#include <algorithm>
#include <iterator>

namespace Vorn::Workbench {

namespace {

constexpr double lineWidth = 2;
/// Between a line and the text that it leads to.
constexpr double lineGap = 4;

bool isFreeIn(const QMap<double, double> &taken, double from, double to)
{
    const auto next = taken.lowerBound(to);
    return next == taken.begin() || std::prev(next).value() <= from;
}

/// Intervals that overlap become one.
void takeIn(QMap<double, double> *taken, double from, double to)
{
    auto at = taken->lowerBound(from);
    if (at != taken->begin() && std::prev(at).value() >= from)
        --at;
    while (at != taken->end() && at.key() <= to) {
        from = std::min(from, at.key());
        to = std::max(to, at.value());
        at = taken->erase(at);
    }
    taken->insert(from, to);
}

} // namespace

/*
 *  A text is to the right of its line. Where lines come from above, whoever places texts from right
 *  to left finds room; where they go down, from left to right:
 *
 *  ▼     ▼     ▼ third              │ first
 *  │     │ second                   │     │ second
 *  │ first                          │     │     │ third
 */

LabelRows::LabelRows(int maxRows, Lines lines, Edges edges)
    : m_lineSide(lines)
    , m_edges(edges)
    , m_texts(maxRows)
    , m_lines(maxRows)
{ }

// An estimate rather than the metrics of an installed font: the picture has to be the same on every
// machine.
double LabelRows::width(const QString &text)
{
    return static_cast<double>(text.size()) * 6.6 + 2;
}

void LabelRows::addLine(double x)
{
    for (Intervals &row : m_lines)
        takeIn(&row, x - lineWidth / 2, x + lineWidth / 2);
}

void LabelRows::addSymbol(double x, double halfWidth)
{
    takeIn(m_lines.data(), x - halfWidth, x + halfWidth);
}

std::optional<LabelPlace> LabelRows::place(double x, const QString &text, double gap)
{
    const double length = width(text);
    // A text to the left would look like another point's, so only where the picture ends.
    const bool isLeft = x + gap + length > m_edges.right;
    for (int row = 0; row < m_texts.size(); ++row) {
        const double distance = row == 0 ? gap : lineGap;
        const double from = isLeft ? x - distance - length : x + distance;
        if (from < m_edges.left || !isFree(row, from, from + length) || !mayLead(x, row))
            continue;
        takeIn(&m_texts[row], from, from + length);
        lead(x, row);
        m_count = std::max(m_count, row + 1);
        return LabelPlace{row, isLeft};
    }
    return std::nullopt;
}

bool LabelRows::isFree(int row, double from, double to) const
{
    return isFreeIn(m_texts.at(row), from, to) && isFreeIn(m_lines.at(row), from, to);
}

bool LabelRows::mayLead(double x, int row) const
{
    const auto [first, end] = passed(row);
    for (int passedRow = first; passedRow < end; ++passedRow) {
        if (!isFreeIn(m_texts.at(passedRow), x - lineWidth / 2, x + lineWidth / 2))
            return false;
    }
    return true;
}

void LabelRows::lead(double x, int row)
{
    const auto [first, end] = passed(row);
    for (int passedRow = first; passedRow < end; ++passedRow)
        takeIn(&m_lines[passedRow], x - lineWidth / 2, x + lineWidth / 2);
}

/// The first row that the line of a text passes, and the one after the last; its own is among them.
QPair<int, int> LabelRows::passed(int row) const
{
    if (m_lineSide == Lines::FromAbove)
        return {0, row + 1};
    return {row, m_texts.size()};
}

} // namespace Vorn::Workbench
