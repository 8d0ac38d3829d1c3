#ifndef EVENTCOUNTS_H
#define EVENTCOUNTS_H

#include "Input.h"

#include <QObject>

#include <map>
#include <string>
#include <utility>

/// How many events of each kind there were, or ought to be.
class EventCounts
{
public:
    void add(InputEvent::Command command, InputEvent::State state, qint64 count = 1);
    void addTaps(InputEvent::Command command, qint64 count = 1);

    qint64 total() const;
    /// Where the two differ, a line for each kind; empty if they are the same.
    std::string differencesFrom(const EventCounts &expected) const;

private:
    std::map<std::pair<InputEvent::Command, InputEvent::State>, qint64> m_counts;
};

/// Counts what is published.
class EventCounter : public QObject
{
public:
    EventCounter();

    EventCounts counts;
};

#endif
