#include "PlainText.h"

#include <QByteArray>
#include <QString>

#include <gmock/gmock.h>

#include <clocale>
#include <string>

using namespace Vorn::Workbench;

namespace {

/// Sets the locale of characters while it is alive.
class Locale
{
public:
    explicit Locale(const char *name)
        : m_saved(std::setlocale(LC_CTYPE, nullptr))
        , m_isSet(std::setlocale(LC_CTYPE, name) != nullptr)
    { }
    ~Locale() { std::setlocale(LC_CTYPE, m_saved.c_str()); }
    Locale(const Locale &) = delete;
    Locale &operator=(const Locale &) = delete;

    bool isSet() const { return m_isSet; }

private:
    const std::string m_saved;
    const bool m_isSet;
};

} // namespace

TEST(PlainText, IsAsciiWhereTheLocaleHasNoMore)
{
    {
        const Locale locale("C");
        ASSERT_TRUE(locale.isSet());
        EXPECT_EQ(localeCharset(), Charset::Ascii);
    }
    const Locale locale("C.UTF-8");
    ASSERT_TRUE(locale.isSet());
    EXPECT_EQ(localeCharset(), Charset::Utf8);
}

TEST(PlainText, LosesNothing)
{
    const QString text = QString::fromUtf8("a │ b… −1 → ✗ ä 🎵\x1b[0m\n");
    EXPECT_EQ(encoded(text, Charset::Utf8).toStdString(), text.toStdString());
    EXPECT_EQ(encoded(text, Charset::Ascii).toStdString(),
              "a | b... -1 -> x \\u00e4 \\U0001f3b5\x1b[0m\n");
}
