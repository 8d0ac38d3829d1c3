#include "SessionMembers.h"

#include "EventNames.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonValue>

#include <cmath>

namespace Vorn::Workbench {

namespace {

/// µs, about 142 years. Beyond it a JSON number in ms can no longer represent every microsecond.
constexpr double maxTime = 4503599627370496.0;

} // namespace

QString SessionMembers::text(const char *key)
{
    const QJsonValue value = m_object.value(QLatin1String(key));
    if (!value.isString())
        fail(key, QStringLiteral("must be a string"));
    return value.toString();
}

QString SessionMembers::optionalText(const char *key)
{
    return has(key) ? text(key) : QString();
}

QStringList SessionMembers::texts(const char *key)
{
    const QJsonValue value = m_object.value(QLatin1String(key));
    if (!value.isArray())
        fail(key, QStringLiteral("must be a list of strings"));
    QStringList texts;
    const QJsonArray list = value.toArray();
    for (const auto &text : list) {
        if (!text.isString())
            fail(key, QStringLiteral("must contain only strings"));
        texts += text.toString();
    }
    return texts;
}

QVector<QJsonObject> SessionMembers::objects(const char *key)
{
    const QJsonValue value = m_object.value(QLatin1String(key));
    if (!value.isArray())
        fail(key, QStringLiteral("must be a list of objects"));
    QVector<QJsonObject> objects;
    const QJsonArray list = value.toArray();
    for (const auto &object : list) {
        if (!object.isObject())
            fail(key, QStringLiteral("must contain only objects"));
        objects += object.toObject();
    }
    return objects;
}

bool SessionMembers::truth(const char *key)
{
    const QJsonValue value = m_object.value(QLatin1String(key));
    if (!value.isBool())
        fail(key, QStringLiteral("must be true or false"));
    return value.toBool();
}

int SessionMembers::integer(const char *key, int min, int max)
{
    // Not a number fails both comparisons.
    const double number = m_object.value(QLatin1String(key)).toDouble(std::nan(""));
    if (number >= min && number <= max && std::floor(number) == number)
        return static_cast<int>(number);
    fail(key, QStringLiteral("must be a whole number from %1 to %2").arg(min).arg(max));
    return min;
}

qint64 SessionMembers::time(const char *key)
{
    const double number = m_object.value(QLatin1String(key)).toDouble(std::nan("")) * 1000;
    if (number >= -maxTime && number <= maxTime)
        return std::llround(number);
    fail(key, QStringLiteral("must be a number of milliseconds, within 142 years of zero"));
    return 0;
}

qint64 SessionMembers::wallClock(const char *key)
{
    // QDateTime stops at milliseconds, so the fraction is parsed apart from the seconds.
    const QString written = text(key);
    const QDateTime seconds =
        QDateTime::fromString(written.left(19) + QLatin1Char('Z'), Qt::ISODate);
    const QString microseconds = written.mid(20, 6);
    bool isNumber = false;
    const uint fraction = microseconds.toUInt(&isNumber);
    const bool hasForm = written.size() == 27 && written.at(19) == QLatin1Char('.')
        && written.at(26) == QLatin1Char('Z');
    if (hasForm && isNumber && seconds.isValid()) {
        const qint64 value = seconds.toSecsSinceEpoch() * 1'000'000 + fraction;
        if (std::abs(static_cast<double>(value)) <= maxTime)
            return value;
    }
    fail(key, QStringLiteral("must be a time like '2024-03-01T12:00:00.000000Z'"));
    return 0;
}

QVector<int> SessionMembers::codes(const char *key, int type)
{
    const QJsonValue list = m_object.value(QLatin1String(key));
    if (!list.isArray())
        fail(key, QStringLiteral("must be a list of names"));
    QVector<int> codes;
    const QJsonArray names = list.toArray();
    for (const auto &name : names) {
        const std::optional<int> code = eventCode(type, name.toString());
        if (!code)
            fail(key, QStringLiteral("contains '%1', an unknown code").arg(name.toString()));
        codes.append(code.value_or(0));
    }
    return codes;
}

int SessionMembers::numbered(const char *key, const QString &name)
{
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    if (!isNumber)
        fail(key, QStringLiteral("has the unknown value '%1'").arg(name));
    return number;
}

void SessionMembers::fail(const char *key, const QString &problem)
{
    if (!m_error.isEmpty())
        return;
    const QString name = QLatin1String(key);
    m_error = has(key) ? QStringLiteral("'%1' %2").arg(name, problem)
                       : QStringLiteral("'%1' is missing").arg(name);
}

} // namespace Vorn::Workbench
