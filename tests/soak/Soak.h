#ifndef SOAK_H
#define SOAK_H

#include "EventCounts.h"
#include "SoakProduct.h"

#include "InputSubsystem.h"
#include "VirtualClock.h"

/// A product in use: rounds of everything that its devices can do, in virtual time, and what has to
/// come of it.
class Soak
{
public:
    Soak();

    /// Every kind of input once, and many plain taps; some 2,000 records.
    void round();

    /// A device comes, is used, and goes with a key held.
    void plugCycle();

    /// An hour in which one key is pressed.
    void hour();

    /// Records that were sent so far; each is read by two listeners.
    qint64 records() const { return m_records; }
    qint64 events() const { return m_counter.counts.total(); }
    /// Where events are missing or too many; empty if nothing is wrong.
    std::string mistakes() const { return m_counter.counts.differencesFrom(m_expected); }
    quint64 wakeUps() const { return m_clock.wakeUps(); }

private:
    void tap(Vorn::Sim::InputNode &node, int key);
    void tapManyTimes(Vorn::Sim::InputNode &node, int key, InputEvent::Command command);
    void hold(Vorn::Sim::InputNode &node);
    void playChord(Vorn::Sim::InputNode &node);
    void flip(Vorn::Sim::InputNode &node);
    void useText(Vorn::Sim::InputNode &node);
    void packet() { m_records += 2; }

    Vorn::Sim::VirtualClock m_clock;
    Vorn::Sim::InputSubsystem m_subsystem;
    EventCounter m_counter;
    EventCounts m_expected;
    qint64 m_records = 0;
    Vorn::Sim::InputNode &m_panel;
    Vorn::Sim::InputNode &m_remote;
    SoakProduct m_product;
};

#endif
