#include "Operation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

#include <cmath>
#include <limits>

namespace Vorn::Drive {

namespace {

const QLatin1String operationMember("operation");
const QLatin1String answerMember("answer");

/// Names of devices are bytes of any kind, and a missing one differs from an empty one.
QJsonValue toJson(const QByteArray &bytes)
{
    return bytes.isNull() ? QJsonValue() : QJsonValue(QString::fromLatin1(bytes.toBase64()));
}

bool fromJson(const QJsonValue &json, QByteArray *bytes)
{
    *bytes = json.isNull() ? QByteArray() : QByteArray::fromBase64(json.toString().toLatin1());
    // Decoding nothing gives a null array.
    if (json.isString() && bytes->isNull())
        *bytes = QByteArray("");
    return json.isNull() || json.isString();
}

template <typename Integer>
bool integerFromJson(const QJsonValue &json, Integer *value)
{
    const double number = json.toDouble(std::numeric_limits<double>::quiet_NaN());
    // Beyond 2^53 a number in JSON is not exact.
    constexpr double limit = 9007199254740992.0;
    if (!(std::abs(number) <= limit) || std::floor(number) != number
        || number < static_cast<double>(std::numeric_limits<Integer>::min())
        || number > static_cast<double>(std::numeric_limits<Integer>::max()))
        return false;
    *value = static_cast<Integer>(number);
    return true;
}

QJsonValue toJson(int value)
{
    return value;
}

QJsonValue toJson(qint64 value)
{
    return value;
}

QJsonValue toJson(unsigned value)
{
    return static_cast<qint64>(value);
}

QJsonValue toJson(bool value)
{
    return value;
}

QJsonValue toJson(const QString &text)
{
    return text;
}

bool fromJson(const QJsonValue &json, int *value)
{
    return integerFromJson(json, value);
}

bool fromJson(const QJsonValue &json, qint64 *value)
{
    return integerFromJson(json, value);
}

bool fromJson(const QJsonValue &json, unsigned *value)
{
    return integerFromJson(json, value);
}

bool fromJson(const QJsonValue &json, unsigned short *value)
{
    return integerFromJson(json, value);
}

bool fromJson(const QJsonValue &json, bool *value)
{
    *value = json.toBool();
    return json.isBool();
}

bool fromJson(const QJsonValue &json, QString *text)
{
    *text = json.toString();
    return json.isString();
}

QJsonValue toJson(const QVector<int> &values)
{
    QJsonArray array;
    for (const int value : values)
        array.append(value);
    return array;
}

bool fromJson(const QJsonValue &json, QVector<int> *values)
{
    values->clear();
    const QJsonArray array = json.toArray();
    for (const QJsonValue &element : array) {
        values->append(0);
        if (!fromJson(element, &values->last()))
            return false;
    }
    return json.isArray();
}

QJsonValue toJson(const QVector<Workbench::RecordedEvent> &records)
{
    QJsonArray array;
    for (const Workbench::RecordedEvent &record : records)
        array.append(QJsonArray{record.type, record.code, record.value});
    return array;
}

bool fromJson(const QJsonValue &json, QVector<Workbench::RecordedEvent> *records)
{
    records->clear();
    const QJsonArray array = json.toArray();
    for (const QJsonValue &element : array) {
        const QJsonArray members = element.toArray();
        Workbench::RecordedEvent record;
        if (members.size() != 3 || !fromJson(members.at(0), &record.type)
            || !fromJson(members.at(1), &record.code) || !fromJson(members.at(2), &record.value))
            return false;
        records->append(record);
    }
    return json.isArray();
}

QJsonValue toJson(const Sim::DeviceDescription &device);
bool fromJson(const QJsonValue &json, Sim::DeviceDescription *device);

struct Writer
{
    QJsonObject object;

    template <typename Value>
    void operator()(const char *name, const Value &value)
    {
        object.insert(QLatin1String(name), toJson(value));
    }
};

struct Reader
{
    const QJsonObject object;
    bool isComplete = true;

    template <typename Value>
    void operator()(const char *name, Value &value)
    {
        // toJson() writes a null array as null, which is not a missing member.
        const auto member = object.constFind(QLatin1String(name));
        if (member == object.constEnd() || !fromJson(member.value(), &value))
            isComplete = false;
    }
};

template <typename Visitor, typename Device>
void visitDevice(Visitor &visitor, Device &device)
{
    visitor("name", device.name);
    visitor("keys", device.keys);
    visitor("switches", device.switches);
    visitor("eventTypes", device.eventTypes);
    visitor("autoRepeat", device.autoRepeat);
    visitor("keysHeld", device.keysHeld);
    visitor("switchesOn", device.switchesOn);
    visitor("bus", device.id.bustype);
    visitor("vendor", device.id.vendor);
    visitor("product", device.id.product);
    visitor("version", device.id.version);
    visitor("mode", device.mode);
}

QJsonValue toJson(const Sim::DeviceDescription &device)
{
    Writer writer;
    visitDevice(writer, device);
    return writer.object;
}

bool fromJson(const QJsonValue &json, Sim::DeviceDescription *device)
{
    Reader reader{json.toObject()};
    visitDevice(reader, *device);
    return reader.isComplete;
}

QByteArray lineOf(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

template <std::size_t Index = 0>
std::optional<Operation> read(const QString &name, const QJsonObject &object)
{
    if constexpr (Index < std::variant_size_v<Operation>) {
        using Kind = std::variant_alternative_t<Index, Operation>;
        if (name != QLatin1String(Kind::name))
            return read<Index + 1>(name, object);
        Kind kind;
        Reader reader{object};
        kind.visit(reader);
        if (reader.isComplete)
            return kind;
    }
    return {};
}

} // namespace

QByteArray toLine(const Operation &operation)
{
    Writer writer;
    std::visit(
        [&writer](auto kind) {
            writer.object.insert(operationMember, QLatin1String(kind.name));
            kind.visit(writer);
        },
        operation);
    return lineOf(writer.object);
}

QByteArray toLine(const Answer &answer)
{
    Writer writer;
    Answer copy = answer;
    copy.visit(writer);
    return lineOf({{answerMember, writer.object}});
}

std::optional<Operation> operationFrom(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    return read(object.value(operationMember).toString(), object);
}

std::optional<Answer> answerFrom(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    if (!object.contains(answerMember))
        return {};
    Answer answer;
    Reader reader{object.value(answerMember).toObject()};
    answer.visit(reader);
    return reader.isComplete ? std::make_optional(answer) : std::nullopt;
}

} // namespace Vorn::Drive
