#ifndef VORN_PROFILE_PROFILEDATA_H
#define VORN_PROFILE_PROFILEDATA_H

#include "Profile.h"
#include "vorn_profile_export.h"
#include <vorn/input/Input.h>

#include <cstddef>
#include <optional>

/// @file
/// A profile as constants, for products that read none at run time. `vorn-input compile` writes the
/// tables and `vorn_add_profile()` has CMake call it, so nobody needs to fill them in by hand. They
/// are initialised by the compiler: they cost nothing before main(), and all processes share them.
namespace Vorn {

/// A table somewhere else; a null one is none.
template <typename Row>
struct Rows
{
    const Row *first = nullptr; ///< static, so never deleted
    int count = 0; ///< number of rows

    constexpr Rows() = default;
    /// Refers to a table.
    /// @tparam size number of its rows
    /// @param table static
    template <std::size_t size>
    // NOLINTNEXTLINE(google-explicit-constructor): a table is written where its rows are wanted.
    constexpr Rows(const Row (&table)[size])
        : first(table)
        , count(static_cast<int>(size))
    { }

    /// @return the first row
    constexpr const Row *begin() const { return first; }
    /// @return what is behind the last row
    constexpr const Row *end() const { return first + count; }
};

/// UTF-16, which may contain null characters; a null one is no text, which is not the empty one.
struct TextData
{
    const char16_t *utf16 = nullptr; ///< static, so never deleted
    int size = 0; ///< in units of UTF-16

    constexpr TextData() = default;
    /// Refers to a literal.
    /// @tparam sizeWithEnd in units of UTF-16, the closing null included
    /// @param literal such as `u"text"`
    template <std::size_t sizeWithEnd>
    // NOLINTNEXTLINE(google-explicit-constructor): so that a literal stands for a text.
    constexpr TextData(const char16_t (&literal)[sizeWithEnd])
        : utf16(literal)
        , size(static_cast<int>(sizeWithEnd - 1))
    { }
};

/// As KeyMapping.
struct KeyData
{
    int code; ///< as KeyMapping::code
    InputEvent::Command command; ///< as KeyMapping::command
    bool immediate; ///< as KeyMapping::immediate
    Rows<int> longPress; ///< ms; null without a long press
    bool repeat; ///< as LongPress::repeat
    std::optional<InputEvent::Bus> bus; ///< as KeyMapping::bus
};

/// As ChordMapping.
struct ChordData
{
    int first; ///< as ChordMapping::first
    int second; ///< as ChordMapping::second
    InputEvent::Command command; ///< as ChordMapping::command
    std::optional<InputEvent::Bus> bus; ///< as ChordMapping::bus
};

/// As SwitchMapping.
struct SwitchData
{
    int code; ///< as SwitchMapping::code
    InputEvent::Command command; ///< as SwitchMapping::command
};

/// As HandlerProfile.
struct HandlerData
{
    Rows<TextData> identifiers; ///< as HandlerProfile::identifiers
    bool positionsAtStart; ///< as HandlerProfile::positionsAtStart
    Rows<KeyData> keys; ///< as HandlerProfile::keys
    Rows<ChordData> chords; ///< as HandlerProfile::chords
    Rows<SwitchData> switches; ///< as HandlerProfile::switches
};

/// As DeviceProfile.
struct DeviceData
{
    TextData name; ///< null: any
    std::optional<InputEvent::Bus> bus; ///< as DeviceProfile::bus
    Rows<HandlerData> handlers; ///< as DeviceProfile::handlers
};

/// As SelectRule.
struct RuleData
{
    InputEvent::Command command; ///< as SelectRule::command
    InputEvent::State state; ///< as SelectRule::state
    TextData identifier; ///< as SelectRule::identifier
};

/// As Profile.
struct ProfileData
{
    TextData initial; ///< as Profile::initial
    Rows<RuleData> select; ///< as Profile::select
    Rows<DeviceData> devices; ///< as Profile::devices
};

/// The profile that the tables were made of.
///
/// @code
/// #include "panel.h" // from panel.toml, by vorn_add_profile()
/// ProfileInputHandler devices(Vorn::toProfile(panel));
/// @endcode
///
/// @param data what `vorn-input compile` wrote
/// @return a copy, which does not refer to the tables
VORN_PROFILE_EXPORT Profile toProfile(const ProfileData &data) noexcept;

} // namespace Vorn

#endif
