#ifndef VORN_PROFILE_TEXTPOSITION_H
#define VORN_PROFILE_TEXTPOSITION_H

#include <QByteArray>

namespace Vorn {

/// Line and column in a UTF-8 text, from 1. A column is a character.
struct TextPosition
{
    int line = 1;
    int column = 1;
};

/// The place of a byte offset.
TextPosition positionOf(const QByteArray &text, int offset);

} // namespace Vorn

#endif
