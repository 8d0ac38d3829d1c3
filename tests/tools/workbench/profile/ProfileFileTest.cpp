#include "ProfileFile.h"

#include "FilledPipe.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using namespace Vorn;
using namespace Vorn::Workbench;

namespace {

std::string firstProblem(const QString &path, Pipes pipes = Pipes::Refused)
{
    const ParsedProfile parsed = openProfile(path, pipes);
    return parsed.diagnostics.isEmpty() ? std::string()
                                        : parsed.diagnostics.first().toString().toStdString();
}

} // namespace

TEST(ProfileFile, IsNoLargerThanOneOfAProduct)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.toml"));
    const auto write = [&path](const QByteArray &text) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    };
    const QByteArray profile = "[[device]]\n[device.handler.keys]\nKEY_INFO = \"Info\"\n#";
    ASSERT_TRUE(write(profile.leftJustified(static_cast<int>(maxProfileSize), ' ')));
    EXPECT_EQ(firstProblem(path), "");
    EXPECT_EQ(openProfile(path, Pipes::Refused).profile.devices.size(), 1);
    ASSERT_TRUE(write(profile.leftJustified(static_cast<int>(maxProfileSize) + 1, ' ')));
    EXPECT_EQ(firstProblem(path),
              path.toStdString() + ": error: cannot be read: it is larger than 1 MiB");
}

TEST(ProfileFile, MayBeAPipeIfThePersonNamesIt)
{
    const FilledPipe pipe("[[device]]\n[device.handler.keys]\nKEY_INFO = \"Inof\"\n");
    EXPECT_EQ(firstProblem(pipe.path()),
              pipe.path().toStdString()
                  + ": error: cannot be read: it is a pipe; only files named on the command line "
                    "can be");
    EXPECT_EQ(firstProblem(pipe.path(), Pipes::Allowed),
              pipe.path().toStdString()
                  + ":3:12: error: unknown command 'Inof', did you mean 'Info'?");
}
