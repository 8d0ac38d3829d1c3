#include "SessionMembers.h"

#include "BusNames.h"

#include <QJsonDocument>

#include <gmock/gmock.h>

#include <linux/input.h>

#include <limits>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

using testing::ElementsAre;

/// The object with one member, @p value as JSON.
SessionMembers member(const char *key, const QByteArray &value)
{
    const QByteArray text = QByteArray("{\"") + key + "\":" + value + '}';
    const QJsonDocument document = QJsonDocument::fromJson(text);
    EXPECT_TRUE(document.isObject()) << text.constData();
    return SessionMembers(document.object());
}

} // namespace

TEST(SessionMembers, AreReadByType)
{
    EXPECT_EQ(member("a", "\"b\"").text("a").toStdString(), "b");
    EXPECT_TRUE(member("a", "true").truth("a"));
    EXPECT_EQ(member("a", "-7").integer("a", -10, 10), -7);
    EXPECT_EQ(member("a", "1.5").time("a"), 1500);
    EXPECT_EQ(member("a", "\"1970-01-01T00:00:01.000002Z\"").wallClock("a"), 1'000'002);
    EXPECT_THAT(member("a", "[\"KEY_STOP\", \"KEY_PLAY\"]").codes("a", EV_KEY),
                ElementsAre(KEY_STOP, KEY_PLAY));
    EXPECT_EQ(member("a", "\"USB\"").named<InputEvent::Bus>("a", bus), InputEvent::Bus::USB);
    EXPECT_EQ(member("a", "\"12\"").named<InputEvent::Bus>("a", bus),
              static_cast<InputEvent::Bus>(12));
}

TEST(SessionMembers, MayBeAbsentWhereTheyAreOptional)
{
    SessionMembers members = member("a", "1");
    EXPECT_TRUE(members.optionalText("b").isEmpty());
    EXPECT_TRUE(members.error().isEmpty());
    members.optionalText("a");
    EXPECT_EQ(members.error().toStdString(), "'a' must be a string");
}

TEST(SessionMembers, ReportTheFirstErrorOnly)
{
    SessionMembers members = member("a", "1");
    members.truth("a");
    members.text("b");
    members.text("a");
    EXPECT_EQ(members.error().toStdString(), "'a' must be true or false");
    SessionMembers others = member("a", "1");
    others.text("b");
    others.truth("a");
    EXPECT_EQ(others.error().toStdString(), "'b' is missing");
}

TEST(SessionMembers, RejectTimesThatCannotBe)
{
    for (const char *time : {"1e300", "-1e300", "9007199254740992", "\"1\"", "null"}) {
        SessionMembers members = member("time", time);
        members.time("time");
        EXPECT_EQ(members.error().toStdString(),
                  "'time' must be a number of milliseconds, within 142 years of zero")
            << time;
    }
}

TEST(SessionMembers, RejectTimesOfDayInAnotherForm)
{
    for (const char *time : {"yesterday", "2024-01-01T00:00:00Z", "2024-01-01T00:00:00.000Z",
                             "2024-13-01T00:00:00.000000Z", "2024-01-01T00:00:00.0000a0Z",
                             "9024-01-01T00:00:00.000000Z"})
    {
        SessionMembers members = member("at", '"' + QByteArray(time) + '"');
        members.wallClock("at");
        EXPECT_EQ(members.error().toStdString(),
                  "'at' must be a time like '2024-03-01T12:00:00.000000Z'")
            << time;
    }
}

TEST(SessionMembers, RejectNumbersThatAreNotWholeOrOutOfRange)
{
    for (const char *value : {"1.5", "2147483648", "-2147483649", "1e99", "\"1\""}) {
        SessionMembers members = member("value", value);
        members.integer("value", std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
        EXPECT_EQ(members.error().toStdString(),
                  "'value' must be a whole number from -2147483648 to 2147483647")
            << value;
    }
}

TEST(SessionMembers, RejectWhatIsNotAListOfObjects)
{
    const auto errorOf = [](const QByteArray &value) {
        SessionMembers members = member("a", value);
        members.objects("a");
        return members.error().toStdString();
    };
    EXPECT_EQ(errorOf("{}"), "'a' must be a list of objects");
    EXPECT_EQ(errorOf("1"), "'a' must be a list of objects");
    EXPECT_EQ(errorOf("[{}, 1]"), "'a' must contain only objects");
    EXPECT_EQ(errorOf("[]"), "");
    EXPECT_EQ(errorOf("[{}, {}]"), "");
    EXPECT_EQ(member("a", "[{\"b\": 1}, {}]").objects("a").size(), 2);
}

TEST(SessionMembers, RejectWhatIsNotAListOfNames)
{
    SessionMembers number = member("keys", "1");
    number.codes("keys", EV_KEY);
    EXPECT_EQ(number.error().toStdString(), "'keys' must be a list of names");
    SessionMembers unknown = member("keys", "[\"KEY_STOP\", \"X\"]");
    EXPECT_THAT(unknown.codes("keys", EV_KEY), ElementsAre(KEY_STOP, 0));
    EXPECT_EQ(unknown.error().toStdString(), "'keys' contains 'X', an unknown code");
}
