#ifndef SESSIONENTRIES_H
#define SESSIONENTRIES_H

#include "Picture.h"
#include "Session.h"
#include "Timeline.h"
#include "TimelineCollector.h"

#include <QVector>

#include <linux/input.h>

/// Sessions to be drawn. Times are µs.
namespace Vorn::Test {

constexpr qint64 ms = 1000;
constexpr const char *front = "/dev/input/event0";
constexpr const char *keyboard = "/dev/input/event3";

Workbench::SessionEntry start();
Workbench::SessionEntry plugged(qint64 time, const char *device = front,
                                const char *name = "front-panel");
Workbench::SessionEntry unplugged(qint64 time, const char *device = front,
                                  const char *name = "front-panel");
Workbench::SessionEntry key(qint64 time, int code, int value, const char *device = front);
Workbench::SessionEntry detector(qint64 time, Workbench::DetectorStep::What what,
                                 const QVector<int> &keys, qint64 due = 0, bool mapped = false);
Workbench::SessionEntry event(qint64 time, InputEvent::Command command, InputEvent::State state,
                              const QVector<int> &codes = {KEY_INFO});
Workbench::SessionEntry remark(qint64 time);

/// Info is held from 200 ms to 2200 ms. Its long press is due at 1210 ms, and published at 1250 ms.
QVector<Workbench::SessionEntry> longPress();

/// Stop, then Play: a chord from 500 ms to 1100 ms, during which the record of a third key is
/// dropped.
QVector<Workbench::SessionEntry> chord();

/// A position of a switch; without a stamp it was queried.
Workbench::SessionEntry lineIn(qint64 time, int value, qint64 stamp = 1);
Workbench::SessionEntry lineInEvent(qint64 time, InputEvent::State state);

/// What a picture of all entries, or of a part of them, shows.
Workbench::TimelineModel collected(const QVector<Workbench::SessionEntry> &entries,
                                   Workbench::TimelineSpan wanted = Workbench::wholeSession);

Picture draw(const QVector<Workbench::SessionEntry> &entries,
             const Workbench::TimelineOptions &options = {});

} // namespace Vorn::Test

#endif
