#ifndef VORN_PROFILE_QUOTING_H
#define VORN_PROFILE_QUOTING_H

#include <QString>

#include <string_view>

namespace Vorn {

/// Whether people see a character as what it is: not one that controls a terminal or the direction
/// of a line, and none without width.
bool isPrintable(uint character);

/// A text from a device, a file or a command line, for people: characters that isPrintable() denies
/// are written as in TOML and JSON, "\n" or "\u202e".
QString printable(const QString &text);

/// The same in single quotes, shortened to sixty characters.
QString quoted(const QString &text);
/// The same for UTF-8.
QString quoted(std::string_view text);

/// A path in single quotes, printable, and whole, since its end tells one file of a folder from
/// another. One that is too long for any file is shortened like other texts.
QString quotedPath(const QString &path);

} // namespace Vorn

#endif
