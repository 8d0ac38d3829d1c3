#ifndef VORN_WORKBENCH_SYSFSTEXT_H
#define VORN_WORKBENCH_SYSFSTEXT_H

#include <QByteArray>
#include <QMap>

#include <optional>

namespace Vorn::Workbench {

/// @file
/// The capabilities of a device in the notation of sysfs and udev.

/// The event types by the names of their bitmaps: "key" is EV_KEY; "ev", the bitmap of all types,
/// is EV_SYN.
const QMap<QByteArray, int> &typesByName();

/// A bitmap from its words, "40 0 0 1c000000000000 0", the highest first and each without leading
/// zeros.
/// @param wordSize bytes of a word of the machine that wrote them
/// @return nothing if one is not a word of that size, or there are too many
std::optional<QByteArray> bitsOfWords(const QByteArray &words, int wordSize);

/// The words of a bitmap, of 8 bytes each and with leading zeros, so that a reader sees their size.
QByteArray wordsOfBits(const QByteArray &bits);

/// The last key of a module alias, "input:b0019v0001p0001e0001-e0,1,k72,73,166,ramlsfw"; -1 if it
/// has none.
int lastKeyOfAlias(const QByteArray &alias);

} // namespace Vorn::Workbench

#endif
