#include "TimelineStyle.h"

#include "SessionEntries.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;
using namespace Vorn::Test;

namespace { } // namespace

TEST(TimelineStyle, GivesEveryClassAColourInLightAndDarkSurroundings)
{
    for (const auto &entries : {longPress(), chord()}) {
        const QByteArray svg = timelineSvg(entries, {});
        const QList<QByteArray> styles{svg.left(svg.indexOf("@media")),
                                       svg.mid(svg.indexOf("@media (prefers-color-scheme: dark)"),
                                               svg.indexOf("</style>") - svg.indexOf("@media"))};
        const Picture picture(svg);
        for (const Element &element : picture.elements()) {
            // Titles and lanes are coloured as all texts are.
            if (element.cssClass.isEmpty() || element.name == "text")
                continue;
            const QByteArray selector = '.' + element.cssClass.toUtf8() + ' ';
            for (const QByteArray &style : styles)
                EXPECT_TRUE(style.contains(selector)) << selector.constData();
        }
    }
}
