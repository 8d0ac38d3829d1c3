#include "LabelRows.h"

#include <algorithm>

namespace Vorn::Workbench {

// An estimate rather than the metrics of an installed font: the picture has to be the same on every
// machine.
double LabelRows::width(const QString &text)
{
    return text.size() * 6.6 + 2;
}

std::optional<int> LabelRows::place(double from, double to)
{
    for (int row = 0; row < m_maxRows; ++row) {
        if (row == m_rows.size())
            m_rows.append(QVector<QPair<double, double>>());
        auto &taken = m_rows[row];
        const bool isFree = std::none_of(taken.begin(), taken.end(), [&](const auto &other) {
            return from < other.second && to > other.first;
        });
        if (isFree) {
            taken.append({from, to});
            return row;
        }
    }
    return std::nullopt;
}

} // namespace Vorn::Workbench
