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
    const Row *first = nullptr;
    int count = 0;

    constexpr Rows() = default;
    template <std::size_t size>
    // NOLINTNEXTLINE(google-explicit-constructor): a table is written where its rows are wanted.
    constexpr Rows(const Row (&table)[size])
        : first(table)
        , count(static_cast<int>(size))
    { }

    constexpr const Row *begin() const { return first; }
    constexpr const Row *end() const { return first + count; }
};

/// UTF-16, which may contain null characters; a null one is no text, which is not the empty one.
struct TextData
{
    const char16_t *utf16 = nullptr;
    int size = 0;

    constexpr TextData() = default;
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
    int code;
    InputEvent::Command command;
    bool immediate;
    Rows<int> longPress; ///< ms; null without a long press
    bool repeat;
    std::optional<InputEvent::Bus> bus;
};

/// As ChordMapping.
struct ChordData
{
    int first;
    int second;
    InputEvent::Command command;
    std::optional<InputEvent::Bus> bus;
};

/// As SwitchMapping.
struct SwitchData
{
    int code;
    InputEvent::Command command;
};

/// As HandlerProfile.
struct HandlerData
{
    Rows<TextData> identifiers;
    bool positionsAtStart;
    Rows<KeyData> keys;
    Rows<ChordData> chords;
    Rows<SwitchData> switches;
};

/// As DeviceProfile.
struct DeviceData
{
    TextData name; ///< null: any
    std::optional<InputEvent::Bus> bus;
    Rows<HandlerData> handlers;
};

/// As SelectRule.
struct RuleData
{
    InputEvent::Command command;
    InputEvent::State state;
    TextData identifier;
};

/// As Profile.
struct ProfileData
{
    TextData initial;
    Rows<RuleData> select;
    Rows<DeviceData> devices;
};

/// The profile that the tables were made of.
///
/// @code
/// #include "panel.h" // from panel.toml, by vorn_add_profile()
/// ProfileInputHandler devices(Vorn::toProfile(panel));
/// @endcode
VORN_PROFILE_EXPORT Profile toProfile(const ProfileData &data) noexcept;

} // namespace Vorn

#endif
