#include "CompileCommand.h"

#include "ExitStatus.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using namespace Vorn::Tools;

namespace {

using testing::HasSubstr;

constexpr char validProfile[] = "[[device]]\n[device.handler.keys]\nKEY_STOP = \"Stop\"\n";
constexpr char emptyHandler[] = "[[device]]\n[device.handler]\n";

class CompileCommand : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
        m_options.profile = m_folder.filePath("panel.toml");
        m_options.output = m_folder.filePath("panel.cpp");
        write("panel.toml", validProfile);
    }

    void write(const char *name, const QByteArray &content) const
    {
        QFile file(m_folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    QByteArray read(const char *name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    QString names() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files, QDir::Name).join(QLatin1Char(' '));
    }

    /// Whether a run leaves an output alone that was written long ago.
    bool staysAsOld(const char *name) const
    {
        const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1'000'000'000);
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        EXPECT_TRUE(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
        file.close();
        run();
        return QFileInfo(file.fileName()).lastModified() == longAgo;
    }

    int run() const
    {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = compile(m_options);
        m_err = testing::internal::GetCapturedStderr();
        m_out = testing::internal::GetCapturedStdout();
        return status;
    }

    QTemporaryDir m_folder;
    CompileOptions m_options;
    mutable std::string m_err;
    mutable std::string m_out;
};

} // namespace

TEST_F(CompileCommand, WritesASourceAndTheHeaderBesideIt)
{
    EXPECT_EQ(run(), Success);
    EXPECT_EQ(m_err + m_out, "");
    EXPECT_EQ(names().toStdString(), "panel.cpp panel.h panel.toml");
    EXPECT_THAT(read("panel.cpp").toStdString(), HasSubstr("constexpr Vorn::ProfileData panel = "));
    EXPECT_THAT(read("panel.h").toStdString(), HasSubstr("extern const Vorn::ProfileData panel;"));
}

TEST_F(CompileCommand, NamesNoFolders)
{
    EXPECT_EQ(run(), Success);
    EXPECT_FALSE((read("panel.cpp") + read("panel.h")).contains(m_folder.path().toUtf8()));
}

TEST_F(CompileCommand, TakesAHeaderAndAName)
{
    m_options.header = m_folder.filePath("keys.hpp");
    m_options.name = QStringLiteral("keyMap");
    EXPECT_EQ(run(), Success);
    EXPECT_EQ(names().toStdString(), "keys.hpp panel.cpp panel.toml");
    EXPECT_THAT(read("panel.cpp").toStdString(),
                HasSubstr("constexpr Vorn::ProfileData keyMap = "));
    EXPECT_THAT(read("keys.hpp").toStdString(),
                HasSubstr("extern const Vorn::ProfileData keyMap;"));
}

TEST_F(CompileCommand, WritesNothingForAProfileWithErrors)
{
    write("panel.toml", "[[device]]\n[device.handler.keys]\nKEY_STOP = \"Stopp\"\n");
    EXPECT_EQ(run(), Found);
    EXPECT_EQ(m_err,
              m_options.profile.toStdString()
                  + ":3:12: error: unknown command 'Stopp', did you mean 'Stop'?\n");
    EXPECT_EQ(names().toStdString(), "panel.toml");
}

TEST_F(CompileCommand, KeepsTheOldFilesWhenTheProfileBreaks)
{
    EXPECT_EQ(run(), Success);
    const QByteArray before = read("panel.cpp");
    write("panel.toml", "[[device]\n");
    EXPECT_EQ(run(), Found);
    EXPECT_EQ(read("panel.cpp"), before);
}

TEST_F(CompileCommand, PrintsWarningsAndGoesOnUnlessTheyCountAsErrors)
{
    write("panel.toml", emptyHandler);
    m_options.strict = true;
    EXPECT_EQ(run(), Found);
    EXPECT_THAT(m_err, HasSubstr("panel.toml:2:1: warning: "));
    EXPECT_EQ(names().toStdString(), "panel.toml");
    m_options.strict = false;
    EXPECT_EQ(run(), Success);
    EXPECT_THAT(m_err, HasSubstr("panel.toml:2:1: warning: "));
    EXPECT_EQ(names().toStdString(), "panel.cpp panel.h panel.toml");
}

TEST_F(CompileCommand, TellsWhatCannotBeRead)
{
    m_options.profile = m_folder.filePath("missing.toml");
    EXPECT_EQ(run(), Failure);
    EXPECT_THAT(m_err, HasSubstr("missing.toml: error: cannot be read"));
    EXPECT_EQ(names().toStdString(), "panel.toml");
}

TEST_F(CompileCommand, LeavesFilesAloneThatAreUpToDate)
{
    EXPECT_EQ(run(), Success);
    EXPECT_TRUE(staysAsOld("panel.cpp"));
    EXPECT_TRUE(staysAsOld("panel.h"));
    write("panel.toml", QByteArray("# Only a comment\n") + validProfile);
    EXPECT_TRUE(staysAsOld("panel.cpp"));
    write("panel.toml", QByteArray(validProfile).replace("\"Stop\"", "\"Mute\""));
    EXPECT_FALSE(staysAsOld("panel.cpp"));
    EXPECT_THAT(read("panel.cpp").toStdString(), HasSubstr("InputEvent::Mute"));
}

TEST_F(CompileCommand, ReplacesNoFileOfAnybodyElse)
{
    write("panel.h", "class Panel;\n");
    EXPECT_EQ(run(), Failure);
    EXPECT_THAT(m_err, HasSubstr("panel.h exists, and vorn-input did not write it"));
    EXPECT_EQ(names().toStdString(), "panel.h panel.toml");
    m_options.force = true;
    EXPECT_EQ(run(), Success);
    EXPECT_THAT(read("panel.h").toStdString(), HasSubstr("extern const"));
}

TEST_F(CompileCommand, DoesNotWriteOverTheProfile)
{
    m_options.output = m_options.profile;
    m_options.force = true;
    EXPECT_EQ(run(), Failure);
    EXPECT_THAT(m_err, HasSubstr("is one of the files that were read"));
    EXPECT_EQ(read("panel.toml"), validProfile);
}

TEST_F(CompileCommand, WritesNeitherFileWhereOneCannotBeWritten)
{
    m_options.output = m_folder.filePath("missing/panel.cpp");
    m_options.header = m_folder.filePath("panel.h");
    EXPECT_EQ(run(), Failure);
    EXPECT_THAT(m_err, HasSubstr("missing/panel.cpp cannot be written"));
    EXPECT_EQ(names().toStdString(), "panel.toml");
}

TEST_F(CompileCommand, RefusesANameThatIsNone)
{
    m_options.name = QStringLiteral("panel; int x");
    EXPECT_EQ(run(), Failure);
    EXPECT_EQ(m_err,
              "error: 'panel; int x' is no name for a constant in C++, which takes letters, "
              "digits and '_', and no digit first; choose another with --name\n");
    EXPECT_EQ(names().toStdString(), "panel.toml");
}

TEST_F(CompileCommand, RefusesAHeaderThatIsTheSource)
{
    m_options.output = m_folder.filePath("panel.h");
    EXPECT_EQ(run(), Failure);
    EXPECT_THAT(m_err, HasSubstr("the source and its header would both be "));
    m_options.output = m_folder.filePath("panel.cpp");
    m_options.header = m_folder.filePath("../") + QFileInfo(m_folder.path()).fileName()
        + QStringLiteral("/panel.cpp");
    EXPECT_EQ(run(), Failure);
    EXPECT_THAT(m_err, HasSubstr("the source and its header would both be "));
    m_options.header = QStringLiteral("-");
    EXPECT_EQ(run(), Failure);
    EXPECT_THAT(m_err, HasSubstr("the header cannot be written to the standard output"));
    EXPECT_EQ(names().toStdString(), "panel.toml");
}
