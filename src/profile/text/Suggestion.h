#ifndef VORN_PROFILE_SUGGESTION_H
#define VORN_PROFILE_SUGGESTION_H

#include <QString>
#include <QStringList>

namespace Vorn {

/// The one of @p known that @p unknown was probably meant to be, ignoring case; empty if none is
/// close.
QString closest(const QString &unknown, const QStringList &known);

/// ", did you mean 'VolumeUp'?" or nothing: the end of a message about an unknown name.
QString suggestion(const QString &unknown, const QStringList &known);

/// The same, or if none is close: "; write one of KeyPressed, KeyReleased". For short lists.
QString suggestionOrList(const QString &unknown, const QStringList &known);

} // namespace Vorn

#endif
