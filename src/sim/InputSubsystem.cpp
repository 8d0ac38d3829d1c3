#include "InputSubsystem.h"

#include "SubsystemState.h"

#include <algorithm>

namespace Vorn::Sim {

InputSubsystem::InputSubsystem(Directory directory)
    : m_state(std::make_unique<SubsystemState>(directory))
{ }

InputSubsystem::~InputSubsystem() = default;

InputNode &InputSubsystem::plug(int number, const DeviceDescription &description)
{
    m_state->plug(number, description);
    return m_state->node(number);
}

void InputSubsystem::unplug(int number, Unread unread)
{
    m_state->unplug(number, unread);
}

InputNode &InputSubsystem::replace(int number, const DeviceDescription &description)
{
    m_state->replace(number, description);
    return m_state->node(number);
}

InputNode &InputSubsystem::node(int number)
{
    return m_state->node(number);
}

void InputSubsystem::setPermissions(int number, mode_t mode)
{
    m_state->setPermissions(number, mode);
}

void InputSubsystem::removeInputDirectory()
{
    m_state->removeDirectory();
}

void InputSubsystem::createInputDirectory()
{
    m_state->createDirectory();
}

bool InputSubsystem::inputDirectoryExists() const
{
    return m_state->directoryExists();
}

QString InputSubsystem::folder() const
{
    return m_state->folder();
}

int InputSubsystem::openDescriptors() const
{
    return m_state->openDescriptors();
}

void InputSubsystem::setRecording(bool on)
{
    m_state->setRecording(on);
}

QVector<SystemCall> InputSubsystem::systemCalls() const
{
    return m_state->systemCalls();
}

QVector<SystemCall> InputSubsystem::systemCalls(const QByteArray &path) const
{
    QVector<SystemCall> calls = m_state->systemCalls();
    const auto isOther = [&path](const SystemCall &call) { return call.path != path; };
    calls.erase(std::remove_if(calls.begin(), calls.end(), isOther), calls.end());
    return calls;
}

void InputSubsystem::clearSystemCalls()
{
    m_state->clearSystemCalls();
}

CallCounts InputSubsystem::callCounts() const
{
    return m_state->callCounts();
}

} // namespace Vorn::Sim
