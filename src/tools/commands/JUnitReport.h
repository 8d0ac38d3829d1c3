#ifndef VORN_TOOLS_JUNITREPORT_H
#define VORN_TOOLS_JUNITREPORT_H

#include "SimulationTotals.h"

#include <QByteArray>
#include <QVector>

namespace Vorn::Tools {

/// The results as JUnit XML, which CI systems read: one suite with a test case for each file. Times
/// are seconds of virtual time, so that equal results give equal bytes.
QByteArray toJUnit(const QVector<FileResult> &results);

/// What every such file has near its start.
QByteArray junitSignature();

} // namespace Vorn::Tools

#endif
