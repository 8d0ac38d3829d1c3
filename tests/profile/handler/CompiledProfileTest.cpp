// Profiles that were compiled in are those that are read: vorn-input wrote their sources, and the
// compiler has had its say.

#include "CompiledProfiles.h"
#include "ProfileData.h"
#include "ProfileReader.h"

#include <QDirIterator>
#include <QFile>
#include <QSet>

#include <gmock/gmock.h>

#include <type_traits>

using namespace Vorn;

namespace {

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

} // namespace

TEST(CompiledProfile, IsTheOneThatIsRead)
{
    int strings = 0;
    for (const CompiledFile &compiled : compiledFiles) {
        const ParsedProfile parsed = loadProfile(QString::fromUtf8(compiled.path));
        ASSERT_FALSE(hasErrors(parsed.diagnostics)) << compiled.path;
        EXPECT_TRUE(toProfile(*compiled.data) == parsed.profile) << compiled.path;
        strings += static_cast<int>(parsed.profile.identifiers().size());
    }
    // They are worth reading.
    EXPECT_GT(strings, 50);
}

TEST(CompiledProfile, IsTestedWithAllProfilesHere)
{
    // An example has a copy of another one's profile.
    QSet<QByteArray> tested;
    for (const CompiledFile &compiled : compiledFiles)
        tested.insert(contentsOf(QString::fromUtf8(compiled.path)));
    for (const char *folder : {"/examples", "/tests"}) {
        QDirIterator files(QStringLiteral(VORN_SOURCE_DIR) + QLatin1String(folder),
                           {QStringLiteral("*.toml")}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            EXPECT_TRUE(tested.contains(contentsOf(path))
                        || hasErrors(loadProfile(path).diagnostics))
                << path.toStdString() << " is missing in tests/profile/CMakeLists.txt";
        }
    }
}

TEST(CompiledProfile, DistinguishesNoNameFromTheEmptyOne)
{
    static constexpr DeviceData devices[] = {{{}, {}, {}}, {u"", {}, {}}};
    static constexpr ProfileData data{u"", {}, devices};
    const Profile profile = toProfile(data);
    ASSERT_EQ(profile.devices.size(), 2);
    EXPECT_FALSE(profile.devices.at(0).name);
    EXPECT_EQ(profile.devices.at(1).name, QString());
}

// Only what the compiler can compute needs no code before main().
static_assert(std::is_trivially_destructible_v<ProfileData>);
static_assert(std::is_trivially_destructible_v<DeviceData>);
static_assert(std::is_trivially_destructible_v<KeyData>);
