#ifndef VORN_WORKBENCH_JOURNALLAYOUT_H
#define VORN_WORKBENCH_JOURNALLAYOUT_H

#include "LogFields.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <string_view>

namespace Vorn::Workbench {

/// What the journal and syslog put around a message: lines of "journalctl -o short" and its
/// relatives, of syslog's files, and of "journalctl -o json".
class JournalLayout
{
public:
    /// The layout that a line is written in; nothing if it is another one.
    static std::optional<JournalLayout> of(std::string_view line);

    /// False if the line does not fit. The texts are valid until the next call.
    bool parse(std::string_view line, LogFields *fields);

    /// For people: "journal (JSON)".
    QString name() const;
    bool operator==(const JournalLayout &other) const { return m_kind == other.m_kind; }

private:
    enum class Kind { Json, Short, ShortPrecise, Syslog, Iso, IsoPrecise, Full, Unix, Monotonic };

    explicit JournalLayout(Kind kind);

    bool parseText(std::string_view line, LogFields *fields) const;
    bool parseJson(std::string_view line, LogFields *fields);
    bool takeTime(std::string_view *rest, LogFields *fields) const;

    Kind m_kind;
    std::optional<TimeFormat> m_format;
    QByteArray m_message;
    QByteArray m_unit;
};

} // namespace Vorn::Workbench

#endif
