#include "GeneralSteps.h"

#include "Durations.h"
#include "Quoting.h"
#include "ScenarioContext.h"
#include "ScenarioLimits.h"
#include "ScenarioLine.h"

#include <QDateTime>

namespace Vorn::Workbench {

namespace {

QString wallClockRange()
{
    return QStringLiteral(
        "the wall clock can only show 1970 to 2104, the range of the records' time stamps");
}

} // namespace

void readStart(ScenarioLine *line, ScenarioContext *context)
{
    const ScenarioWord *word = line->take(QStringLiteral("a time like 2026-01-02T10:00:00Z"));
    if (!word)
        return;
    // It is the time that the simulation starts with; to set the clock later, there is `clock`.
    if (!context->scenario().steps.isEmpty()) {
        line->error(1, QStringLiteral("'start' must come before the first step with an effect"));
        return;
    }
    // No valid time is longer, and parsing a word of a megabyte takes long.
    const QDateTime time = word->text.size() <= 32
        ? QDateTime::fromString(word->text, Qt::ISODateWithMs)
        : QDateTime();
    // Without a time zone it would be a different moment on each machine.
    if (!time.isValid() || time.timeSpec() == Qt::LocalTime) {
        line->error(QStringLiteral("%1 is not a time like 2026-01-02T10:00:00Z, in UTC")
                        .arg(quoted(word->text)));
        return;
    }
    context->scenario().start = time.toMSecsSinceEpoch();
    if (!context->setWallClock(time.toMSecsSinceEpoch()))
        line->error(wallClockRange());
}

void readWait(ScenarioLine *line, ScenarioContext *context)
{
    if (line->takeKeyword(QLatin1String("end"))) {
        // How long this takes is known only once the recordings are loaded.
        context->addStep(*line, Step::WaitForEnd{});
        return;
    }
    const std::optional<qint64> duration = line->takeDuration();
    if (!duration)
        return;
    context->addTime(line, *duration);
    context->addStep(*line, Step::Wait{*duration});
}

void readClock(ScenarioLine *line, ScenarioContext *context)
{
    const ScenarioWord *word = line->take(QStringLiteral("a clock step like +1h or -5s"));
    if (!word)
        return;
    const std::optional<qint64> delta = signedMilliseconds(word->text);
    if (!delta || qAbs(*delta) > ScenarioLimit::clockStep) {
        line->error(QStringLiteral("%1 is not a clock step; write one like +1h or -5s, at most 10 "
                                   "years")
                        .arg(quoted(word->text)));
        return;
    }
    if (!context->setWallClock(context->wallClock() + *delta)) {
        line->error(wallClockRange());
        return;
    }
    context->addStep(*line, Step::StepClock{*delta});
}

void readSelect(ScenarioLine *line, ScenarioContext *context)
{
    if (const ScenarioWord *word = line->take(QStringLiteral("the identifier")))
        context->addStep(*line, Step::Select{word->text});
}

void readInputDirectory(ScenarioLine *line, ScenarioContext *context)
{
    const ScenarioWord *word = line->take(QStringLiteral("'remove' or 'create'"));
    if (!word)
        return;
    const bool isCreate = word->text == QLatin1String("create");
    if (!isCreate && word->text != QLatin1String("remove")) {
        line->unknown(word->column, QStringLiteral("word"), word->text,
                      {QStringLiteral("create"), QStringLiteral("remove")});
        return;
    }
    // As with keys, a step without effect is not what was meant.
    if (isCreate == context->inputDirectoryExists()) {
        line->error(isCreate ? QStringLiteral("/dev/input already exists")
                             : QStringLiteral("/dev/input has already been removed"));
        return;
    }
    context->setInputDirectoryExists(isCreate);
    context->addStep(*line, Step::InputDirectory{isCreate});
}

void readPlay(ScenarioLine *line, ScenarioContext *context)
{
    const ScenarioWord *name = line->take(QStringLiteral("the recording's name in quotes"));
    if (!name)
        return;
    Step::Play play;
    play.file = line->pathTo(name->text);
    if (line->takeKeyword(QLatin1String("on"))) {
        const ScenarioWord *label = line->take(QStringLiteral("the device to play it on"));
        if (!label)
            return;
        play.device = context->deviceNamed(label->text);
        if (play.device < 0) {
            line->unknown(label->column, QStringLiteral("device"), label->text, context->labels());
            return;
        }
        if (!context->state(play.device).isPlugged) {
            line->error(QStringLiteral("%1 is not plugged in").arg(label->text));
            return;
        }
    }
    context->addStep(*line, play);
}

void readIgnore(ScenarioLine *line, ScenarioContext *context)
{
    if (line->takeKeyword(QLatin1String("events")))
        context->addStep(*line, Step::IgnoreEvents{});
    else
        line->error(line->peek() ? line->peek()->column : 1,
                    QStringLiteral("the step is 'ignore events'"));
}

} // namespace Vorn::Workbench
