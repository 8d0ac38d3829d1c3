#include "PlainText.h"

#include <QVector>

#include <langinfo.h>

#include <cstring>

namespace Vorn::Workbench {

namespace {

QByteArray similar(uint character)
{
    switch (character) {
    case 0x2026: // …
        return "...";
    case 0x2212: // −
    case 0x2013: // –
    case 0x2500: // ─
        return "-";
    case 0x2502: // │
        return "|";
    case 0x2717: // ✗
        return "x";
    case 0x2192: // →
        return "->";
    default:
        break;
    }
    const bool isLong = character > 0xffff;
    return (isLong ? "\\U" : "\\u")
        + QByteArray::number(character, 16).rightJustified(isLong ? 8 : 4, '0');
}

} // namespace

Charset localeCharset()
{
    return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0 ? Charset::Utf8 : Charset::Ascii;
}

QByteArray encoded(const QString &text, Charset charset)
{
    if (charset == Charset::Utf8)
        return text.toUtf8();
    QByteArray bytes;
    bytes.reserve(text.size());
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        if (character < 0x80)
            bytes += static_cast<char>(character);
        else
            bytes += similar(character);
    }
    return bytes;
}

} // namespace Vorn::Workbench
