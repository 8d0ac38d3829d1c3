#include "ChordModel.h"

#include "LogText.h"

#include <algorithm>

namespace Model {

namespace {

const char *const logger = "KeyProcessing";

void log(Observer &observer, const std::string &line)
{
    observer.onLine(logger, Debug, line);
}

std::string storedText(const std::vector<Record> &records)
{
    std::string text = "Stored:(";
    for (std::size_t i = 0; i < records.size(); ++i)
        text += (i > 0 ? ", " : "") + recordText(records[i]);
    return text + ")";
}

bool isDown(const Record &record)
{
    return record.value != 0;
}

} // namespace

void ChordModel::take(const Record &record, Observer &observer, const Slot &slot)
{
    const auto found = std::find_if(m_stored.begin(), m_stored.end(), [&](const Record &stored) {
        return stored.code == record.code;
    });
    if (found != m_stored.end()) {
        *found = record;
        if (observer.isLogging())
            log(observer, "Found already event for code:" + std::to_string(record.code));
    } else if (m_isChord) {
        if (observer.isLogging())
            log(observer, "Double key press detected and new press event received -> drop");
        return;
    } else if (isDown(record)) {
        m_stored.push_back(record);
    } else {
        if (observer.isLogging())
            log(observer, "Received release for non existing press -> drop");
        return;
    }
    if (observer.isLogging())
        log(observer, storedText(m_stored));

    const auto down = std::count_if(m_stored.begin(), m_stored.end(), isDown);
    if (m_stored.size() == 1) {
        slot({record}, false);
        if (m_stored.size() == 1 && !isDown(m_stored.front()))
            m_stored.clear();
    } else if (down == static_cast<std::ptrdiff_t>(m_stored.size())) {
        if (m_isChord)
            return;
        m_isChord = true;
        Record release = m_stored.front();
        release.value = 0;
        slot({release}, true);
        if (m_isGone)
            return;
        // Whoever resets the detector in the slot takes the chord away.
        slot(std::vector<Record>(m_stored), false);
    } else if (down == 0 && m_isChord) {
        slot(std::vector<Record>(m_stored), false);
        reset();
    }
}

void ChordModel::reset()
{
    m_stored.clear();
    m_isChord = false;
}

void ChordModel::writeState(std::string &text, std::int64_t now) const
{
    text += m_isChord ? 'c' : 's';
    for (const Record &record : m_stored) {
        text += std::to_string(record.code) + "=" + std::to_string(record.value) + "@"
            + std::to_string(record.msecs - now) + " ";
    }
}

} // namespace Model
