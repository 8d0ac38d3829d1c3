#ifndef VORN_TOOLS_SIMULATIONTOTALS_H
#define VORN_TOOLS_SIMULATIONTOTALS_H

#include "Diagnostic.h"
#include "Scenario.h"
#include "ScenarioRun.h"

#include <QString>
#include <QStringList>
#include <QVector>

namespace Vorn::Tools {

/// What became of one file.
struct FileResult
{
    enum class Outcome {
        Passed,
        NothingToCheck, ///< run to its end, but it expects nothing
        Failed, ///< an expectation was not met
        ProgramFailed, ///< the program that was driven ended or got stuck
        CannotBeRun, ///< it has errors
        StepCannotBeRun, ///< one of its steps is impossible
        Interrupted,
        NotRun, ///< interrupted before
    };

    QString file;
    Outcome outcome = Outcome::NotRun;
    int met = 0; ///< expectations
    int failed = 0;
    int notChecked = 0; ///< since the run ended before them
    qint64 duration = 0; ///< ms of the session
    QString message; ///< what is wrong, and where, in one line
    QStringList details; ///< all that was printed about it, in lines
    QStringList output; ///< of the program that was driven
};

FileResult resultOf(const QString &file, const Workbench::Scenario &scenario,
                    const Workbench::SimulationResult &result);

/// Of a file that could not be loaded.
FileResult resultOf(const QString &file, const Diagnostics &diagnostics);

int statusOf(FileResult::Outcome outcome);

/// The line that ends a file's output: "click.scenario: passed, 3 expectations, 1.200 s".
QString summary(const FileResult &result);

/// The lines that end the output for several files.
QStringList totals(const QVector<FileResult> &results);

/// "1.200", for milliseconds.
QString secondsText(qint64 milliseconds);

} // namespace Vorn::Tools

#endif
