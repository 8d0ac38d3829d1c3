#include "TextPosition.h"

#include <algorithm>

namespace Vorn {

namespace {

/// Continuation bytes of UTF-8, which begin no character.
bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

TextPosition positionOf(const QByteArray &text, int offset)
{
    // Editors count columns in characters, not in bytes.
    TextPosition position;
    const int end = std::clamp(offset, 0, static_cast<int>(text.size()));
    for (int i = 0; i < end; ++i) {
        if (text.at(i) == '\n') {
            ++position.line;
            position.column = 1;
        } else if (!isContinuation(text.at(i))) {
            ++position.column;
        }
    }
    return position;
}

} // namespace Vorn
