#ifndef VORN_WORKBENCH_PLAINTEXT_H
#define VORN_WORKBENCH_PLAINTEXT_H

#include <QByteArray>
#include <QString>

namespace Vorn::Workbench {

enum class Charset { Ascii, Utf8 };

/// What the locale's terminals can show; a serial console in the C locale only ASCII. The program's
/// locale must have been set.
Charset localeCharset();

/// A text for people. In ASCII, lines and signs become similar ones and other characters their
/// numbers: "\u00e4".
QByteArray encoded(const QString &text, Charset charset);

} // namespace Vorn::Workbench

#endif
