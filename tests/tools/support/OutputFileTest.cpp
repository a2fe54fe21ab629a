// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/OutputFile.h"

#include "files/FileDescriptor.h"
#include "support/InputFile.h"
#include "support/SystemCallRecorder.h"
#include "support/TemporaryFile.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/ToolError.h"

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <optional>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

bool g_knowsUnnamedFiles = true;

} // namespace

/// Takes the place of that of the C library, and does what it does, but for files without a name where there shall be
/// none.
extern "C" int openat(int folder, const char *path, int flags, ...)
{
    if ((flags & O_TMPFILE) == O_TMPFILE && !g_knowsUnnamedFiles) {
        errno = EOPNOTSUPP;
        return -1;
    }
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = static_cast<mode_t>((flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, int) : 0);
    va_end(arguments);
    return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

namespace nurv::test {

namespace {

using ::testing::HasSubstr;
using namespace std::string_literals;
using ::testing::StartsWith;

std::span<const uint8_t> bytesOf(std::string_view text)
{
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

/// A folder with an input, and a closed pipe that is an error, as in the programs.
class OutputFileTest : public ::testing::Test {
protected:
    OutputFileTest() : m_formerAction(std::signal(SIGPIPE, SIG_IGN)) { m_folder.write(u"in"_s, "input"); }
    ~OutputFileTest() override { std::signal(SIGPIPE, m_formerAction); }

    [[nodiscard]] std::string path(const QString &name) const { return m_folder.path(name).toStdString(); }
    [[nodiscard]] InputFile input() const { return InputFile(path(u"in"_s)); }

    /// The failure of opening an output of that name.
    [[nodiscard]] std::optional<ToolError> failureOf(const std::string &name) const
    {
        try {
            const OutputFile output(name, input());
        } catch (const ToolError &error) {
            return error;
        }
        ADD_FAILURE() << name << " was opened";
        return std::nullopt;
    }

    void expectFailure(const QString &name, ToolError::Kind kind, const char *text) const
    {
        if (const std::optional<ToolError> error = failureOf(path(name))) {
            EXPECT_EQ(error->kind(), kind);
            EXPECT_THAT(error->what(), HasSubstr(text));
        }
    }

    [[nodiscard]] mode_t modeOf(const QString &name) const
    {
        struct stat status {};
        EXPECT_EQ(::stat(path(name).c_str(), &status), 0);
        return status.st_mode & 0777U;
    }

    TestFolder m_folder;

private:
    void (*m_formerAction)(int);
};

TEST_F(OutputFileTest, ReplacesAFileOnlyWhenAllIsWritten)
{
    m_folder.write(u"out"_s, "former");
    {
        OutputFile output(path(u"out"_s), input());
        output.write(bytesOf("new"));
        output.flush();
        EXPECT_EQ(m_folder.read(u"out"_s), "former");
        EXPECT_EQ(m_folder.list(), (QStringList{u"in"_s, u"out"_s}));
        output.commit();
        EXPECT_EQ(m_folder.read(u"out"_s), "new");
    }
    EXPECT_EQ(m_folder.list(), (QStringList{u"in"_s, u"out"_s}));
}

TEST_F(OutputFileTest, LeavesNothingWhenItIsGivenUp)
{
    m_folder.write(u"out"_s, "former");
    {
        OutputFile output(path(u"out"_s), input());
        output.write(bytesOf(std::string(300'000, 'x')));
        OutputFile another(path(u"another"_s), input());
        another.write(bytesOf(std::string(300'000, 'x')));
        EXPECT_EQ(m_folder.list().size(), 2);
    }
    EXPECT_EQ(m_folder.list(), (QStringList{u"in"_s, u"out"_s}));
    EXPECT_EQ(m_folder.read(u"out"_s), "former");
}

/// On a file system without files that have no name.
class NamedOutputFileTest : public OutputFileTest {
protected:
    NamedOutputFileTest() { g_knowsUnnamedFiles = false; }
    ~NamedOutputFileTest() override { g_knowsUnnamedFiles = true; }
};

TEST_F(NamedOutputFileTest, ReplacesAFileOnlyWhenAllIsWritten)
{
    m_folder.write(u"out"_s, "former");
    OutputFile output(path(u"out"_s), input());
    output.write(bytesOf("new"));
    output.flush();
    EXPECT_EQ(m_folder.read(u"out"_s), "former");
    ASSERT_EQ(m_folder.list().size(), 3);
    EXPECT_THAT(m_folder.list().front().toStdString(), StartsWith(".nurv-"));
    EXPECT_EQ(m_folder.read(m_folder.list().front()), "new");
    output.commit();
    EXPECT_EQ(m_folder.read(u"out"_s), "new");
    EXPECT_EQ(m_folder.list(), (QStringList{u"in"_s, u"out"_s}));
}

TEST_F(NamedOutputFileTest, LeavesNothingWhenItIsGivenUp)
{
    {
        OutputFile output(path(u"out"_s), input());
        output.write(bytesOf(std::string(300'000, 'x')));
        OutputFile another(path(u"another"_s), input());
        EXPECT_EQ(m_folder.list().size(), 3);
    }
    EXPECT_EQ(m_folder.list(), QStringList{u"in"_s});
}

TEST_F(NamedOutputFileTest, LeavesNothingWhenASignalEndsTheProgram)
{
    m_folder.write(u"out"_s, "former");
    const auto endHalfway = [this] {
        removeTemporaryFilesOnSignals();
        OutputFile output(path(u"out"_s), input());
        output.write(bytesOf(std::string(300'000, 'x')));
        // That there is something to be left.
        if (m_folder.list().size() == 3)
            ::raise(SIGTERM);
    };
    EXPECT_EXIT(endHalfway(), ::testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(m_folder.list(), (QStringList{u"in"_s, u"out"_s}));
    EXPECT_EQ(m_folder.read(u"out"_s), "former");
}

TEST_F(NamedOutputFileTest, KeepsTheModeOfTheFileThatItReplacesFromTheStart)
{
    m_folder.write(u"out"_s, "former");
    for (const mode_t mode : {0600U, 0640U, 0666U}) {
        ASSERT_EQ(::chmod(path(u"out"_s).c_str(), mode), 0);
        OutputFile output(path(u"out"_s), input());
        // Nobody else shall read what is private.
        EXPECT_EQ(modeOf(m_folder.list().front()), mode);
        output.commit();
        EXPECT_EQ(modeOf(u"out"_s), mode);
    }
}

TEST_F(OutputFileTest, HasNoNameBeforeAllIsWritten)
{
    OutputFile output(path(u"out"_s), input());
    output.write(bytesOf("new"));
    output.flush();
    EXPECT_EQ(m_folder.list(), QStringList{u"in"_s});
    output.commit();
    EXPECT_EQ(m_folder.read(u"out"_s), "new");
}

TEST_F(OutputFileTest, ReplacesNoFileThatCameMeanwhile)
{
    OutputFile output(path(u"out"_s), input());
    output.write(bytesOf("new"));
    m_folder.write(u"out"_s, "somebody's");
    try {
        output.commit();
        FAIL() << "it took the place of a file that nobody knew of";
    } catch (const ToolError &error) {
        EXPECT_EQ(error.kind(), ToolError::Kind::Write);
        EXPECT_THAT(error.what(), HasSubstr("out: File exists"));
    }
    EXPECT_EQ(m_folder.read(u"out"_s), "somebody's");
}

TEST_F(OutputFileTest, KeepsTheOrderOfSmallAndLargeWrites)
{
    std::string expected;
    OutputFile output(path(u"out"_s), input());
    for (const size_t size : {1U, 100'000U, 50'000U, 131'072U, 131'071U, 2U, 500'000U, 0U, 3U}) {
        const std::string block(size, static_cast<char>('a' + expected.size() % 26));
        output.write(bytesOf(block));
        expected += block;
        EXPECT_EQ(output.position(), expected.size());
    }
    output.commit();
    EXPECT_EQ(m_folder.read(u"out"_s).toStdString(), expected);
}

TEST_F(OutputFileTest, WritesAgainWhatIsWritten)
{
    OutputFile output(path(u"out"_s), input());
    EXPECT_TRUE(output.isSeekable());
    output.write(bytesOf("0123456789"));
    output.overwrite(2, bytesOf("ab"));
    output.write(bytesOf("end"));
    output.overwrite(9, bytesOf("cdef"));
    EXPECT_EQ(output.position(), 13U);
    EXPECT_THROW(output.overwrite(13, bytesOf("x")), std::logic_error);
    EXPECT_THROW(output.overwrite(UINT64_MAX, bytesOf("xy")), std::logic_error);
    output.write(bytesOf("!"));
    output.commit();
    EXPECT_EQ(m_folder.read(u"out"_s), "01ab45678cdef!");
}

TEST_F(OutputFileTest, HasTheModeOfAnyNewFile)
{
    const mode_t former = ::umask(0);
    for (const mode_t mask : {0022U, 0077U, 0002U}) {
        ::umask(mask);
        OutputFile output(path(u"out"_s), input());
        output.commit();
        EXPECT_EQ(modeOf(u"out"_s), 0666U & ~mask);
        m_folder.remove(u"out"_s);
    }
    ::umask(former);
}

TEST_F(OutputFileTest, KeepsTheModeOfTheFileThatItReplaces)
{
    m_folder.write(u"out"_s, "former");
    m_folder.makeLink(u"link"_s, u"out"_s);
    for (const mode_t mode : {0600U, 0640U, 0666U}) {
        ASSERT_EQ(::chmod(path(u"out"_s).c_str(), mode), 0);
        OutputFile output(path(u"link"_s), input());
        output.write(bytesOf("new"));
        output.commit();
        EXPECT_EQ(modeOf(u"out"_s), mode);
    }
}

TEST_F(OutputFileTest, IsOnTheDiskBeforeItReplacesAFile)
{
    for (const bool isThere : {false, true}) {
        OutputFile output(path(u"out"_s), input());
        output.write(bytesOf("new"));
        const SystemCallRecorder calls;
        output.commit();
        const qsizetype flushed = calls.indexOf(u"fsync "_s);
        EXPECT_EQ(flushed >= 0, isThere);
        if (!isThere)
            continue;
        // With all of its bytes, and under no name of others.
        EXPECT_GT(flushed, calls.indexOf(u"write "_s));
        EXPECT_LT(flushed, calls.indexOf(u"rename "_s)) << qPrintable(calls.calls().join(u'\n'));
    }
}

TEST_F(OutputFileTest, LeavesTheFormerFileWhenTheDiskTellsOfAnErrorAtTheEnd)
{
    m_folder.write(u"out"_s, "former");
    for (const QString &call : {u"fsync "_s, u"close "_s}) {
        OutputFile output(path(u"out"_s), input());
        output.write(bytesOf("new"));
        {
            SystemCallRecorder calls;
            calls.fail(call + m_folder.path(), EIO);
            EXPECT_THROW(output.commit(), ToolError) << call.toStdString();
        }
        EXPECT_EQ(m_folder.read(u"out"_s), "former");
    }
    EXPECT_EQ(m_folder.list(), (QStringList{u"in"_s, u"out"_s}));
}

TEST_F(OutputFileTest, TellsOfAnErrorWhenItClosesWhatCannotBeReplaced)
{
    const std::string pipe = path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const FileDescriptor reader(::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    OutputFile output(pipe, input());
    output.write(bytesOf("new"));
    SystemCallRecorder calls;
    calls.fail(u"close "_s + m_folder.path(u"pipe"_s), EIO);
    EXPECT_THROW(output.commit(), ToolError);
}

TEST_F(OutputFileTest, ReplacesTheFileThatALinkNames)
{
    m_folder.write(u"music/real"_s, "former");
    m_folder.makeLink(u"link"_s, u"music/real"_s);
    m_folder.makeLink(u"twice"_s, u"link"_s);
    m_folder.makeLink(u"new"_s, m_folder.path(u"music/fresh"_s));
    for (const QString &name : {u"twice"_s, u"new"_s}) {
        OutputFile output(path(name), input());
        output.write(bytesOf("new"));
        output.commit();
    }
    EXPECT_TRUE(QFileInfo(m_folder.path(u"twice"_s)).isSymLink());
    EXPECT_TRUE(QFileInfo(m_folder.path(u"link"_s)).isSymLink());
    EXPECT_EQ(m_folder.read(u"music/real"_s), "new");
    EXPECT_EQ(m_folder.read(u"music/fresh"_s), "new");
    EXPECT_EQ(m_folder.list(),
              (QStringList{u"in"_s, u"link"_s, u"music/fresh"_s, u"music/real"_s, u"new"_s, u"twice"_s}));
}

TEST_F(OutputFileTest, RefusesTheFileThatIsRead)
{
    m_folder.makeLink(u"link"_s, u"in"_s);
    ASSERT_EQ(::link(path(u"in"_s).c_str(), path(u"hard"_s).c_str()), 0);
    for (const QString &name : {u"in"_s, u"link"_s, u"hard"_s, u"./in"_s})
        expectFailure(name, ToolError::Kind::BadArguments, "the output is the same file as the input: ");
    EXPECT_EQ(m_folder.read(u"in"_s), "input");
}

TEST_F(OutputFileTest, RefusesWhatCannotBeWritten)
{
    m_folder.makeFolder(u"folder"_s);
    m_folder.makeLink(u"round"_s, u"round"_s);
    expectFailure(u"folder"_s, ToolError::Kind::Write, "folder: Is a directory");
    expectFailure(u"none/out"_s, ToolError::Kind::Write, "none/out: No such file or directory");
    expectFailure(u"in/out"_s, ToolError::Kind::Write, "in/out: Not a directory");
    expectFailure(u"round"_s, ToolError::Kind::Write, "round: Too many levels of symbolic links");
    EXPECT_THAT(failureOf("")->what(), HasSubstr("No such file or directory"));
}

TEST_F(OutputFileTest, RefusesAFileThatIsWriteProtected)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everything";
    m_folder.write(u"kept"_s, "kept");
    ASSERT_TRUE(QFile::setPermissions(m_folder.path(u"kept"_s), QFile::ReadOwner));
    expectFailure(u"kept"_s, ToolError::Kind::Write, "kept: Permission denied");
}

TEST_F(OutputFileTest, TellsThatADeviceIsFull)
{
    OutputFile output("/dev/full", input());
    EXPECT_FALSE(output.isSeekable());
    output.write(bytesOf("x"));
    try {
        output.commit();
        FAIL() << "a full device took a byte";
    } catch (const ToolError &error) {
        EXPECT_EQ(error.kind(), ToolError::Kind::Write);
        EXPECT_STREQ(error.what(), "cannot write /dev/full: No space left on device");
    }
}

TEST_F(OutputFileTest, WritesToANamedPipeAsItIs)
{
    ASSERT_EQ(::mkfifo(path(u"pipe"_s).c_str(), 0600), 0);
    const int reader = ::open(path(u"pipe"_s).c_str(), O_RDONLY | O_NONBLOCK);
    OutputFile output(path(u"pipe"_s), input());
    EXPECT_FALSE(output.isSeekable());
    output.write(bytesOf("abc"));
    output.flush();
    char block[10] = {};
    EXPECT_EQ(::read(reader, block, sizeof block), 3);
    EXPECT_STREQ(block, "abc");
    ::close(reader);
    output.write(bytesOf("d"));
    EXPECT_THROW(output.flush(), ClosedPipe);
    EXPECT_EQ(m_folder.list(), (QStringList{u"in"_s, u"pipe"_s}));
}

TEST_F(OutputFileTest, TellsWithoutAWriteThatTheReaderWentAway)
{
    ASSERT_EQ(::mkfifo(path(u"pipe"_s).c_str(), 0600), 0);
    const int reader = ::open(path(u"pipe"_s).c_str(), O_RDONLY | O_NONBLOCK);
    const OutputFile output(path(u"pipe"_s), input());
    EXPECT_NO_THROW(output.checkReader());
    ::close(reader);
    EXPECT_THROW(output.checkReader(), ClosedPipe);
    EXPECT_NO_THROW(OutputFile(path(u"file"_s), input()).checkReader());
    EXPECT_NO_THROW(OutputFile("/dev/null", input()).checkReader());
}

TEST_F(OutputFileTest, LetsBytesWaitBesideAFileButNotBesideADevice)
{
    m_folder.makeFolder(u"music"_s);
    m_folder.makeLink(u"link"_s, u"music/new"_s);
    ASSERT_EQ(::mkfifo(path(u"pipe"_s).c_str(), 0600), 0);
    const int reader = ::open(path(u"pipe"_s).c_str(), O_RDONLY | O_NONBLOCK);
    const auto folderOf = [this](const std::string &name) { return OutputFile(name, input()).spoolFolder(); };
    const QByteArray former = qgetenv("TMPDIR");
    qputenv("TMPDIR", "/some/where");
    EXPECT_EQ(folderOf(path(u"new"_s)), m_folder.path().toStdString() + '/');
    EXPECT_EQ(folderOf(path(u"link"_s)), path(u"music/"_s));
    for (const std::string &name : {path(u"pipe"_s), "/dev/null"s})
        EXPECT_EQ(folderOf(name), "/some/where") << name;
    qunsetenv("TMPDIR");
    EXPECT_EQ(folderOf("/dev/null"), "/var/tmp");
    if (!former.isNull())
        qputenv("TMPDIR", former);
    ::close(reader);
}

/// Runs the copying program as $0 on the input, $1, in a shell that stands in the folder.
ProgramResult copyInShell(const TestFolder &folder, const QString &line)
{
    return runProgram(u"/bin/bash"_s, {u"-c"_s, u"cd \"$2\"; "_s + line, QString::fromLocal8Bit(NURV_COPY_TOOL),
                                       folder.path(u"in"_s), folder.path()});
}

TEST_F(OutputFileTest, WritesToTheFileBehindStandardOutputWhateverItIsCalled)
{
    for (const QString &name : {u"/dev/stdout"_s, u"/dev/fd/1"_s, u"/proc/self/fd/1"_s, u"app"_s}) {
        SCOPED_TRACE(name.toStdString());
        m_folder.write(u"app"_s, "keep ");
        EXPECT_EQ(copyInShell(m_folder, u"exec \"$0\" \"$1\" %1 >> app"_s.arg(name)).exitStatus, 0);
        EXPECT_EQ(m_folder.read(u"app"_s), "keep input");
    }
    EXPECT_EQ(copyInShell(m_folder, u"printf 'first ' > new; \"$0\" \"$1\" /dev/stdout >> new"_s).exitStatus, 0);
    EXPECT_EQ(m_folder.read(u"new"_s), "first input");
    EXPECT_EQ(copyInShell(m_folder, u"exec 3> gone; rm gone; \"$0\" \"$1\" /dev/stdout >&3"_s).exitStatus, 0);
    EXPECT_EQ(copyInShell(m_folder, u"exec \"$0\" \"$1\" /dev/stdout"_s).output, "input");
    EXPECT_EQ(m_folder.list(), (QStringList{u"app"_s, u"in"_s, u"new"_s}));
}

TEST_F(OutputFileTest, ReplacesNoFileThatOnlyAnOpenDescriptorNames)
{
    m_folder.write(u"app"_s, "keep");
    m_folder.makeLink(u"link"_s, u"/proc/self/fd/3"_s);
    for (const QString &name : {u"/dev/fd/3"_s, u"/proc/self/fd/3"_s, u"link"_s}) {
        const ProgramResult result = copyInShell(m_folder, u"exec \"$0\" \"$1\" %1 3>> app"_s.arg(name));
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(QString::fromUtf8(result.errors),
                  u"copy_tool: cannot write %1: it stands for an open file, which cannot be replaced\n"_s.arg(name));
        EXPECT_EQ(m_folder.read(u"app"_s), "keep");
    }
}

} // namespace

} // namespace nurv::test
