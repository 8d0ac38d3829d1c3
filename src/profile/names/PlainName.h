#ifndef VORN_PROFILE_PLAINNAME_H
#define VORN_PROFILE_PLAINNAME_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace Vorn {

/// @p name for lookups by C strings. Null if the lookup would find another name: C strings end at a
/// null character, and QMetaEnum takes "InputEvent::Stop" for "Stop".
QByteArray plainName(const QString &name);

/// A number in decimal or, after "0x", in hexadecimal, from 0 to @p largest.
std::optional<int> plainNumber(const QString &text, int largest);

} // namespace Vorn

#endif
