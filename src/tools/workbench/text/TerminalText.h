#ifndef VORN_WORKBENCH_TERMINALTEXT_H
#define VORN_WORKBENCH_TERMINALTEXT_H

#include <QString>
#include <QStringList>

/// Texts as they fit on a terminal. Widths are columns: an ideograph takes two, an accent none.
namespace Vorn::Workbench {

int textWidth(const QString &text);

/// @p text with blanks up to @p width, if it is shorter.
QString padded(const QString &text, int width);

/// @p text without its middle, where there is an ellipsis, if it is wider than @p width.
QString elided(const QString &text, int width);

/// @p text in lines of at most @p width, broken at blanks, or anywhere in a word that is wider.
QStringList wrapped(const QString &text, int width);

} // namespace Vorn::Workbench

#endif
