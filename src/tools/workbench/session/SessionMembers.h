#ifndef VORN_WORKBENCH_SESSIONMEMBERS_H
#define VORN_WORKBENCH_SESSIONMEMBERS_H

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace Vorn::Workbench {

/// The members of one line of a session file, by type.
///
/// Readers fetch everything a kind needs and check error() once. It describes the first member that
/// is missing or invalid; values returned after that are placeholders.
class SessionMembers
{
public:
    explicit SessionMembers(const QJsonObject &object)
        : m_object(object)
    { }

    QString error() const { return m_error; }
    bool has(const char *key) const { return m_object.contains(QLatin1String(key)); }

    QString text(const char *key);
    /// Empty if the member is absent.
    QString optionalText(const char *key);
    QStringList texts(const char *key);
    QVector<QJsonObject> objects(const char *key);
    bool truth(const char *key);
    int integer(const char *key, int min, int max);
    /// A time in ms, as µs.
    qint64 time(const char *key);
    /// A time of day such as "2024-03-01T12:00:00.000000Z", as µs since the epoch.
    qint64 wallClock(const char *key);
    /// Codes of records of a type, listed by name.
    QVector<int> codes(const char *key, int type);

    /// A value by a name that @p parse knows, or by its number if it has no name.
    template <typename Value, typename Parse>
    Value named(const char *key, Parse parse)
    {
        const QString name = text(key);
        if (const std::optional<Value> value = parse(name))
            return *value;
        return static_cast<Value>(numbered(key, name));
    }

    void fail(const char *key, const QString &problem);

private:
    int numbered(const char *key, const QString &name);

    const QJsonObject m_object;
    QString m_error;
};

} // namespace Vorn::Workbench

#endif
