#include "JsonLine.h"

#include "Quoting.h"

#include <QJsonDocument>
#include <QString>

#include <algorithm>
#include <string>

namespace Vorn::Workbench {

namespace {

QString unit(ushort character)
{
    return QStringLiteral("\\u")
        + QString::number(character, 16).rightJustified(4, QLatin1Char('0'));
}

// Outside of strings JSON has ASCII only, so whatever is escaped here is part of one.
QByteArray escaped(const QByteArray &json)
{
    QString result;
    const QVector<uint> characters = QString::fromUtf8(json).toUcs4();
    for (const uint character : characters) {
        if (isPrintable(character))
            result += QString::fromStdU32String(std::u32string(1, character));
        else if (QChar::requiresSurrogates(character))
            result += unit(QChar::highSurrogate(character)) + unit(QChar::lowSurrogate(character));
        else
            result += unit(static_cast<ushort>(character));
    }
    return result.toUtf8();
}

} // namespace

QByteArray jsonLine(const QJsonObject &object)
{
    // Qt escapes what JSON forbids in strings, and leaves the rest as it is.
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
    const bool isPlain =
        std::all_of(json.begin(), json.end(), [](char byte) { return byte >= ' ' && byte < 0x7f; });
    return (isPlain ? json : escaped(json)) + '\n';
}

} // namespace Vorn::Workbench
