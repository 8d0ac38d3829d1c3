#include "Suggestion.h"

#include <QVector>

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace Vorn {

namespace {

/// How many characters have to be inserted, removed, replaced or swapped with their neighbour to
/// turn one text into the other. Only the last two rows of the usual matrix are kept.
int distance(const QString &a, const QString &b)
{
    QVector<int> beforeLast(b.size() + 1);
    QVector<int> last(b.size() + 1);
    QVector<int> row(b.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (int i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int change = a.at(i - 1) == b.at(j - 1) ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.last();
}

/// "VOLUMEUP" of "KEY_VOLUMEUP": people forget the prefix or pick the wrong one.
QString withoutPrefix(const QString &name)
{
    for (const char *prefix : {"KEY_", "BTN_", "SW_", "BUS_", "EV_"}) {
        if (name.startsWith(QLatin1String(prefix), Qt::CaseInsensitive))
            return name.mid(static_cast<int>(qstrlen(prefix)));
    }
    return name;
}

/// The one name that contains a text; empty if there are several.
QString onlyOneWith(const QString &part, const QStringList &known)
{
    constexpr int shortest = 4;
    if (part.size() < shortest)
        return {};
    QString found;
    for (const QString &candidate : known) {
        if (!candidate.contains(part, Qt::CaseInsensitive))
            continue;
        if (!found.isEmpty())
            return {};
        found = candidate;
    }
    return found;
}

} // namespace

QString closest(const QString &unknown, const QStringList &known)
{
    // Longer texts are not mistyped names, and comparing them would take long.
    if (unknown.isEmpty() || unknown.size() > 64)
        return {};
    const QString wanted = withoutPrefix(unknown).toLower();
    QString best;
    // A third of the characters may be wrong, one in short names.
    int bestDistance = std::max(1, static_cast<int>(wanted.size() / 3)) + 1;
    for (const QString &candidate : known) {
        const QString text = withoutPrefix(candidate).toLower();
        if (std::abs(text.size() - wanted.size()) >= bestDistance)
            continue;
        const int found = distance(wanted, text);
        if (found < bestDistance) {
            bestDistance = found;
            best = candidate;
        }
    }
    return best.isEmpty() ? onlyOneWith(wanted, known) : best;
}

QString suggestionOrList(const QString &unknown, const QStringList &known)
{
    QString meant = suggestion(unknown, known);
    if (!meant.isEmpty() || known.isEmpty())
        return meant;
    return (known.size() == 1 ? QStringLiteral("; write ") : QStringLiteral("; write one of "))
        + known.join(QStringLiteral(", "));
}

QString suggestion(const QString &unknown, const QStringList &known)
{
    const QString meant = closest(unknown, known);
    return meant.isEmpty() ? QString() : QStringLiteral(", did you mean '%1'?").arg(meant);
}

} // namespace Vorn
