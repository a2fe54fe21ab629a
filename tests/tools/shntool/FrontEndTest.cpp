// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/WaitUntil.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gmock/gmock.h>

#include <csignal>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

QString program()
{
    return QString::fromLocal8Bit(NURV_SHNTOOL_ALONG_PATH);
}

/// A stand-in for the distribution's program along PATH, in a shell that has the value
/// of -d in $folder; a source and a folder for what is made.
class FrontEnd : public ::testing::Test {
protected:
    FrontEnd() : m_formerPath(qgetenv("PATH"))
    {
        m_folder.write(u"in.flac"_s, "source");
        m_folder.makeFolder(u"out"_s);
        qputenv("PATH", QFile::encodeName(m_folder.path(u"bin"_s)) + ":/usr/bin:/bin");
    }
    ~FrontEnd() override { qputenv("PATH", m_formerPath); }

    void standIn(const QByteArray &script) const
    {
        const QString path =
            m_folder.write(u"bin/shntool"_s, "#!/bin/bash\nfor word; do [ \"$former\" = -d ] && folder=$word; "
                                             "former=$word; done\n"
                                                 + script + '\n');
        EXPECT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    [[nodiscard]] QStringList callOf(const QStringList &options = {u"-O"_s, u"always"_s}) const
    {
        return QStringList{u"conv"_s} + options
               + QStringList{u"-n"_s, m_folder.path(u"out/made.wav"_s), m_folder.path(u"in.flac"_s)};
    }

    [[nodiscard]] ProgramResult convert(const QStringList &options = {u"-O"_s, u"always"_s}) const
    {
        return runProgram(program(), callOf(options));
    }

    [[nodiscard]] QStringList made() const
    {
        return QDir(m_folder.path(u"out"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    TestFolder m_folder;

private:
    QByteArray m_formerPath;
};

TEST_F(FrontEnd, HandsArgumentsStreamsAndStatusOver)
{
    standIn("printf '%s|' \"$@\"; cat; echo errors >&2; exit 7");
    const ProgramResult result = runProgram(program(), {u"len"_s, u"a b"_s, u""_s, u"-n"_s}, "input");
    EXPECT_EQ(result.exitStatus, 7);
    EXPECT_EQ(result.output, "len|a b||-n|input");
    EXPECT_EQ(result.errors, "errors\n");
}

TEST_F(FrontEnd, AnswersTheQuestionsThatTheProgramDoesNotKnow)
{
    standIn("echo asked");
    EXPECT_THAT(runProgram(program(), {u"--help"_s}).output.toStdString(), HasSubstr("conv -n FILE"));
    EXPECT_EQ(runProgram(program(), {u"--version"_s}).output, "shntool (Nurv Audio Workbench) " NURV_VERSION "\n");
    EXPECT_EQ(runProgram(program(), {u"len"_s, u"--help"_s}).output, "asked\n");
    EXPECT_EQ(runProgram(program(), {u"-h"_s}).output, "asked\n");
}

TEST_F(FrontEnd, AddsItsFolderToTheEndOfPath)
{
    standIn("printf '%s' \"$PATH\"");
    const QByteArray own = QFile::encodeName(QFileInfo(program()).canonicalPath());
    const QByteArray path = qgetenv("PATH");
    EXPECT_EQ(runProgram(program(), {u"len"_s}).output, path + ':' + own);
    qputenv("PATH", own + ':' + path);
    EXPECT_EQ(runProgram(program(), {u"len"_s}).output, own + ':' + path);
}

TEST_F(FrontEnd, StartsNothingFromTheCurrentFolder)
{
    standIn("printf '%s' \"$PATH\"");
    const QByteArray trap = "#!/bin/sh\necho trapped\n";
    for (const QString &name : {u"in/shntool"_s, u"in/rel/shntool"_s})
        QFile::setPermissions(m_folder.write(name, trap), QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", ":.:rel:" + path + ":rel:");
    const ProgramResult result =
        runProgram(u"/usr/bin/env"_s, {u"-C"_s, m_folder.path(u"in"_s), program(), u"len"_s});
    EXPECT_EQ(result.output, path + ':' + QFile::encodeName(QFileInfo(program()).canonicalPath()));
}

TEST_F(FrontEnd, NamesCannotGiveATerminalOrders)
{
    standIn("touch \"$folder/a.wav\"");
    const QString name = m_folder.write(u"out/a\x1b[2J\u009b\u202E.wav"_s, "former");
    const ProgramResult result = runProgram(
        program(), {u"conv"_s, u"-O"_s, u"never"_s, u"-n"_s, name, m_folder.path(u"in.flac"_s)});
    EXPECT_NE(result.exitStatus, 0);
    EXPECT_EQ(result.errors, "shntool [conv]: error: output file already exists -- skipping: ["
                                 + m_folder.path(u"out/a\\x1B[2J\\u{009B}\\u{202E}.wav"_s).toUtf8() + "]\n");
}

TEST_F(FrontEnd, NeverStartsItself)
{
    standIn("echo found");
    m_folder.makeFolder(u"first"_s);
    m_folder.makeLink(u"first/shntool"_s, program());
    qputenv("PATH", QFile::encodeName(m_folder.path(u"first"_s)) + ':' + qgetenv("PATH"));
    EXPECT_EQ(runProgram(program(), {u"len"_s}).output, "found\n");
}

TEST_F(FrontEnd, PassesOverOtherCopiesOfItself)
{
    QByteArray path;
    for (const QString &name : {u"first"_s, u"second"_s, u"fourth"_s}) {
        m_folder.makeFolder(name);
        ASSERT_TRUE(QFile::copy(program(), m_folder.path(name + u"/shntool"_s)));
        path += (path.isEmpty() ? "" : ":") + QFile::encodeName(m_folder.path(name));
    }
    const QByteArray former = qgetenv("PATH");
    qputenv("PATH", path);
    const ProgramResult alone = runProgram(program(), {u"-v"_s});
    EXPECT_EQ(alone.exitStatus, 127);
    EXPECT_THAT(alone.errors.toStdString(), HasSubstr("the package \"shntool\" provides it"));
    standIn("echo found");
    qputenv("PATH", path + ':' + former);
    EXPECT_EQ(runProgram(program(), {u"len"_s}).output, "found\n");
}

TEST_F(FrontEnd, SaysWhichPackageIsMissing)
{
    qputenv("PATH", "/nowhere");
    const ProgramResult result = runProgram(program(), {u"-v"_s});
    EXPECT_EQ(result.exitStatus, 127);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("the package \"shntool\" provides it"));
}

TEST_F(FrontEnd, MovesTheOneFileWhenTheConversionSucceeded)
{
    m_folder.write(u"out/made.wav"_s, "former");
    standIn("cat \"${@: -1}\" > \"$folder/any name\"; echo output; echo errors >&2; "
            "[ \"$(cat '"
            + QFile::encodeName(m_folder.path(u"out/made.wav"_s)) + "')\" = former ]");
    const ProgramResult result = convert();
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, "output\n");
    EXPECT_EQ(result.errors, "errors\n");
    EXPECT_EQ(made(), QStringList{u"made.wav"_s});
    EXPECT_EQ(m_folder.read(u"out/made.wav"_s), "source");
}

TEST_F(FrontEnd, KeepsTheModeOfTheFileThatItReplaces)
{
    const QString path = m_folder.write(u"out/made.wav"_s, "former");
    ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
    standIn("echo new > \"$folder/x\"; chmod 644 \"$folder/x\"");
    EXPECT_EQ(convert().exitStatus, 0);
    EXPECT_EQ(m_folder.read(u"out/made.wav"_s), "new\n");
    EXPECT_FALSE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(FrontEnd, PassesOutputOnWhenItIsWritten)
{
    standIn("printf first; read -r go; printf second; echo x > \"$folder/x\"");
    QProcess process;
    process.start(program(), callOf());
    ASSERT_TRUE(process.waitForReadyRead(30'000));
    EXPECT_EQ(process.readAll(), "first");
    process.write("go\n");
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.readAll(), "second");
    EXPECT_EQ(process.exitCode(), 0);
}

TEST_F(FrontEnd, KeepsTheFormerFileWhenTheConversionFails)
{
    m_folder.write(u"out/made.wav"_s, "former");
    standIn("echo half > \"$folder/made.wav\"; exit 3");
    EXPECT_EQ(convert().exitStatus, 3);
    EXPECT_EQ(made(), QStringList{u"made.wav"_s});
    EXPECT_EQ(m_folder.read(u"out/made.wav"_s), "former");
}

TEST_F(FrontEnd, DiesAsTheProgramDies)
{
    standIn("echo half > \"$folder/made.wav\"; kill -SEGV $$");
    QProcess process;
    process.start(program(), callOf());
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGSEGV);
    EXPECT_EQ(made(), QStringList());
}

TEST_F(FrontEnd, RefusesAnyNumberOfFilesButOne)
{
    const std::pair<QByteArray, const char *> cases[] = {
        {":", "made 0 files"},
        {"echo 1 > \"$folder/1\"; echo 2 > \"$folder/2\"", "made 2 files"},
        {"mkdir \"$folder/sub\"", "made 1 files"},
    };
    for (const auto &[script, text] : cases) {
        standIn(script);
        const ProgramResult result = convert();
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors.toStdString(), HasSubstr(text));
        EXPECT_EQ(made(), QStringList());
    }
}

TEST_F(FrontEnd, StartsNothingForAFileThatItMayNotReplace)
{
    standIn("echo started; echo x > \"$folder/x\"");
    m_folder.write(u"out/made.wav"_s, "former");
    for (const QStringList &options :
         {QStringList{}, QStringList{u"-O"_s, u"ask"_s}, QStringList{u"-O"_s, u"never"_s}}) {
        const ProgramResult result = convert(options);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("shntool [conv]: error: output file already exists"));
        EXPECT_EQ(m_folder.read(u"out/made.wav"_s), "former");
    }
    m_folder.remove(u"out/made.wav"_s);
    EXPECT_EQ(convert({u"-O"_s, u"never"_s}).exitStatus, 0);
    EXPECT_EQ(made(), QStringList{u"made.wav"_s});
}

TEST_F(FrontEnd, ReplacesNoFileThatCameInTheMeantime)
{
    standIn("echo new > \"$folder/x\"; echo other > \"${folder%/*}/made.wav\"");
    const ProgramResult result = convert({u"-O"_s, u"never"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("made.wav: File exists"));
    EXPECT_EQ(m_folder.read(u"out/made.wav"_s), "other\n");
    EXPECT_EQ(made(), QStringList{u"made.wav"_s});
}

TEST_F(FrontEnd, RefusesToReplaceTheSource)
{
    standIn("echo started; echo x > \"$folder/x\"");
    m_folder.makeLink(u"out/made.wav"_s, m_folder.path(u"in.flac"_s));
    const ProgramResult result = convert();
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("output file would overwrite input file"));
    EXPECT_EQ(m_folder.read(u"in.flac"_s), "source");
}

TEST_F(FrontEnd, RefusesAFolderThatIsNotThere)
{
    standIn("echo started");
    QDir().rmdir(m_folder.path(u"out"_s));
    const ProgramResult result = convert();
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "shntool [conv]: error: cannot write "
                                 + QFile::encodeName(m_folder.path(u"out/made.wav"_s))
                                 + ": No such file or directory\n");
}

TEST_F(FrontEnd, RefusesAFolderThatIsWriteProtected)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everywhere";
    standIn("echo started");
    ASSERT_TRUE(QFile::setPermissions(m_folder.path(u"out"_s), QFile::ReadOwner | QFile::ExeOwner));
    const ProgramResult result = convert();
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("Permission denied"));
    QFile::setPermissions(m_folder.path(u"out"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// A signal to the front end alone, while the program and a codec of it run.
class FrontEndSignal : public FrontEnd, public ::testing::WithParamInterface<int> {};

TEST_P(FrontEndSignal, EndsEverythingAndLeavesNothing)
{
    // The codec outlives the program and then adds to the folder, if it is let.
    standIn("(echo $BASHPID; exec >&-; while :; do echo x >> \"$folder/made.wav\"; sleep 0.01; done) & "
            "while [ ! -s \"$folder/made.wav\" ]; do :; done; echo running; sleep 60 & wait");
    QProcess process;
    process.start(program(), callOf());
    QByteArray output;
    while (!output.contains("running") && process.waitForReadyRead(30'000))
        output += process.readAll();
    ASSERT_THAT(output.toStdString(), HasSubstr("running"));
    const pid_t codec = output.left(output.indexOf('\n')).toInt();
    ASSERT_GT(codec, 0);
    ASSERT_EQ(::kill(codec, 0), 0);
    ::kill(static_cast<pid_t>(process.processId()), GetParam());
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), GetParam());
    EXPECT_EQ(::kill(codec, 0), -1) << "the codec still runs";
    EXPECT_EQ(made(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(FrontEnd, FrontEndSignal, ::testing::Values(SIGTERM, SIGHUP, SIGQUIT, SIGXCPU));

TEST_F(FrontEnd, EndsAProgramThatIsStopped)
{
    standIn("echo x > \"$folder/made.wav\"; echo running; kill -STOP $$");
    QProcess process;
    process.start(program(), callOf());
    ASSERT_TRUE(process.waitForReadyRead(30'000));
    ::kill(static_cast<pid_t>(process.processId()), SIGTERM);
    EXPECT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitCode(), SIGTERM);
    EXPECT_EQ(made(), QStringList());
}

TEST_F(FrontEnd, LeavesNothingWhenTheTerminalInterruptsAll)
{
    standIn("echo x > \"$folder/made.wav\"; echo running; exec sleep 60");
    QProcess process;
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    process.start(program(), callOf());
    ASSERT_TRUE(process.waitForReadyRead(30'000));
    EXPECT_EQ(made().size(), 1);
    ::kill(-static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGINT);
    EXPECT_EQ(made(), QStringList());
}

TEST_F(FrontEnd, GoesOnWhereAHangUpIsIgnored)
{
    standIn("kill -HUP $PPID; kill -HUP $$; echo x > \"$folder/x\"");
    QProcess process;
    process.setChildProcessModifier([] { std::signal(SIGHUP, SIG_IGN); });
    process.start(program(), callOf());
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(made(), QStringList{u"made.wav"_s});
}

/// The signals that a process holds back and ignores, as its status file has them,
/// without those of the C library.
QList<quint32> signalsOf(const QByteArray &status)
{
    QList<quint32> sets;
    for (const QByteArray &line : status.trimmed().split('\n'))
        sets.append(static_cast<quint32>(line.mid(line.indexOf('\t') + 1).toULongLong(nullptr, 16) & 0x7FFF'FFFF));
    return sets;
}

TEST_F(FrontEnd, StartsTheProgramWithTheSignalsOfItsOwnStart)
{
    standIn("echo x > \"$folder/x\"; exec grep -E '^Sig(Blk|Ign)' /proc/self/status");
    const QList<quint32> converting = signalsOf(convert().output);
    ASSERT_EQ(converting.size(), 2);
    const ProgramResult directly = runProgram(m_folder.path(u"bin/shntool"_s), {u"-d"_s, m_folder.path()});
    EXPECT_EQ(converting, signalsOf(directly.output));
}

} // namespace

} // namespace nurv::test
