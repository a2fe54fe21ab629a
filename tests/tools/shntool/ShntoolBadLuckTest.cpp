// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/PrivateFolderName.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/WaitUntil.h"

#include <QDir>
#include <QFile>
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
    return QString::fromLocal8Bit(NURV_SHNTOOL);
}

/// An encoder or decoder that is a shell script, and a folder for what is made.
class ShntoolBadLuck : public ::testing::Test {
protected:
    ShntoolBadLuck()
    {
        writeWav(m_folder.path(u"in.wav"_s), {.frames = 588 * 200});
        m_folder.makeFolder(u"out"_s);
    }

    [[nodiscard]] QString script(const QByteArray &text, const QString &name = u"codec"_s) const
    {
        const QString path = m_folder.write(name, "#!/bin/bash\n" + text + '\n');
        EXPECT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        return path;
    }

    [[nodiscard]] QStringList encodeWith(const QByteArray &text) const
    {
        return {u"conv"_s,
                u"-o"_s,
                u"cust ext=x %1 %f"_s.arg(script(text)),
                u"-d"_s,
                m_folder.path(u"out"_s),
                u"-O"_s,
                u"always"_s,
                m_folder.path(u"in.wav"_s)};
    }

    [[nodiscard]] QStringList made() const
    {
        return QDir(m_folder.path(u"out"_s))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    TestFolder m_folder;
};

TEST_F(ShntoolBadLuck, KeepsTheFormerFileWhenAnEncoderFailsInTheEnd)
{
    m_folder.write(u"out/in.x"_s, "former");
    const ProgramResult result = runProgram(program(), encodeWith("cat > \"$1\"; exit 3"));
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("had non-zero exit status 3"));
    EXPECT_EQ(m_folder.read(u"out/in.x"_s), "former");
    EXPECT_EQ(made(), QStringList{u"in.x"_s});
}

TEST_F(ShntoolBadLuck, FailsWithAnEncoderThatDiesOrMakesNothing)
{
    for (const char *text : {"kill -KILL $$", "cat > \"$1\"; kill -KILL $$", "cat > /dev/null", "cat > \"$1.other\"",
                             "cat > /dev/null; ln -s /etc/passwd \"$1\"", "cat > /dev/null; mkdir \"$1\"",
                             "cat > /dev/null; : > \"$1\""}) {
        EXPECT_EQ(runProgram(program(), encodeWith(text)).exitStatus, 1) << text;
        EXPECT_EQ(made(), QStringList()) << text;
    }
}

TEST_F(ShntoolBadLuck, FailsWithAnEncoderThatDoesNotWantTheSound)
{
    const QByteArray closed = QFile::encodeName(m_folder.path(u"closed"_s));
    const QByteArray sound = QFile::encodeName(writeWav(m_folder.path(u"short.wav"_s), {.frames = 588}));
    // The end of the sound comes when the encoder has closed its input; it makes a file, and ends well.
    QStringList call = encodeWith("exec 0<&-; echo x > \"$1\"; : > " + closed);
    call.last() = writeFlac(m_folder.path(u"in.flac"_s), {.frames = 588});
    call += {u"-i"_s, u"flac %1 %f"_s.arg(script("head -c 100 " + sound + "; while [ -e \"$0\" ] && [ ! -e " + closed
                                                     + " ]; do sleep 0.01; done; tail -c +101 " + sound,
                                                 u"decoder"_s))};
    const ProgramResult result = runProgram(program(), call);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("made no complete file"));
    EXPECT_EQ(made(), QStringList());
}

TEST_F(ShntoolBadLuck, NamesNoPieceBeforeAllAreMade)
{
    QStringList call = encodeWith("cat > \"$1\"; case \"$1\" in *track02.x) rm \"$1\";; esac");
    call.first() = u"split"_s;
    call += {u"-l"_s, u"0:01"_s};
    const ProgramResult result = runProgram(program(), call);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("split-track02.x]\n"));
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("error: failed to split file"));
    EXPECT_EQ(made(), QStringList());
}

TEST_F(ShntoolBadLuck, TellsThePieceThatCannotGetItsName)
{
    const QString taken = m_folder.path(u"out/split-track02.x"_s);
    QStringList call =
        encodeWith("cat > \"$1\"; case \"$1\" in *track02.x) mkdir " + QFile::encodeName(taken) + ";; esac");
    call.first() = u"split"_s;
    call += {u"-l"_s, u"0:01"_s};
    const ProgramResult result = runProgram(program(), call);
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("could not complete output file: [" + taken.toStdString()
                                                       + "] -- those before it are complete"));
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("error: failed to split file"));
    EXPECT_EQ(made(), (QStringList{u"split-track01.x"_s, u"split-track02.x"_s}));
}

TEST_F(ShntoolBadLuck, TellsTheReasonHoweverQuietItShallBe)
{
    const QString wav = m_folder.path(u"in.wav"_s);
    const QStringList out{u"-d"_s, m_folder.path(u"out"_s)};
    const QString late = script("cat > \"$1\"; exit 3");
    for (const QString &option : {u"-q"_s, u"-qw"_s}) {
        for (const QStringList &call : {QStringList{u"conv"_s, u"-o"_s, u"cust ext=x false %f"_s, wav} + out,
                                        QStringList{u"conv"_s, u"-o"_s, u"flac no-such-program %f"_s, wav} + out,
                                        QStringList{u"conv"_s, u"-o"_s, u"cust ext=x %1 %f"_s.arg(late), wav} + out,
                                        QStringList{u"trim"_s, wav} + out, QStringList{u"pad"_s, wav} + out,
                                        QStringList{u"len"_s, m_folder.path(u"nothere"_s)}}) {
            const ProgramResult result = runProgram(program(), call + QStringList{option});
            EXPECT_EQ(result.exitStatus, 1) << qPrintable(call.join(u' '));
            EXPECT_TRUE(result.errors.startsWith("shntool [" + call.front().toUtf8() + "]: error: "))
                << qPrintable(call.join(u' ')) << result.errors.constData();
            EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
            EXPECT_THAT(result.errors.toStdString(), HasSubstr(call.contains(wav) ? "in.wav" : "nothere"));
        }
        // That files differ is a result, and no failure.
        writeWav(m_folder.path(u"shorter.wav"_s), {.frames = 50, .seed = 5});
        const ProgramResult differing =
            runProgram(program(), {u"cmp"_s, u"-l"_s, option, wav, m_folder.path(u"shorter.wav"_s)});
        EXPECT_EQ(differing.exitStatus, 1);
        EXPECT_EQ(differing.errors, "");
        const ProgramResult good = runProgram(program(), QStringList{u"conv"_s, option, wav} + out);
        EXPECT_EQ(good.exitStatus, 0);
        EXPECT_EQ(good.errors, "");
        m_folder.remove(u"out/in.wav"_s);
    }
}

TEST_F(ShntoolBadLuck, FailsWithADecoderThatFailsInTheEnd)
{
    const QString flac = writeFlac(m_folder.path(u"in.flac"_s), {.frames = 588 * 200});
    const QString decoder = u"flac %1 %f"_s.arg(script("flac -c -d -s \"$1\"; exit 1"));
    for (const QStringList &call :
         {QStringList{u"hash"_s, u"-i"_s, decoder, flac},
          QStringList{u"conv"_s, u"-d"_s, m_folder.path(u"out"_s), u"-i"_s, decoder, flac},
          QStringList{u"split"_s, u"-l"_s, u"0:01"_s, u"-d"_s, m_folder.path(u"out"_s), u"-i"_s, decoder, flac},
          QStringList{u"join"_s, u"-d"_s, m_folder.path(u"out"_s), u"-i"_s, decoder, flac,
                      m_folder.path(u"in.wav"_s)}}) {
        const ProgramResult result = runProgram(program(), call);
        EXPECT_EQ(result.exitStatus, 1) << qPrintable(call.front());
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("possibly truncated and/or corrupt file"));
        EXPECT_EQ(made(), QStringList()) << qPrintable(call.front());
    }
}

TEST_F(ShntoolBadLuck, FindsASumThatDoesNotMatch)
{
    const QString flac = writeFlac(m_folder.path(u"in.flac"_s), {.frames = 588 * 200});
    QByteArray bytes = m_folder.read(u"in.flac"_s);
    bytes[8 + 18] = static_cast<char>(bytes[8 + 18] ^ 1); // the MD5 in STREAMINFO
    m_folder.write(u"in.flac"_s, bytes);
    for (const QStringList &call :
         {QStringList{u"hash"_s, flac}, QStringList{u"hash"_s, u"-s"_s, flac},
          QStringList{u"conv"_s, u"-d"_s, m_folder.path(u"out"_s), flac},
          QStringList{u"fix"_s, u"-d"_s, m_folder.path(u"out"_s), flac, m_folder.path(u"in.wav"_s)}}) {
        EXPECT_EQ(runProgram(program(), call).exitStatus, 1) << qPrintable(call.front());
        EXPECT_EQ(made(), QStringList());
    }
}

TEST_F(ShntoolBadLuck, FollowsNoLinkInWriting)
{
    const QString victim = m_folder.write(u"victim.wav"_s, "precious");
    ASSERT_TRUE(QFile::link(victim, m_folder.path(u"out/in.wav"_s)));
    EXPECT_EQ(runProgram(program(), {u"conv"_s, u"-O"_s, u"always"_s, u"-d"_s, m_folder.path(u"out"_s),
                                     m_folder.path(u"in.wav"_s)})
                  .exitStatus,
              0);
    EXPECT_EQ(m_folder.read(u"victim.wav"_s), "precious");
    EXPECT_EQ(m_folder.read(u"out/in.wav"_s), m_folder.read(u"in.wav"_s));
}

TEST_F(ShntoolBadLuck, FailsOnAFullDisk)
{
    const ProgramResult result =
        runProgram(u"/bin/bash"_s, {u"-c"_s, u"ulimit -f 100; exec \"$0\" conv -d \"$1\" \"$2\""_s, program(),
                                    m_folder.path(u"out"_s), m_folder.path(u"in.wav"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("error while transferring"));
    EXPECT_EQ(made(), QStringList());
}

TEST_F(ShntoolBadLuck, ComparesWithoutMemoryForWhatOnlyAHeaderTells)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers take memory of their own";
#endif
    QByteArray wav = m_folder.read(u"in.wav"_s).first(44 + 4000);
    const auto put = [&wav](qsizetype at, const QByteArray &bytes) { wav.replace(at, bytes.size(), bytes); };
    put(22, "\xff\xff");         // channels
    put(24, "\xff\xff\xff\x7f"); // rate
    put(40, "\xff\xff\xff\x7f"); // bytes of sound
    const QString file = m_folder.write(u"lies.wav"_s, wav);
    const ProgramResult result =
        runProgram(u"/bin/bash"_s, {u"-c"_s, u"ulimit -v 500000; exec \"$0\" cmp -s \"$1\" \"$1\""_s, program(), file});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("error while reading"));
}

/// A signal to the program alone, while an encoder runs that has started a program of its own.
class ShntoolSignal : public ShntoolBadLuck, public ::testing::WithParamInterface<int> {};

TEST_P(ShntoolSignal, EndsEverythingAndLeavesNothing)
{
    const QString started = m_folder.path(u"started"_s);
    QProcess process;
    process.start(program(), encodeWith("(trap '' TERM; while [ -e \"$0\" ]; do echo x >> \"$1\"; sleep 0.01; done) &\n"
                                        "while [ ! -s \"$1\" ]; do :; done; echo $! > "
                                        + QFile::encodeName(started) + ".new; mv " + QFile::encodeName(started)
                                        + ".new " + QFile::encodeName(started) + "; sleep 60"));
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(started); }));
    const pid_t grandchild = m_folder.read(u"started"_s).trimmed().toInt();
    ASSERT_GT(grandchild, 0);
    ::kill(static_cast<pid_t>(process.processId()), GetParam());
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), GetParam());
    EXPECT_EQ(::kill(grandchild, 0), -1) << "what the encoder started still runs";
    EXPECT_EQ(made(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Ending, ShntoolSignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGXCPU));

TEST_F(ShntoolBadLuck, SweepsWhatAKilledRunLeft)
{
    const QString started = m_folder.path(u"started"_s);
    const QString goOn = m_folder.path(u"go-on"_s);
    QProcess process;
    process.start(program(), encodeWith("echo x > \"$1\"; echo > " + QFile::encodeName(started)
                                        + "; cat > /dev/null; "
                                          "while [ -e \"$0\" ] && [ ! -e "
                                        + QFile::encodeName(goOn) + " ]; do sleep 0.02; done"));
    process.closeReadChannel(QProcess::StandardOutput);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(started); }));
    ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
    ASSERT_TRUE(process.waitForFinished(30'000));
    m_folder.write(u"go-on"_s, "");
    const QStringList left = made();
    ASSERT_EQ(left.size(), 1);
    ASSERT_TRUE(left.first().startsWith(QString::fromUtf8(kPrivateFolderPrefix.data()))) << qPrintable(left.first());
    // Also where no program makes the next output.
    const ProgramResult next = runProgram(program(), {u"conv"_s, u"-q"_s, u"-o"_s, u"wav"_s, u"-d"_s,
                                                      m_folder.path(u"out"_s), m_folder.path(u"in.wav"_s)});
    EXPECT_EQ(next.exitStatus, 0) << next.errors.constData();
    EXPECT_EQ(made(), QStringList{u"in.wav"_s});
}

} // namespace

} // namespace nurv::test
