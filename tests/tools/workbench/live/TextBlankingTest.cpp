#include "TextBlanking.h"
#include "RecorderFixture.h"

using namespace Vorn::Sim;
using namespace Vorn;
using namespace Vorn::Workbench;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

/// A remote control whose keys are characters under "text".
Profile remoteProfile()
{
    Profile profile;
    profile.initial = QStringLiteral("browse");
    HandlerProfile browse;
    browse.identifiers = QStringList{QStringLiteral("browse")};
    browse.keys = {{KEY_2, InputEvent::CursorUp, true, {}, {}},
                   {KEY_OK, InputEvent::Confirm, false, {}, {}}};
    HandlerProfile text;
    text.identifiers = QStringList{QStringLiteral("text")};
    text.keys = {{KEY_2, InputEvent::Number2, true, {}, {}},
                 {KEY_A, InputEvent::CharA, true, {}, {}},
                 {KEY_S, InputEvent::CharS, true, {}, {}},
                 {KEY_OK, InputEvent::Submit, false, {}, {}}};
    DeviceProfile remote;
    remote.name = QStringLiteral("remote");
    remote.handlers = {browse, text};
    profile.devices = {remote};
    return profile;
}

/// Blanking as it shows in the files of a recording, where nothing may be left.
class TextBlankingTest : public RecorderFixture
{ };

} // namespace

TEST_F(TextBlankingTest, LeavesNoTraceOfTypedTextWithoutAProfile)
{
    start(nullptr);
    plug(DeviceDescription::keyboard("remote", BUS_I2C, {KEY_A, KEY_S, KEY_OK})
             .withKeys({}, {KEY_Q})
             .withEventTypes({EV_MSC}));
    type(KEY_Q, InputEvent::CharQ);
    type(KEY_OK, InputEvent::Confirm);
    add(DetectorStep{DetectorStep::What::LongPressDue, device, {KEY_Q}, 5, false});
    add(Remark{"KEY_Q is mapped to CharQ, KEY_OK is not"});
    add(RecordOutcome{RecordOutcome::What::Published,
                      device,
                      EV_KEY,
                      KEY_Q,
                      1,
                      {"CharQ KeyPressed"},
                      "KEY_Q is published at once"});
    add(RecordOutcome{RecordOutcome::What::NotTaken, device, EV_MSC, MSC_SCAN, KEY_Q, {}, {}});
    add(KeyStates{device, true, false, {{KEY_Q, true, false, true, false, 0, {}}}});
    m_recorder->close();

    EXPECT_THAT(codesOf(1), ElementsAre(KEY_A, KEY_OK));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_A, KEY_OK));
    EXPECT_THAT(expectations(),
                ElementsAre("CharA KeyPressed I2C", "CharA KeyReleased I2C",
                            "Confirm KeyPressed I2C", "Confirm KeyReleased I2C"));
    const std::string all = everything();
    EXPECT_THAT(all, Not(HasSubstr("KEY_Q")));
    EXPECT_THAT(all, Not(HasSubstr("CharQ")));
    EXPECT_THAT(all, Not(HasSubstr("0001 0010 ")));
    EXPECT_THAT(all, Not(HasSubstr("\"codeNumber\":16")));
    EXPECT_THAT(all, Not(HasSubstr("MSC_SCAN")));
    EXPECT_THAT(all, Not(HasSubstr(" 0004 0004 ")));
    EXPECT_THAT(all, HasSubstr("KEY_A is mapped to CharA, KEY_OK is not"));
    EXPECT_TRUE(load().nodes.first().device->keysDown.isEmpty());
}

TEST_F(TextBlankingTest, IsTheSameForEveryTextOfTheSameRhythm)
{
    const auto sessionOf = [this](const QVector<int> &keys,
                                  const QVector<InputEvent::Command> &as) {
        QDir(folder()).removeRecursively();
        const Profile profile = remoteProfile();
        m_time = 1'000'000;
        start(&profile);
        m_recorder->add({0, DeviceChange{device, "remote", InputEvent::Bus::I2C, true}});
        add(IdentifierSelected{"text"});
        for (int i = 0; i < keys.size(); ++i)
            type(keys.at(i), as.at(i));
        m_recorder->close();
        return everything();
    };
    const std::string one = sessionOf({KEY_2, KEY_S, KEY_Q},
                                      {InputEvent::Number2, InputEvent::CharS, InputEvent::None});
    const std::string other = sessionOf({KEY_A, KEY_2, KEY_W},
                                        {InputEvent::CharA, InputEvent::Number2, InputEvent::None});
    EXPECT_EQ(one, other);
    EXPECT_THAT(one, HasSubstr("expect CharA KeyPressed I2C"));
}

TEST_F(TextBlankingTest, KeepsKeysThatTypeOnlyUnderAnotherIdentifier)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(remote);
    type(KEY_2, InputEvent::CursorUp);
    add(IdentifierSelected{"text"});
    type(KEY_2, InputEvent::Number2);
    type(KEY_OK, InputEvent::Submit);
    add(IdentifierSelected{"browse"});
    type(KEY_2, InputEvent::CursorUp);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_2, KEY_A, KEY_OK, KEY_2));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_2, KEY_A, KEY_OK, KEY_2));
    EXPECT_THAT(expectations(),
                ElementsAre("CursorUp KeyPressed I2C", "CursorUp KeyReleased I2C",
                            "CharA KeyPressed I2C", "CharA KeyReleased I2C",
                            "Submit KeyPressed I2C", "Submit KeyReleased I2C",
                            "CursorUp KeyPressed I2C", "CursorUp KeyReleased I2C"));
}

TEST_F(TextBlankingTest, ReleasesAKeyAsItWasPressed)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(remote);
    record(EV_KEY, KEY_2, 1);
    add(IdentifierSelected{"text"});
    record(EV_KEY, KEY_2, 0);
    record(EV_KEY, KEY_2, 1);
    add(IdentifierSelected{"browse"});
    record(EV_KEY, KEY_2, 2);
    record(EV_KEY, KEY_2, 0);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_2, KEY_A));
    EXPECT_THAT(codesOf(2), ElementsAre(KEY_A));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_2, KEY_A));
}

TEST_F(TextBlankingTest, KeepsOverlappingStrokesApart)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(remote);
    add(IdentifierSelected{"text"});
    record(EV_KEY, KEY_S, 1);
    record(EV_KEY, KEY_2, 1);
    record(EV_KEY, KEY_S, 0);
    record(EV_KEY, KEY_2, 0);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_A, KEY_2));
    EXPECT_THAT(codesOf(0), ElementsAre(KEY_A, KEY_2));
}

TEST_F(TextBlankingTest, BlanksADeviceThatTheProfileDoesNotMention)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(DeviceDescription::keyboard("keyboard", BUS_USB, {KEY_Q, KEY_W, KEY_OK}));
    record(EV_KEY, KEY_W, 1);
    record(EV_KEY, KEY_OK, 1);
    // It has no KEY_A.
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_Q, KEY_OK));
}

TEST_F(TextBlankingTest, KeepsScanCodesOfADeviceThatCannotType)
{
    start(nullptr);
    plug(DeviceDescription::keyboard("panel", BUS_HOST, {KEY_OK}).withEventTypes({EV_MSC}));
    record(EV_MSC, MSC_SCAN, 17);
    EXPECT_THAT(contentOf("event0.evemu").toStdString(), HasSubstr(" 0004 0004 0017\n"));
}

TEST_F(TextBlankingTest, ShowsTextIfItIsTo)
{
    start(nullptr, true);
    plug(remote);
    type(KEY_Q, InputEvent::CharQ);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_Q));
    EXPECT_THAT(expectations(), ElementsAre("CharQ KeyPressed I2C", "CharQ KeyReleased I2C"));
    EXPECT_THAT(everything(), HasSubstr("MSC_SCAN"));
}

TEST_F(TextBlankingTest, BlanksTypingKeysBesideKeysThatAreMapped)
{
    const Profile profile = remoteProfile();
    start(&profile);
    plug(remote);
    add(IdentifierSelected{"browse"});
    // Above the code of a key that is mapped, and not mapped itself.
    type(KEY_Q, InputEvent::None);
    type(KEY_2, InputEvent::CursorUp);
    type(KEY_OK, InputEvent::Confirm);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_A, KEY_2, KEY_OK));
}

TEST_F(TextBlankingTest, HasTheFirstStandInForOneKeyMoreThanThereAre)
{
    start(nullptr);
    plug(DeviceDescription::keyboard("remote", BUS_I2C, {KEY_A, KEY_S}));
    for (const int code : {KEY_Q, KEY_W, KEY_E})
        record(EV_KEY, code, 1);
    EXPECT_THAT(codesOf(1), ElementsAre(KEY_A, KEY_S, KEY_A));
}

TEST_F(TextBlankingTest, NamesAChordByTheFirstOfItsKeysThatTypes)
{
    Profile profile = remoteProfile();
    profile.initial = QStringLiteral("text");
    profile.devices[0].handlers[1].keys.remove(1);
    start(&profile);
    plug(DeviceDescription::keyboard("remote", BUS_I2C, {KEY_2, KEY_S, KEY_OK}));
    add(EventPublished{InputEvent::CharX,
                       InputEvent::KeyPressed,
                       InputEvent::Bus::I2C,
                       device,
                       EV_KEY,
                       {KEY_S, KEY_OK},
                       {}});
    EXPECT_THAT(expectations(), ElementsAre("Number2 KeyPressed I2C"));
    EXPECT_THAT(contentOf("session.jsonl").toStdString(),
                HasSubstr("\"codes\":[\"KEY_2\",\"KEY_OK\"]"));
}

TEST_F(TextBlankingTest, LeavesSwitchesWithTheNumbersOfKeysAlone)
{
    start(nullptr);
    plug(remote);
    static_assert(SW_HEADPHONE_INSERT == KEY_1);
    add(RecordOutcome{
        RecordOutcome::What::NotTaken, device, EV_SW, SW_HEADPHONE_INSERT, 1, {}, {}});
    add(RecordRead{device, EV_SW, SW_HEADPHONE_INSERT, 1, wallClock + m_time});
    add(EventPublished{InputEvent::SWLineOut,
                       InputEvent::SwitchEnabled,
                       InputEvent::Bus::I2C,
                       device,
                       EV_SW,
                       {SW_HEADPHONE_INSERT},
                       {}});
    const std::string session = contentOf("session.jsonl").toStdString();
    EXPECT_THAT(session, Not(HasSubstr("KEY_A")));
    EXPECT_EQ(contentOf("session.jsonl").count("SW_HEADPHONE_INSERT"), 3);
}

TEST_F(TextBlankingTest, KeepsTheWordsOfRemarksThatAreNotTyped)
{
    start(nullptr);
    plug(remote);
    add(Remark{"KEY_Q, KEY_OK: CharQ, Confirm, Info KeyPressed, REL_X, KEY_NOWHERE, CharQs"});
    EXPECT_THAT(contentOf("session.jsonl").toStdString(),
                HasSubstr("\"KEY_A, KEY_OK: CharA, Confirm, Info KeyPressed, REL_X, KEY_NOWHERE, "
                          "CharQs\""));
}
