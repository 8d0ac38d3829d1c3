#include "JsonLine.h"

#include <QJsonDocument>
#include <QString>

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

TEST(JsonLine, EscapesWhatATerminalMustNotGet)
{
    QString name = QStringLiteral("a\x1b\x7f\u009b\u202e\u2028K\u00e4se ");
    name += QString::fromStdU32String(U"\U000e0041") + QString::fromUtf8("🎵");
    const QByteArray line = jsonLine({{"name", name}});
    EXPECT_EQ(line.toStdString(),
              "{\"name\":\"a\\u001b\\u007f\\u009b\\u202e\\u2028Käse \\udb40\\udc41🎵\"}\n");
    EXPECT_EQ(QJsonDocument::fromJson(line).object().value("name").toString(), name);
}

TEST(JsonLine, IsValidEvenWithHalfACharacter)
{
    const QByteArray line = jsonLine({{"name", QString(QChar(0xD800)) + QStringLiteral("\u009b")}});
    EXPECT_FALSE(QJsonDocument::fromJson(line).isNull()) << line.toStdString();
    EXPECT_THAT(line.toStdString(), testing::HasSubstr("\\u009b"));
}
