#ifndef RECORDSTREAM_H
#define RECORDSTREAM_H

#include <linux/input.h>

#include <string>
#include <vector>

/// The first key that is pressed; the others follow it.
constexpr int firstKey = KEY_1;

/// The endless stream of records of one device.
class RecordStream
{
public:
    /// @param name clicks, chords, held or switches
    RecordStream(const std::string &name, int keyCount);

    /// Fills @p burst with the next records, with the current time as their timestamp.
    void fill(std::vector<input_event> &burst);

    static input_event record(int type, int code, int value);

private:
    std::vector<input_event> m_period;
    std::size_t m_position = 0;
};

#endif
