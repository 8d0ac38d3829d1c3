#ifndef VORN_TOOLS_JUNITREPORT_H
#define VORN_TOOLS_JUNITREPORT_H

#include "SimulationTotals.h"

#include <QByteArray>
#include <QVector>

namespace Vorn::Tools {

/// The results as JUnit XML, which CI systems read: one suite with a test case for each file. Times
/// are seconds of the sessions; with virtual time, equal results give equal bytes.
/// @param command that ran them: "simulate"
QByteArray toJUnit(const QVector<FileResult> &results, const QString &command);

/// What every such file of @p command has near its start.
QByteArray junitSignature(const QString &command);

} // namespace Vorn::Tools

#endif
