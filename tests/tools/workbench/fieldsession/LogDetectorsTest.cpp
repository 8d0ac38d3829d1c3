#include "LogDetectors.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

LogDevicePtr device(const QString &path)
{
    auto made = std::make_shared<LogDevice>();
    made->path = path;
    return made;
}

LogOriginPtr descriptor(int number)
{
    return std::make_shared<LogOrigin>(number);
}

LogOriginPtr of(const LogDevicePtr &known, std::optional<int> number = std::nullopt)
{
    auto origin = std::make_shared<LogOrigin>(number);
    origin->setDevice(known);
    return origin;
}

LogOriginPtr labelled(const QString &label)
{
    LogOriginPtr origin = LogOrigins::unnamed();
    origin->setLabel(label);
    return origin;
}

Said::KeysStored stored(const QVector<int> &codes)
{
    Said::KeysStored keys;
    for (const int code : codes)
        keys.keys += {code, true};
    return keys;
}

LogDetectorPtr withKeys(LogDetectors *detectors, const LogOriginPtr &origin,
                        const QString &identifier, const QVector<int> &codes)
{
    LogDetectorPtr detector =
        detectors->forKeys(origin, true, identifier, stored(codes), codes.first());
    detector->keys.clear();
    for (const int code : codes)
        detector->keys += {code, 1};
    return detector;
}

} // namespace

TEST(LogDetectors, KnowTheKeysThatALineMayBeAbout)
{
    LogDetector detector;
    EXPECT_TRUE(leadsTo(detector, stored({30}), 30));
    EXPECT_FALSE(leadsTo(detector, stored({30, 48}), 30));
    detector.keys = {{30, 1}, {48, 0}};
    EXPECT_TRUE(leadsTo(detector, stored({30, 48}), 30));
    EXPECT_TRUE(leadsTo(detector, stored({30, 48}), 48));
    EXPECT_TRUE(leadsTo(detector, stored({30, 48, 46}), 46));
    EXPECT_FALSE(leadsTo(detector, stored({48, 30}), 46)) << "in another order";
    EXPECT_FALSE(leadsTo(detector, stored({30}), 46));
    EXPECT_TRUE(leadsTo(detector, stored({30}), 48));
    EXPECT_EQ(detector.indexOf(30), 0);
    EXPECT_EQ(detector.indexOf(48), 1);
    EXPECT_EQ(detector.indexOf(46), -1);
    EXPECT_EQ(detector.codes(), (QVector<int>{30, 48}));
    EXPECT_EQ(detector.codesDown(), QVector<int>{30});
    detector.leftTimed = {48, 46};
    EXPECT_EQ(detector.codesTimed(), (QVector<int>{30, 48, 46}));
}

TEST(LogDetectors, MayBeOfTheSameDeviceUnlessTheLogSaysOtherwise)
{
    const LogDevicePtr panel = device("/dev/input/event0");
    const LogDevicePtr remote = device("/dev/input/event1");
    const LogOriginPtr one = descriptor(5);
    EXPECT_TRUE(mayBeSame(*one, *one));
    EXPECT_FALSE(mayBeSame(*one, *descriptor(6)));
    EXPECT_TRUE(mayBeSame(*one, *LogOrigins::unnamed()));
    EXPECT_TRUE(mayBeSame(*LogOrigins::unnamed(), *one));
    EXPECT_TRUE(mayBeSame(*LogOrigins::unnamed(), *LogOrigins::unnamed()));
    EXPECT_TRUE(mayBeSame(*of(panel, 5), *of(panel, 6))) << "the two readers of one";
    EXPECT_FALSE(mayBeSame(*of(panel, 5), *of(remote, 6)));
    EXPECT_FALSE(mayBeSame(*of(panel), *of(remote)));
    EXPECT_TRUE(mayBeSame(*of(panel), *LogOrigins::unnamed()));
    EXPECT_FALSE(mayBeSame(*of(panel, 5), *descriptor(6)));
    EXPECT_TRUE(mayBeSame(*labelled("a"), *labelled("a")));
    EXPECT_FALSE(mayBeSame(*labelled("a"), *labelled("b")));
    EXPECT_FALSE(mayBeSame(*labelled("a"), *of(panel)));
    EXPECT_FALSE(mayBeSame(*of(panel), *labelled("a")));
    EXPECT_TRUE(mayBeSame(*labelled("a"), *LogOrigins::unnamed()));
}

TEST(LogDetectors, AreFoundByTheDeviceAndTheKeys)
{
    LogDetectors detectors;
    const LogOriginPtr panel = descriptor(5);
    const LogOriginPtr remote = descriptor(6);
    const LogDetectorPtr first = withKeys(&detectors, panel, "", {30});
    const LogDetectorPtr second = withKeys(&detectors, remote, "", {30});
    EXPECT_NE(first, second);
    EXPECT_EQ(detectors.forKeys(panel, true, "", stored({30, 48}), 48), first);
    EXPECT_EQ(detectors.forKeys(remote, true, "", stored({30, 48}), 48), second);
    EXPECT_EQ(detectors.forKeys(panel, true, "", stored({46, 48}), 48), first)
        << "lines are missing";
    EXPECT_EQ(detectors.all().size(), 2);
}

TEST(LogDetectors, AreNotFoundByADeviceThatIsOpenUnlessTheKeysFit)
{
    LogDetectors detectors;
    const LogDetectorPtr first = withKeys(&detectors, LogOrigins::unnamed(), "", {30});
    EXPECT_EQ(detectors.forKeys(LogOrigins::unnamed(), false, "", stored({30, 48}), 48), first);
    const LogDetectorPtr second =
        detectors.forKeys(LogOrigins::unnamed(), false, "", stored({48}), 48);
    EXPECT_NE(second, first);
    second->leftTimed.insert(48);
    const LogDetectorPtr third =
        detectors.forKeys(LogOrigins::unnamed(), false, "", stored({46}), 46);
    EXPECT_NE(third, second) << "without keys any would fit";
    EXPECT_NE(third, first);
}

TEST(LogDetectors, AreFoundByTheIdentifierBeforeOthers)
{
    LogDetectors detectors;
    const LogOriginPtr panel = descriptor(5);
    const LogDetectorPtr browse = withKeys(&detectors, panel, "browse", {30});
    const LogDetectorPtr text = withKeys(&detectors, panel, "text", {46});
    EXPECT_NE(browse, text);
    EXPECT_EQ(browse->identifier, "browse");
    EXPECT_EQ(detectors.forKeys(panel, true, "text", stored({46, 48}), 48), text);
    EXPECT_EQ(detectors.forKeys(panel, true, "browse", stored({30, 48}), 48), browse);
    EXPECT_EQ(browse->identifier, "browse");
    // One handler may serve several identifiers.
    EXPECT_EQ(detectors.forKeys(panel, true, "text", stored({30, 48}), 48), browse);
    EXPECT_EQ(browse->identifier, "text");
    EXPECT_EQ(text->identifier, "text");
}

TEST(LogDetectors, WithoutKeysAreOfTheirIdentifierOnly)
{
    LogDetectors detectors;
    const LogOriginPtr panel = descriptor(5);
    const LogDetectorPtr browse = withKeys(&detectors, panel, "browse", {30});
    browse->keys.clear();
    browse->leftTimed.insert(30);
    const LogDetectorPtr text = detectors.forKeys(panel, true, "text", stored({48}), 48);
    EXPECT_NE(text, browse);
    EXPECT_EQ(text->identifier, "text");
    EXPECT_EQ(detectors.forKeys(panel, true, "browse", stored({48}), 48), browse);
}

TEST(LogDetectors, DropAThirdKeyIfTheyHaveAChord)
{
    LogDetectors detectors;
    const LogOriginPtr panel = descriptor(5);
    const LogDetectorPtr browse = withKeys(&detectors, panel, "browse", {30});
    EXPECT_EQ(detectors.forThirdKey(panel, "browse"), nullptr);
    const LogDetectorPtr text = withKeys(&detectors, panel, "text", {46});
    text->isChord = true;
    EXPECT_EQ(detectors.forThirdKey(descriptor(6), "text"), nullptr);
    EXPECT_EQ(detectors.forThirdKey(panel, "browse"), text);
    browse->isChord = true;
    EXPECT_EQ(detectors.forThirdKey(panel, "browse"), browse);
    EXPECT_EQ(detectors.forThirdKey(panel, "text"), text);
    EXPECT_EQ(detectors.forThirdKey(panel, "other"), browse);
}

TEST(LogDetectors, DropAReleaseOfAKeyThatTheyForgot)
{
    LogDetectors detectors;
    const LogOriginPtr panel = descriptor(5);
    const LogDetectorPtr first = withKeys(&detectors, panel, "", {30});
    first->forgotten.insert(48, 1);
    EXPECT_EQ(detectors.forRelease(panel, 30), first);
    EXPECT_EQ(detectors.forRelease(panel, 48), first);
    EXPECT_EQ(detectors.forRelease(panel, 46), nullptr);
    EXPECT_EQ(detectors.forRelease(descriptor(6), 30), nullptr);
}

TEST(LogDetectors, AreForgottenWhenThereIsNothingToTell)
{
    LogDetectors detectors;
    const auto add = [&detectors](int number) {
        return withKeys(&detectors, descriptor(number), "", {number});
    };
    const LogDetectorPtr waiting = add(1);
    const LogDetectorPtr forgotten = add(2);
    const LogDetectorPtr timed = add(3);
    const LogDetectorPtr down = add(4);
    const LogDetectorPtr idle = add(5);
    for (const LogDetectorPtr &detector : {waiting, forgotten, timed, idle})
        detector->keys.clear();
    waiting->waiting[30] = {};
    forgotten->forgotten.insert(30, 1);
    timed->leftTimed.insert(30);
    detectors.forgetIdle();
    EXPECT_EQ(detectors.all(), (QVector<LogDetectorPtr>{waiting, forgotten, timed, down}));
    detectors.forget([](const LogOrigin &origin) { return origin.descriptor() == 2; });
    EXPECT_EQ(detectors.all(), (QVector<LogDetectorPtr>{waiting, timed, down}));
    waiting->waiting.clear();
    const LogDetectorPtr further = add(6);
    EXPECT_EQ(detectors.all(), (QVector<LogDetectorPtr>{timed, down, further}));
}

TEST(LogDetectors, AreNotMoreThanTwoHundred)
{
    LogDetectors detectors;
    const LogDetectorPtr first = withKeys(&detectors, descriptor(0), "", {30});
    for (int number = 1; number < 200; ++number)
        withKeys(&detectors, descriptor(number), "", {30});
    EXPECT_EQ(detectors.all().size(), 200);
    EXPECT_EQ(detectors.all().first(), first);
    // An idle one makes room.
    detectors.all().at(7)->keys.clear();
    withKeys(&detectors, descriptor(200), "", {30});
    EXPECT_EQ(detectors.all().size(), 200);
    EXPECT_EQ(detectors.all().first(), first);
    const LogDetectorPtr last = withKeys(&detectors, descriptor(201), "", {30});
    EXPECT_EQ(detectors.all().size(), 200);
    EXPECT_NE(detectors.all().first(), first);
    EXPECT_EQ(detectors.all().last(), last);
}
