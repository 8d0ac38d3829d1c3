#ifndef VORN_WORKBENCH_SCENARIOLIKENESS_H
#define VORN_WORKBENCH_SCENARIOLIKENESS_H

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace Vorn::Workbench {

/// Whether a text was meant as a scenario: at least half of its first lines begin with a word that
/// a step begins with, or nearly so. The mistakes in any other file are not worth telling, and to
/// quote its lines could tell secrets.
/// @param steps keywords, and devices that have been declared before
/// @param actions what a device does
bool looksLikeScenario(const QByteArray &text, const QStringList &steps,
                       const QStringList &actions);

} // namespace Vorn::Workbench

#endif
