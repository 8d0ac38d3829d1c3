#include "EventNames.h"

#include <QFile>
#include <QMap>

#include <gmock/gmock.h>

#include <linux/input.h>

using namespace Vorn;

TEST(EventNames, TakeNamesAndNumbersOfKeys)
{
    EXPECT_EQ(keyCode("KEY_INFO"), KEY_INFO);
    EXPECT_EQ(keyCode("BTN_0"), BTN_0);
    EXPECT_EQ(keyCode("358"), 358);
    EXPECT_EQ(keyCode("0x166"), 358);
    EXPECT_EQ(keyCode("0"), 0);
    EXPECT_EQ(keyCode("767"), 767);
    // Not octal.
    EXPECT_EQ(keyCode("010"), 10);
}

TEST(EventNames, RefuseWhatIsNoKey)
{
    for (const char *text : {"", "KEY_", "key_info", "KEY_INFO ", "SW_LINEIN_INSERT", "768", "-1",
                             "+1", "1.5", "1e2", "0x", "99999999999999999999", "VolumeUp"})
    {
        EXPECT_EQ(keyCode(text), std::nullopt) << text;
    }
    EXPECT_EQ(keyCode(QString::fromLatin1("KEY_INFO\0", 9)), std::nullopt);
}

TEST(EventNames, TakeNamesAndNumbersOfSwitches)
{
    EXPECT_EQ(switchCode("SW_LINEIN_INSERT"), SW_LINEIN_INSERT);
    EXPECT_EQ(switchCode("13"), 13);
    EXPECT_EQ(switchCode("16"), 16);
    EXPECT_EQ(switchCode("17"), std::nullopt);
    EXPECT_EQ(switchCode("KEY_INFO"), std::nullopt);
}

TEST(EventNames, NameEveryCodeSoThatItIsReadBack)
{
    for (int code = 0; code <= maxKeyCode; ++code)
        EXPECT_EQ(keyCode(keyName(code)), code) << keyName(code).toStdString();
    for (int code = 0; code <= maxSwitchCode; ++code)
        EXPECT_EQ(switchCode(switchName(code)), code) << switchName(code).toStdString();
    for (const QString &name : keyNames())
        EXPECT_EQ(keyName(*keyCode(name)).toStdString(), name.toStdString());
}

TEST(EventNames, KnowOtherTypesOfEvents)
{
    EXPECT_EQ(eventType("EV_MSC"), EV_MSC);
    EXPECT_EQ(eventType("31"), 31);
    EXPECT_EQ(eventType("32"), std::nullopt);
    EXPECT_EQ(eventTypeName(EV_SW).toStdString(), "EV_SW");
    EXPECT_EQ(eventTypeName(30).toStdString(), "30");
    EXPECT_EQ(eventCode(EV_MSC, "MSC_SCAN"), MSC_SCAN);
    EXPECT_EQ(eventCode(EV_SYN, "SYN_DROPPED"), SYN_DROPPED);
    EXPECT_EQ(eventCode(EV_KEY, "65535"), 65535);
    EXPECT_EQ(eventCodeName(EV_SYN, SYN_REPORT).toStdString(), "SYN_REPORT");
    EXPECT_EQ(eventCodeName(EV_KEY, 60000).toStdString(), "60000");
}

TEST(EventNames, SayWhatAValueMeans)
{
    EXPECT_EQ(valueName(EV_KEY, 0).toStdString(), "release");
    EXPECT_EQ(valueName(EV_KEY, 1).toStdString(), "press");
    EXPECT_EQ(valueName(EV_KEY, 2).toStdString(), "repeat");
    EXPECT_EQ(valueName(EV_KEY, 3).toStdString(), "3");
    EXPECT_EQ(valueName(EV_SW, 1).toStdString(), "on");
    EXPECT_EQ(valueName(EV_SW, 0).toStdString(), "off");
    EXPECT_EQ(valueName(EV_KEY, -1).toStdString(), "-1");
    EXPECT_EQ(valueName(EV_SW, 2).toStdString(), "2");
    EXPECT_EQ(valueName(EV_SW, -1).toStdString(), "-1");
    for (const int type : {EV_SYN, EV_REL, EV_ABS, EV_MSC, EV_LED, EV_REP}) {
        for (const int value : {0, 1, 2})
            EXPECT_EQ(valueName(type, value).toInt(), value) << type;
        EXPECT_EQ(valueName(type, 1).toStdString(), "1") << type;
    }
}

TEST(EventNames, KnowWhichKeysTellWhatIsTyped)
{
    for (const int code : {KEY_A, KEY_Z, KEY_1, KEY_0, KEY_SPACE, KEY_KP5, KEY_DOT, KEY_MINUS})
        EXPECT_TRUE(isTypingKey(code)) << keyName(code).toStdString();
    for (const int code : {KEY_ENTER, KEY_UP, KEY_VOLUMEUP, KEY_BACKSPACE, KEY_LEFTSHIFT, KEY_F1})
        EXPECT_FALSE(isTypingKey(code)) << keyName(code).toStdString();
}

// A key that is new in the kernel may type, which somebody has to decide.
TEST(EventNames, ClassifyEveryKeyThatTheKernelNames)
{
    QFile file(QStringLiteral(VORN_SOURCE_DIR "/tests/profile/names/KeyClasses.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QMap<QString, bool> types;
    bool isBlanked = false;
    for (const QByteArray &line : file.readAll().split('\n')) {
        for (const QByteArray &word : line.simplified().split(' ')) {
            if (word.startsWith('#'))
                break;
            if (word.endsWith(':'))
                isBlanked = word == "blanked:";
            else if (!word.isEmpty())
                types.insert(QString::fromLatin1(word), isBlanked);
        }
    }
    const QStringList names = keyNames();
    EXPECT_GT(names.size(), 500);
    for (const QString &name : names) {
        ASSERT_TRUE(types.contains(name)) << name.toStdString() << " is not classified";
        EXPECT_EQ(isTypingKey(*keyCode(name)), types.value(name)) << name.toStdString();
    }
}
