#ifndef VORN_WORKBENCH_SESSIONFORMAT_H
#define VORN_WORKBENCH_SESSIONFORMAT_H

#include "Session.h"

#include <QString>

#include <optional>

/// What the writer and the reader of session files have to agree on.
namespace Vorn::Workbench {

/// Raised only by a change that makes older readers misread a file.
constexpr int sessionVersion = 1;

QString detectorStepName(DetectorStep::What step);

/// The inverse; nothing for a name that a newer version may have introduced.
std::optional<DetectorStep::What> detectorStep(const QString &name);

QString outcomeName(RecordOutcome::What outcome);

std::optional<RecordOutcome::What> outcome(const QString &name);

} // namespace Vorn::Workbench

#endif
