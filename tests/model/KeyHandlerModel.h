#ifndef MODEL_KEYHANDLERMODEL_H
#define MODEL_KEYHANDLERMODEL_H

#include "ChordModel.h"
#include "KeyCall.h"
#include "LongPressModel.h"
#include "Observation.h"

#include <map>
#include <set>
#include <utility>

namespace Model {

/// A key handler with its two detectors.
class KeyHandlerModel
{
public:
    explicit KeyHandlerModel(std::string device);

    void setId(const std::string &id) { m_id = id; }
    /// The bus of its listener; 0 without one.
    void setBus(int bus) { m_bus = bus; }

    void call(const KeyCall &call, Observer &observer);
    /// Whether the next tick would end the process after this call: a held key lost its timeouts.
    bool isFatal(const KeyCall &call) const;
    void invalidate();
    /// It is deleted, perhaps by one of its observers: it does nothing more but complete a click.
    void end();
    void process(const std::vector<Record> &records, Observer &observer);
    void tick(std::int64_t now, const std::vector<int> &order, Observer &observer);

    const LongPressModel &longPress() const { return m_longPress; }

    /// Everything that the future depends on but the registrations, with times relative to @p now.
    std::string state(std::int64_t now) const;

private:
    void registerKey(int code, int command, bool immediate, Observer &observer);
    void deregisterKey(int code, Observer &observer);
    void registerChord(int first, int second, int command, Observer &observer);
    void deregisterChord(int first, int second, Observer &observer);
    void take(const std::vector<Record> &keys, bool fake, Observer &observer);
    void takeChord(const std::vector<Record> &keys, Observer &observer);
    void handle(const Record &record, int command, bool immediate, bool fake, Observer &observer);
    void notify(int code, Observer &observer);
    void publish(int command, int state, Observer &observer);

    std::string m_device;
    std::string m_id;
    int m_bus = 0;
    std::map<int, int> m_keys;
    std::set<int> m_immediate;
    std::map<std::pair<int, int>, int> m_chords;
    std::map<int, bool> m_held; ///< true after a long press
    ChordModel m_chordDetector;
    LongPressModel m_longPress;
    bool m_isGone = false;
};

} // namespace Model

#endif
