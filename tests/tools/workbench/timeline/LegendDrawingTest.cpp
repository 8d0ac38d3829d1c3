#include "LegendDrawing.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace {

using testing::AllOf;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

} // namespace

TEST(LegendDrawing, ExplainsWhatIsInThePicture)
{
    EXPECT_THAT(draw(longPress()).texts("muted"),
                AllOf(Contains("key down"), Contains("timed for a long press"),
                      Contains("long press due"), Contains("due, not yet published"),
                      Contains("long press published"), Contains("release published")));
    EXPECT_THAT(draw(chord()).texts("muted"),
                AllOf(Contains("chord"), Contains("withdrawn for a chord"),
                      Contains("record dropped"), Contains("press published")));
}

TEST(LegendDrawing, LeavesOutWhatIsNot)
{
    EXPECT_THAT(draw(longPress()).texts("muted"),
                AllOf(Not(Contains("chord")), Not(Contains("auto-repeat")),
                      Not(Contains("press published")), Not(Contains("switch on"))));
    const Picture empty = draw({start()});
    EXPECT_THAT(empty.texts("muted"), Not(Contains("key down")));
    EXPECT_THAT(empty.ofClass("bar"), IsEmpty());
}

TEST(LegendDrawing, ShowsASampleOfEachSymbol)
{
    // One in the lane, one in the legend.
    const Picture picture = draw(chord());
    EXPECT_THAT(picture.ofClass("withdrawn"), SizeIs(2));
    EXPECT_THAT(picture.ofClass("dropped"), SizeIs(2));
    EXPECT_THAT(picture.ofClass("bar-chord"), SizeIs(2));
}

TEST(LegendDrawing, StartsANewRowRatherThanCrossTheEdge)
{
    QVector<SessionEntry> entries = longPress();
    entries += chord();
    const Picture picture = draw(entries);
    const double right = picture.root().number("width");
    double firstRow = 0;
    double lastRow = 0;
    for (const Element &element : picture.ofClass("muted")) {
        EXPECT_LE(element.number("x"), right);
        if (element.text.trimmed() == "key down")
            firstRow = element.number("y");
        if (element.text.trimmed() == "release published")
            lastRow = element.number("y");
    }
    EXPECT_GT(firstRow, 0);
    EXPECT_GT(lastRow, firstRow);
    EXPECT_LT(lastRow, picture.root().number("height"));
}
