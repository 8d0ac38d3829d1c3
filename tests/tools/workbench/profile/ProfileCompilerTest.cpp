#include "ProfileCompiler.h"

#include "ProfileReader.h"

#include <gmock/gmock.h>

using namespace Vorn;
using namespace Vorn::Workbench;

// That compiled profiles are the same as read ones is the task of CompiledProfileTest, where a
// compiler has a say.

namespace {

const CompiledProfile panel{QStringLiteral("panel"), QStringLiteral("panel.toml")};

std::string sourceOf(const char *toml)
{
    const ParsedProfile parsed = parseProfile(toml, QStringLiteral("panel.toml"));
    EXPECT_FALSE(hasErrors(parsed.diagnostics));
    return compiledSource(parsed.profile, panel).toStdString();
}

} // namespace

TEST(ProfileCompiler, WritesTablesOfConstants)
{
    EXPECT_EQ(
        sourceOf(R"(
initial = "browse"
select = [{ command = "Search", identifier = "text" }]
[[device]]
name = "front-panel"
[device.handler]
identifiers = ["browse", "text"]
positions-at-start = true
[device.handler.keys]
KEY_VOLUMEUP = { command = "VolumeUp", immediate = true, long-press = [700, 600], repeat = true }
KEY_STOP = { command = "Stop", bus = "I2C" }
[device.handler.chords]
"KEY_STOP+KEY_PLAY" = "FactoryReset"
[device.handler.switches]
SW_LINEIN_INSERT = "SWLineIn"
[[device]]
bus = "USB"
)"),
        R"(// Written by vorn-input compile from panel.toml: change the profile, not this file.

#include <vorn/profile/ProfileData.h>

namespace {

constexpr int panelLongPress1[] = {
    700,
    600,
};

constexpr Vorn::TextData panelIdentifiers2[] = {
    u"browse",
    u"text",
};

constexpr Vorn::KeyData panelKeys3[] = {
    {115, InputEvent::VolumeUp, true, panelLongPress1, true, {}}, // KEY_VOLUMEUP
    {128, InputEvent::Stop, false, {}, false, InputEvent::Bus::I2C}, // KEY_STOP
};

constexpr Vorn::ChordData panelChords4[] = {
    {128, 207, InputEvent::FactoryReset, {}}, // KEY_STOP+KEY_PLAY
};

constexpr Vorn::SwitchData panelSwitches5[] = {
    {13, InputEvent::SWLineIn}, // SW_LINEIN_INSERT
};

constexpr Vorn::HandlerData panelHandlers6[] = {
    {panelIdentifiers2, true, panelKeys3, panelChords4, panelSwitches5},
};

constexpr Vorn::RuleData panelRules7[] = {
    {InputEvent::Search, InputEvent::KeyReleased, u"text"},
};

constexpr Vorn::DeviceData panelDevices8[] = {
    {u"front-panel", {}, panelHandlers6},
    {{}, InputEvent::Bus::USB, {}},
};

} // namespace

extern const Vorn::ProfileData panel;
constexpr Vorn::ProfileData panel = {u"browse", panelRules7, panelDevices8};
)");
}

TEST(ProfileCompiler, WritesALongPressThatDoesNotRepeat)
{
    EXPECT_THAT(
        sourceOf("[[device]]\n[device.handler.keys]\n"
                 "KEY_STOP = { command = \"Stop\", long-press = 700 }\n"),
        testing::HasSubstr("    {128, InputEvent::Stop, false, panelLongPress1, false, {}}"));
}

TEST(ProfileCompiler, DeclaresTheConstantInTheHeader)
{
    EXPECT_EQ(
        compiledHeader(panel).toStdString(),
        R"(// Written by vorn-input compile from panel.toml: change the profile, not this file.

#ifndef COMPILED_PROFILE_panel_H
#define COMPILED_PROFILE_panel_H

#include <vorn/profile/ProfileData.h>

extern const Vorn::ProfileData panel;

#endif
)");
}

TEST(ProfileCompiler, WritesTextsThatNoCompilerReadsDifferently)
{
    Profile profile;
    profile.initial =
        QStringLiteral("a\"b\\c?\?/d\n") + QChar::Null + QStringLiteral("0e\u00e4g%1");
    const std::string source = compiledSource(profile, panel).toStdString();
    EXPECT_THAT(source, testing::HasSubstr(R"(u"a\"b\\c\?\?/d\xa\x0" u"0e\xe4g%1")"));
    for (const char character : source)
        EXPECT_LT(static_cast<unsigned char>(character), 0x7f);
}

TEST(ProfileCompiler, KeepsTheProfilesFileNameInItsComment)
{
    const QByteArray source =
        compiledSource(Profile(), {QStringLiteral("panel"), QStringLiteral("a\nint b;\\")});
    EXPECT_THAT(
        source.toStdString(),
        testing::StartsWith("// Written by vorn-input compile from a\\nint b;\\: change the "
                            "profile, not this file.\n\n#include"));
    EXPECT_TRUE(source.startsWith(compiledSignature()));
    EXPECT_TRUE(compiledHeader(panel).startsWith(compiledSignature()));
}
