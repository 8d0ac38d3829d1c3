#include "BusNames.h"
#include "CommandNames.h"
#include "EventNames.h"
#include "ProfileReader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gmock/gmock.h>

using namespace Vorn;
using testing::ElementsAre;
using testing::HasSubstr;

// The schema is for editors; the reader decides. Here both know the same names and members.

namespace {

QJsonObject schema()
{
    QFile file(QStringLiteral(VORN_SOURCE_DIR "/share/vorn-input/profile.schema.json"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QJsonDocument::fromJson(file.readAll()).object();
}

QJsonValue definition(const char *name)
{
    return QJsonValue(schema())["definitions"][QLatin1String(name)];
}

std::string namesOf(const QJsonValue &value)
{
    QStringList names;
    for (const auto &name : value["enum"].toArray())
        names += name.toString();
    return names.join(' ').toStdString();
}

/// The pattern of the names in a handler's table.
QRegularExpression patternOf(const char *group)
{
    const QJsonValue table = definition("handler")["properties"][QLatin1String(group)]["anyOf"][0];
    return QRegularExpression(table["patternProperties"].toObject().keys().value(0));
}

/// What the reader does not know of a table with all members of a definition, and one more.
std::vector<std::string> unknownIn(const QJsonObject &object, const QByteArray &header)
{
    QByteArray text = header + "\n";
    for (const QString &name : object[QStringLiteral("properties")].toObject().keys())
        text += name.toUtf8() + " = 1\n";
    text += "unknown = 1\n";
    std::vector<std::string> unknown;
    for (const Diagnostic &diagnostic : parseProfile(text, QStringLiteral("p")).diagnostics) {
        const std::string message = diagnostic.message.toStdString();
        if (message.find("has no member") != std::string::npos
            || message.find("TOML") != std::string::npos)
            unknown.push_back(message);
    }
    return unknown;
}

} // namespace

TEST(ProfileSchema, KnowsTheNamesThatTheReaderKnows)
{
    EXPECT_EQ(namesOf(definition("command")), commandNames().join(' ').toStdString());
    EXPECT_EQ(namesOf(definition("bus")), busNames().join(' ').toStdString());
    EXPECT_EQ(namesOf(definition("state")), stateNames().join(' ').toStdString());
    EXPECT_EQ(namesOf(definition("switchCode")["anyOf"][0]), switchNames().join(' ').toStdString());
}

TEST(ProfileSchema, HasAPatternForEveryCode)
{
    const QRegularExpression keys = patternOf("keys");
    const QRegularExpression chords = patternOf("chords");
    const QRegularExpression switches = patternOf("switches");
    for (const QString &name : keyNames()) {
        EXPECT_TRUE(keys.match(name).hasMatch()) << name.toStdString();
        EXPECT_TRUE(chords.match(name + QStringLiteral(" + ") + name).hasMatch());
        EXPECT_FALSE(chords.match(name).hasMatch());
        EXPECT_FALSE(switches.match(name).hasMatch());
    }
    for (const QString &name : switchNames()) {
        EXPECT_TRUE(switches.match(name).hasMatch()) << name.toStdString();
        EXPECT_FALSE(keys.match(name).hasMatch());
    }
    EXPECT_TRUE(keys.match(QStringLiteral("358")).hasMatch());
    EXPECT_TRUE(keys.match(QStringLiteral("0x166")).hasMatch());
    EXPECT_FALSE(keys.match(QStringLiteral("identifiers")).hasMatch());
}

TEST(ProfileSchema, HasTheMembersThatTheReaderKnows)
{
    const auto onlyUnknown = ElementsAre(HasSubstr("has no member 'unknown'"));
    const auto members = [](const char *name) { return definition(name).toObject(); };
    EXPECT_THAT(unknownIn(schema(), ""), onlyUnknown);
    EXPECT_THAT(unknownIn(members("rule"), "device = []\n[[select]]"), onlyUnknown);
    EXPECT_THAT(unknownIn(members("device"), "[[device]]"), onlyUnknown);
    EXPECT_THAT(unknownIn(members("handler"), "[[device]]\n[device.handler]"), onlyUnknown);
    EXPECT_THAT(unknownIn(members("key"), "[[device]]\n[device.handler.keys.KEY_OK]"), onlyUnknown);
    EXPECT_THAT(unknownIn(members("listedKey"), "[[device]]\n[[device.handler.keys]]"),
                onlyUnknown);
    EXPECT_THAT(unknownIn(members("chord"), "[[device]]\n[device.handler.chords.\"1+2\"]"),
                onlyUnknown);
    EXPECT_THAT(unknownIn(members("listedChord"), "[[device]]\n[[device.handler.chords]]"),
                onlyUnknown);
    EXPECT_THAT(unknownIn(members("switch"), "[[device]]\n[device.handler.switches.SW_LID]"),
                onlyUnknown);
    EXPECT_THAT(unknownIn(members("listedSwitch"), "[[device]]\n[[device.handler.switches]]"),
                onlyUnknown);
}
