#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <gmock/gmock.h>

// The pictures of the documents, as a viewer that is no browser shows them.

namespace {

/// The colours of bars while a key is down or a switch is on, on a light background.
const QColor barColour(0x5b, 0x9b, 0xdf);
const QColor switchBarColour(0x2f, 0x9e, 0x8f);

QImage render(const QString &path)
{
    QSvgRenderer renderer(path);
    EXPECT_TRUE(renderer.isValid()) << path.toStdString();
    QImage image(renderer.defaultSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

int countOf(const QImage &image, const QColor &colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == colour ? 1 : 0;
    }
    return count;
}

} // namespace

TEST(SvgRendering, ShowsEveryPictureOfTheDocuments)
{
    const QDir pictures(QStringLiteral(VORN_SOURCE_DIR "/docs/pictures"));
    const QStringList names = pictures.entryList({QStringLiteral("*.svg")}, QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString &name : names) {
        const QImage image = render(pictures.filePath(name));
        EXPECT_GE(image.width(), 600) << name.toStdString();
        // A key is down or a switch is on for a good part of each of them: 14 pixels high.
        EXPECT_GE(countOf(image, barColour) + countOf(image, switchBarColour), 1000)
            << name.toStdString();
    }
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
