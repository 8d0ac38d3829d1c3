#ifndef VORN_WORKBENCH_LABELROWS_H
#define VORN_WORKBENCH_LABELROWS_H

#include <QPair>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// Arranges texts in rows so that they do not overlap.
class LabelRows
{
public:
    explicit LabelRows(int maxRows)
        : m_maxRows(maxRows)
    { }

    /// Takes the space between two x coordinates in the first row where it is free; nothing if all
    /// rows are full there.
    std::optional<int> place(double from, double to);
    int count() const { return m_rows.size(); }

    /// The width that a text takes at most, in any of the fonts it may be shown in.
    static double width(const QString &text);

private:
    const int m_maxRows;
    QVector<QVector<QPair<double, double>>> m_rows;
};

} // namespace Vorn::Workbench

#endif
