#include "ExpectSteps.h"

#include "BusNames.h"
#include "CommandNames.h"
#include "Durations.h"
#include "LibraryFacts.h"
#include "Quoting.h"
#include "ScenarioContext.h"
#include "ScenarioLimits.h"
#include "ScenarioLine.h"

namespace Vorn::Workbench {

namespace {

// How late `after 700ms` may be: a long press that falls due just after a tick is reported at the
// next one, and Qt's coarse timers make that up to 5 ms late.
constexpr qint64 tickTolerance = tickMs + 5;

void readAfter(ScenarioLine *line, Step::ExpectEvent *event)
{
    const ScenarioWord *word = line->take(QStringLiteral("a time like 700ms or 700ms..750ms"));
    if (!word)
        return;
    const auto dots = word->text.indexOf(QLatin1String(".."));
    const QString first = dots < 0 ? word->text : word->text.left(dots);
    event->earliest = milliseconds(first);
    event->latest = dots < 0 ? event->earliest : milliseconds(word->text.mid(dots + 2));
    if (!event->earliest || !event->latest) {
        line->error(
            QStringLiteral("%1 is not a time like 700ms or 700ms..750ms, in whole milliseconds")
                .arg(quoted(word->text)));
        return;
    }
    // A range is exact; a single time allows for the library's ticks.
    if (dots < 0)
        event->latest = *event->earliest + tickTolerance;
    if (*event->latest < *event->earliest)
        line->error(QStringLiteral("%1 ends before it begins").arg(quoted(word->text)));
    else if (*event->latest > ScenarioLimit::wait + tickTolerance)
        line->error(QStringLiteral("a duration is at most 7 days (168h)"));
}

bool readExpectOption(ScenarioLine *line, const ScenarioContext &context, Step::ExpectEvent *event)
{
    if (line->takeKeyword(QLatin1String("after"))) {
        readAfter(line, event);
    } else if (line->takeKeyword(QLatin1String("within"))) {
        event->within = line->takeDuration();
    } else if (line->takeKeyword(QLatin1String("from"))) {
        const ScenarioWord *word = line->take(QStringLiteral("the device it comes from"));
        if (!word)
            return false;
        // Quotes tell the kernel's name from a label: a recording's devices have no label.
        if (word->isQuoted) {
            event->deviceName = word->text.toUtf8();
        } else {
            event->device = context.deviceNamed(word->text);
            if (event->device < 0)
                line->unknown(word->column, QStringLiteral("device"), word->text, context.labels());
        }
    } else {
        // No word of the language is a bus, so it needs no keyword of its own.
        const ScenarioWord *word = line->take(QString());
        event->bus = bus(word->text);
        if (!event->bus)
            line->unknown(word->column, QStringLiteral("bus or word"), word->text,
                          busNames() << QStringLiteral("after") << QStringLiteral("within")
                                     << QStringLiteral("from"));
    }
    return line->isOk();
}

void readExpectNothing(ScenarioLine *line, ScenarioContext *context)
{
    Step::ExpectNothing nothing;
    if (line->takeKeyword(QLatin1String("for"))) {
        const std::optional<qint64> duration = line->takeDuration();
        if (!duration)
            return;
        context->addTime(line, *duration);
        nothing.duration = *duration;
    }
    context->addStep(*line, nothing);
}

} // namespace

void readExpect(ScenarioLine *line, ScenarioContext *context)
{
    if (line->takeKeyword(QLatin1String("nothing"))) {
        readExpectNothing(line, context);
        return;
    }
    if (line->takeKeyword(QLatin1String("identifier"))) {
        if (const ScenarioWord *word = line->take(QStringLiteral("the identifier")))
            context->addStep(*line, Step::ExpectIdentifier{word->text});
        return;
    }

    Step::ExpectEvent event;
    const ScenarioWord *word = line->take(QStringLiteral("a command, 'nothing' or 'identifier'"));
    if (!word)
        return;
    const std::optional<InputEvent::Command> found = command(word->text);
    if (!found) {
        line->unknown(word->column, QStringLiteral("command"), word->text,
                      commandNames() << QStringLiteral("nothing") << QStringLiteral("identifier"));
        return;
    }
    event.command = *found;
    word = line->take(QStringLiteral("a state like KeyPressed"));
    if (!word)
        return;
    const std::optional<InputEvent::State> foundState = state(word->text);
    if (!foundState) {
        line->unknown(word->column, QStringLiteral("state"), word->text, stateNames());
        return;
    }
    event.state = *foundState;
    while (line->isOk() && !line->atEnd()) {
        if (!readExpectOption(line, *context, &event))
            return;
    }
    // Both waits run at the same time, so the longer one counts.
    if (line->isOk()) {
        context->addTime(line, qMax(event.within.value_or(0), event.latest.value_or(0)));
        context->addStep(*line, event);
    }
}

} // namespace Vorn::Workbench
