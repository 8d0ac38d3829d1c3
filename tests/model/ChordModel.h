#ifndef MODEL_CHORDMODEL_H
#define MODEL_CHORDMODEL_H

#include "Observation.h"

#include <functional>

namespace Model {

/// Tells two keys pressed together from single keys.
class ChordModel
{
public:
    /// Records that the detector hands on, and whether they are synthetic.
    using Slot = std::function<void(const std::vector<Record> &, bool)>;

    void take(const Record &record, Observer &observer, const Slot &slot);
    void reset();
    /// It is deleted, perhaps by its slot.
    void end() { m_isGone = true; }

    /// The state, with times relative to @p now.
    void writeState(std::string &text, std::int64_t now) const;

private:
    std::vector<Record> m_stored;
    bool m_isChord = false;
    bool m_isGone = false;
};

} // namespace Model

#endif
