#ifndef EVENTRECORDER_H
#define EVENTRECORDER_H

#include "Input.h"

#include <QObject>

#include <functional>
#include <string>
#include <vector>

/// Records what is published on the bus while it lives, as the events' texts.
class EventRecorder : public QObject
{
public:
    EventRecorder();

    /// E.g. "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]".
    const std::vector<std::string> &texts() const { return m_texts; }
    /// What was recorded since the last call.
    std::vector<std::string> take();

    /// Called for each event, after it was recorded: the application's slot.
    void onEvent(std::function<void(const InputEvent &)> callback);

private:
    std::vector<std::string> m_texts;
    std::function<void(const InputEvent &)> m_callback;
};

/// The text of an event.
std::string text(InputEvent::Command command, InputEvent::State state,
                 InputEvent::Bus bus = InputEvent::Bus::NoBus);

#endif
