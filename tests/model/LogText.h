#ifndef MODEL_LOGTEXT_H
#define MODEL_LOGTEXT_H

#include "Observation.h"

namespace Model {

constexpr int TraceLevel = 0;
constexpr int Debug = 10000;
constexpr int Info = 20000;
constexpr int Warn = 30000;
constexpr int Error = 40000;

constexpr int KeyType = 1; ///< EV_KEY
constexpr int SwitchType = 5; ///< EV_SW

/// "input_event: code:28 value:press time:14:03:07,250".
std::string recordText(const Record &record);

/// "[cmd=Confirm, state=KeyPressed]". The command is one of the product's functions (0 to 56).
std::string eventText(int command, int state);

/// "Vorn::InputEvent(1) press".
std::string busText(int command, int state);

/// What is logged and published for an event.
void report(Observer &observer, const std::string &device, const std::string &id, int command,
            int state, int bus);

} // namespace Model

#endif
