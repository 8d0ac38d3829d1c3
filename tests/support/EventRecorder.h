#ifndef EVENTRECORDER_H
#define EVENTRECORDER_H

#include "Input.h"

#include <QObject>

#include <functional>
#include <string>
#include <vector>

/// Records the events published on the bus during its lifetime, as text.
class EventRecorder : public QObject
{
public:
    EventRecorder();

    /// E.g. "[cmd=VolumeUp, state=KeyPressed, bus=LocalUI]".
    const std::vector<std::string> &texts() const { return m_texts; }
    /// The texts recorded since the last call.
    std::vector<std::string> take();

    /// Sets a callback for each event once it is recorded; plays the application's slot. It may
    /// set another one.
    void onEvent(std::function<void(const InputEvent &)> callback);

private:
    std::vector<std::string> m_texts;
    std::function<void(const InputEvent &)> m_callback;
};

/// An event's text.
std::string text(InputEvent::Command command, InputEvent::State state,
                 InputEvent::Bus bus = InputEvent::Bus::NoBus);

#endif
