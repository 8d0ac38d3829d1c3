#include "JUnitReport.h"

#include <QXmlStreamReader>

#include <gmock/gmock.h>

#include <string>

using namespace Vorn::Tools;

namespace {

using Outcome = FileResult::Outcome;

FileResult file(const char *name, Outcome outcome)
{
    FileResult result;
    result.file = QString::fromUtf8(name);
    result.outcome = outcome;
    return result;
}

/// The text of all elements of that name, after reading the whole of a file that must be valid.
QStringList elements(const QByteArray &xml, const char *name)
{
    QStringList texts;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement
            && reader.name() == QLatin1String(name))
            texts += reader.readElementText();
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return texts;
}

} // namespace

TEST(JUnitReport, HasATestCaseForEachFile)
{
    FileResult passed = file("a.scenario", Outcome::Passed);
    passed.met = 3;
    passed.duration = 1'200;
    FileResult failed = file("b.scenario", Outcome::Failed);
    failed.met = 1;
    failed.failed = 1;
    failed.notChecked = 2;
    failed.duration = 800;
    failed.message = QStringLiteral("b.scenario:5: expected Info KeyPressed, found nothing");
    failed.details = QStringList{failed.message, QStringLiteral(">     0.800  here")};
    FileResult broken = file("c.scenario", Outcome::CannotBeRun);
    broken.message = QStringLiteral("c.scenario:1: error: what");
    broken.details = QStringList{broken.message};
    EXPECT_EQ(toJUnit({passed, failed, broken, file("d.scenario", Outcome::Interrupted),
                       file("e.scenario", Outcome::NotRun)},
                      QStringLiteral("simulate"))
                  .toStdString(),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuite name="vorn-input simulate" tests="5" failures="1" errors="2" skipped="1" time="2.000">
  <testcase classname="vorn-input.simulate" name="a.scenario" file="a.scenario" assertions="3" time="1.200">
    <system-out>a.scenario: passed, 3 expectations, 1.200 s</system-out>
  </testcase>
  <testcase classname="vorn-input.simulate" name="b.scenario" file="b.scenario" assertions="2" time="0.800">
    <failure message="b.scenario:5: expected Info KeyPressed, found nothing">b.scenario:5: expected Info KeyPressed, found nothing
&gt;     0.800  here</failure>
    <system-out>b.scenario: FAILED at 0.800 s; 1 expectation met, 1 failed, 2 not checked</system-out>
  </testcase>
  <testcase classname="vorn-input.simulate" name="c.scenario" file="c.scenario" assertions="0" time="0.000">
    <error message="c.scenario:1: error: what">c.scenario:1: error: what</error>
    <system-out>c.scenario: could not be run</system-out>
  </testcase>
  <testcase classname="vorn-input.simulate" name="d.scenario" file="d.scenario" assertions="0" time="0.000">
    <error message="d.scenario: interrupted at 0.000 s; 0 expectations met"></error>
    <system-out>d.scenario: interrupted at 0.000 s; 0 expectations met</system-out>
  </testcase>
  <testcase classname="vorn-input.simulate" name="e.scenario" file="e.scenario" assertions="0" time="0.000">
    <skipped message="e.scenario: not run"></skipped>
    <system-out>e.scenario: not run</system-out>
  </testcase>
</testsuite>
)");
}

TEST(JUnitReport, IsValidXmlWhateverTheTexts)
{
    QString odd;
    for (ushort character = 0; character < 0x100; ++character)
        odd += QChar(character);
    // Neither a half of a pair nor a noncharacter may be in XML.
    odd += QChar(0xD83C);
    odd += QChar(0xFFFE);
    odd += QChar(0xFFFF);
    odd += QStringLiteral("]]>");
    FileResult failed = file("a", Outcome::Failed);
    failed.file = odd;
    failed.message = odd;
    failed.details = QStringList{QStringLiteral("first"), odd};
    const QStringList failures = elements(toJUnit({failed}, QStringLiteral("simulate")), "failure");
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures[0].startsWith(QStringLiteral("first\n")));
    EXPECT_TRUE(failures[0].contains(QStringLiteral("<=>?@ABC"))) << failures[0].toStdString();
    EXPECT_TRUE(failures[0].endsWith(QStringLiteral("]]>")));
}
