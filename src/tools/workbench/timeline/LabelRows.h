#ifndef VORN_WORKBENCH_LABELROWS_H
#define VORN_WORKBENCH_LABELROWS_H

#include <QMap>
#include <QPair>
#include <QString>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// Where a text is beside its point.
struct LabelPlace
{
    int row = 0;
    bool isLeft = false; ///< of the point
};

/// Arranges texts in rows so that no text covers another, and no line crosses one.
class LabelRows
{
public:
    /// The side from which a line leads to a text. It passes the rows between.
    enum class Lines { FromAbove, Below };

    struct Edges
    {
        double left = 0;
        double right = 0;
    };

    LabelRows(int maxRows, Lines lines, Edges edges);

    /// Keeps texts away from a line through all rows.
    void addLine(double x);
    /// Keeps texts away from a symbol in the first row.
    void addSymbol(double x, double halfWidth);
    /// Takes the space for a text beside @p x, @p gap away from it in the first row; nothing if
    /// there is none.
    std::optional<LabelPlace> place(double x, const QString &text, double gap);
    /// Rows that have a text.
    int count() const { return m_count; }

    /// The width that a text takes at most, in any of the fonts it may be shown in.
    static double width(const QString &text);

private:
    using Intervals = QMap<double, double>;

    bool isFree(int row, double from, double to) const;
    bool mayLead(double x, int row) const;
    void lead(double x, int row);
    QPair<int, int> passed(int row) const;

    const Lines m_lineSide;
    const Edges m_edges;
    QVector<Intervals> m_texts;
    QVector<Intervals> m_lines;
    int m_count = 0;
};

} // namespace Vorn::Workbench

#endif
