#include "NodeTable.h"

#include "BusNames.h"
#include "EventNames.h"
#include "JsonLine.h"
#include "Quoting.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace Vorn::Workbench {

namespace {

constexpr int tableWidth = 100;
constexpr int longestName = 40;
constexpr char bold[] = "\x1b[1m";
constexpr char dim[] = "\x1b[2m";
constexpr char red[] = "\x1b[31m";
constexpr char plain[] = "\x1b[0m";

/// The cells of a node's line.
struct Row
{
    QStringList cells;
    QStringList details;
    QString problem;
    bool isUsed = false;
};

QString shortened(QString text)
{
    if (text.size() > longestName)
        text = text.left(longestName - 1) + QChar(0x2026);
    return text;
}

/// "5 keys: KEY_A, KEY_B and 3 more", as many as fit.
QString listOf(const QStringList &names, const QString &one, const QString &many, int width)
{
    QString text = QStringLiteral("%1 %2").arg(names.size()).arg(names.size() == 1 ? one : many);
    for (int i = 0; i < names.size(); ++i) {
        // After every name but the last there must be room for this.
        const QString more = QStringLiteral(" and %1 more").arg(names.size() - i);
        const QString next = (i == 0 ? QStringLiteral(": ") : QStringLiteral(", ")) + names.at(i);
        const bool isLast = i + 1 == names.size();
        if (text.size() + next.size() + (isLast ? 0 : more.size()) > width)
            return text + more;
        text += next;
    }
    return text;
}

QStringList keyNamesOf(const NodeInfo &node)
{
    QStringList names;
    const auto codes = node.device.codesOf(EV_KEY);
    for (const int code : codes)
        names += keyName(code);
    return names;
}

QStringList switchNamesOf(const NodeInfo &node, bool withPositions)
{
    QStringList names;
    const auto codes = node.device.codesOf(EV_SW);
    for (const int code : codes) {
        names += switchName(code);
        if (withPositions)
            names.last() += node.device.switchesOn.contains(code) ? QStringLiteral(" (on)")
                                                                  : QStringLiteral(" (off)");
    }
    return names;
}

QString sides(const LibraryView &view)
{
    QStringList parts;
    if (view.readsKeys)
        parts += QStringLiteral("keys");
    if (view.readsSwitches)
        parts += QStringLiteral("switches");
    return parts.isEmpty() ? QStringLiteral("nothing") : parts.join(QStringLiteral(", "));
}

Row rowOf(const NodeInfo &node, int detailWidth)
{
    const LibraryView view = node.libraryView();
    const QString dash = QStringLiteral("-");
    Row row;
    row.isUsed = view.isUsed;
    row.problem = view.reason;
    row.cells << QFileInfo(node.path).fileName()
              << (node.device.name.isNull() ? dash : shortened(printable(node.name())))
              << (node.hasIdentity ? kernelBusName(node.device.id.bustype) : dash)
              << (node.isReadable() ? busName(view.bus) : dash) << sides(view);
    // Not "0 keys", which would be untrue.
    if (!node.hasCodes && (node.device.has(EV_KEY) || node.device.has(EV_SW)))
        row.details += QStringLiteral("codes unknown: it does not answer every request");
    if (node.hasCodes && node.device.has(EV_KEY))
        row.details +=
            listOf(keyNamesOf(node), QStringLiteral("key"), QStringLiteral("keys"), detailWidth);
    if (node.hasCodes && node.device.has(EV_SW))
        row.details += listOf(switchNamesOf(node, true), QStringLiteral("switch"),
                              QStringLiteral("switches"), detailWidth);
    return row;
}

QString lineOf(const QStringList &cells, const QVector<int> &widths)
{
    QString line;
    for (int i = 0; i < cells.size(); ++i)
        line += i + 1 < cells.size() ? cells.at(i).leftJustified(widths.at(i) + 2) : cells.at(i);
    return line;
}

QJsonArray namesOf(const QVector<int> &codes, QString (*name)(int))
{
    QJsonArray names;
    for (const int code : codes)
        names.append(name(code));
    return names;
}

} // namespace

QString nodeTable(const QVector<NodeInfo> &nodes, bool coloured)
{
    const auto inColour = [coloured](const char *colour, const QString &text) {
        return coloured ? QLatin1String(colour) + text + QLatin1String(plain) : text;
    };
    const QStringList header{QStringLiteral("NODE"), QStringLiteral("NAME"),
                             QStringLiteral("KERNEL BUS"), QStringLiteral("BUS"),
                             QStringLiteral("THE LIBRARY READS")};
    QVector<int> widths;
    for (const QString &title : header)
        widths += static_cast<int>(title.size());
    QVector<Row> rows;
    for (const NodeInfo &node : nodes) {
        const int indent = static_cast<int>(QFileInfo(node.path).fileName().size()) + 2;
        rows += rowOf(node, tableWidth - qMax(indent, widths.first() + 2));
        for (int i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths.at(i), static_cast<int>(rows.last().cells.at(i).size()));
    }

    // Details start below the second column, whose position is known only now.
    const QString indent(widths.first() + 2, QLatin1Char(' '));
    QString table = inColour(bold, lineOf(header, widths)) + QLatin1Char('\n');
    for (const Row &row : qAsConst(rows)) {
        const QString line = lineOf(row.cells, widths);
        table += (row.isUsed ? line : inColour(dim, line)) + QLatin1Char('\n');
        for (const QString &detail : row.details)
            table += indent + inColour(dim, detail) + QLatin1Char('\n');
        if (!row.problem.isEmpty())
            table += indent + inColour(red, row.problem) + QLatin1Char('\n');
    }
    return table;
}

QByteArray nodeJson(const NodeInfo &node)
{
    const LibraryView view = node.libraryView();
    const QString used = QStringLiteral("used");
    const QJsonObject object{
        {"device", node.path},
        {"number", node.number},
        {"readable", node.isReadable()},
        {"error", node.error},
        {"name", node.name()},
        {"phys", QString::fromUtf8(node.device.phys)},
        {"uniq", QString::fromUtf8(node.device.uniq)},
        {"kernelBus", node.device.id.bustype},
        {"kernelBusName", kernelBusName(node.device.id.bustype)},
        {"vendor", node.device.id.vendor},
        {"product", node.device.id.product},
        {"version", node.device.id.version},
        {"bus", busName(view.bus)},
        {"keys", namesOf(node.device.codesOf(EV_KEY), &keyName)},
        {"switches", namesOf(node.device.codesOf(EV_SW), &switchName)},
        {"keysDown", namesOf(node.device.keysDown, &keyName)},
        {"switchesOn", namesOf(node.device.switchesOn, &switchName)},
        {"used", view.isUsed},
        {"reason", view.reason},
        {"keySide", view.readsKeys ? used : view.keyReason},
        {"switchSide", view.readsSwitches ? used : view.switchReason},
    };
    return jsonLine(object);
}

} // namespace Vorn::Workbench
