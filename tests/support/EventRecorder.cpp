#include "EventRecorder.h"

#include "vorn.h"

#include <utility>

EventRecorder::EventRecorder()
{
    Vorn::connect(Input::instance(), &Input::inputEvent, this, [this](const InputEvent &event) {
        m_texts.push_back(event.toString().toStdString());
        // A copy, because the callback may replace itself.
        if (const auto callback = m_callback)
            callback(event);
    });
}

std::vector<std::string> EventRecorder::take()
{
    return std::exchange(m_texts, {});
}

void EventRecorder::onEvent(std::function<void(const InputEvent &)> callback)
{
    m_callback = std::move(callback);
}

std::string text(InputEvent::Command command, InputEvent::State state, InputEvent::Bus bus)
{
    return InputEvent(command, state, bus).toString().toStdString();
}
