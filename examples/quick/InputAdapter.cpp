#include "InputAdapter.h"

#include <vorn/core/vorn.h>

InputAdapter::InputAdapter(QObject *parent)
    : QObject(parent)
{
    Vorn::connect(Input::instance(), &Input::inputEvent, this, &InputAdapter::take);
}

QString InputAdapter::command() const
{
    return m_event.command() == InputEvent::None ? QString() : m_event.cmdToString();
}

QString InputAdapter::state() const
{
    switch (m_event.state()) {
    case InputEvent::KeyPressed:
        return QStringLiteral("pressed");
    case InputEvent::KeyReleased:
        return QStringLiteral("released");
    case InputEvent::KeyLongPress:
        return QStringLiteral("long press");
    default:
        return {};
    }
}

bool InputAdapter::isDown() const
{
    return m_event.state() == InputEvent::KeyPressed || m_event.state() == InputEvent::KeyLongPress;
}

void InputAdapter::take(const InputEvent &event)
{
    m_event = event;
    Q_EMIT changed();
}
