// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ShortenTestSupport.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/TestProgram.h"
#include "support/WaitUntil.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace nurv::shorten::test;
using nurv::test::ProgramResult;
using nurv::test::runProgram;
using nurv::test::TestFolder;
using testing::HasSubstr;

namespace {

constexpr int kLimitMs = 60'000;

QString shorten()
{
    return QString::fromLocal8Bit(NURV_SHORTEN);
}

QByteArray asArray(const Bytes &bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

/// Runs a line of shell with the program as $0.
ProgramResult runShell(const QString &line, const QStringList &arguments)
{
    return runProgram(u"/bin/bash"_s, QStringList{u"-c"_s, line, shorten()} + arguments);
}

void expectSuccess(const ProgramResult &result)
{
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.errors, "");
}

/// kB, of the process as it is now.
int peakMemory(const QProcess &process)
{
    QFile status(u"/proc/%1/status"_s.arg(process.processId()));
    EXPECT_TRUE(status.open(QFile::ReadOnly));
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).simplified().split(' ').first().toInt();
    }
    ADD_FAILURE() << "no peak of memory";
    return 0;
}

/// Gives the process those bytes and takes what it writes until then.
void feed(QProcess &process, const QByteArray &bytes, QCryptographicHash &output)
{
    process.write(bytes);
    while (process.bytesToWrite() > 0) {
        ASSERT_TRUE(process.waitForBytesWritten(kLimitMs)) << process.readAllStandardError().constData();
        output.addData(process.readAllStandardOutput());
    }
}

} // namespace

TEST(ShortenProgram, NamesCannotGiveATerminalOrders)
{
    const TestFolder folder;
    const QString path = folder.write(u"a\x1b[2J\u009b\u202E.shn"_s, "no such file");
    const QByteArray shown = folder.path(u"a\\x1B[2J\\u{009B}\\u{202E}.shn"_s).toUtf8();
    const ProgramResult result = runProgram(shorten(), {u"-x"_s, path, u"-"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains(shown)) << result.errors.constData();
    EXPECT_FALSE(result.errors.contains('\x1b'));
}

TEST(ShortenProgram, ReadsAPipeToItsEnd)
{
    // The writer of a closed one would be ended by it.
    const TestFolder folder;
    const QByteArray stream = runProgram(shorten(), {}, asArray(Wave{.frames = 5000}.file())).output;
    const QString path = folder.write(u"x.shn"_s, stream + QByteArray(1'000'000, 't'));
    EXPECT_EQ(runShell(u"cat \"$1\" | \"$0\" -x - /dev/null; echo ${PIPESTATUS[@]}"_s, {path}).output, "0 0\n");
}

TEST(ShortenProgram, RefusesAFileThatShrinksWhileItIsRead)
{
    // It waits in the named pipe, with less than half of the sound read.
    const TestFolder folder;
    const QByteArray wave = asArray(Wave{.frames = 1'000'000}.file());
    const ProgramResult result = runShell(u"mkfifo \"$2\"; \"$0\" \"$1\" \"$2\" & exec 3< \"$2\"; head -c 1 <&3 > $3; "
                                          "truncate -s 3000000 \"$1\"; cat <&3 >> $3; wait $!"_s,
                                          {folder.write(u"in.wav"_s, wave), folder.path(u"pipe"_s), u"/dev/null"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors,
              "shorten: cannot read " + folder.path(u"in.wav"_s).toUtf8() + ": it changed while it was read\n");
}

TEST(ShortenProgram, ReadsAndWritesFilesAndStreams)
{
    const TestFolder folder;
    const QByteArray wave = asArray(Wave{.frames = 30000}.file(chunk("LIST", 33), chunk("id3 ", 11, -1)));
    const QString in = folder.write(u"in.wav"_s, wave);
    const QString named = folder.path(u"named.shn"_s);
    expectSuccess(runProgram(shorten(), {in, named}));
    const QString fromStream = folder.path(u"stream.shn"_s);
    expectSuccess(runProgram(shorten(), {u"-"_s, fromStream}, wave));
    EXPECT_EQ(folder.read(u"named.shn"_s), folder.read(u"stream.shn"_s));
    const ProgramResult toStream = runProgram(shorten(), {in, u"-"_s});
    expectSuccess(toStream);
    EXPECT_EQ(runProgram(shorten(), {}, wave).output, toStream.output);

    const QString out = folder.path(u"out.wav"_s);
    expectSuccess(runProgram(shorten(), {u"-x"_s, named, out}));
    EXPECT_TRUE(folder.read(u"out.wav"_s) == wave);
    for (const QStringList &arguments : {QStringList{u"-x"_s, named, u"-"_s}, QStringList{u"-x"_s, named}}) {
        const ProgramResult restored = runProgram(shorten(), arguments);
        expectSuccess(restored);
        EXPECT_TRUE(restored.output == wave);
    }
    const ProgramResult restored = runProgram(shorten(), {u"-x"_s}, toStream.output);
    expectSuccess(restored);
    EXPECT_TRUE(restored.output == wave);
}

TEST(ShortenProgram, RestoresHeadersWithASubformat)
{
    const TestFolder folder;
    for (const int channels : {1, 2, 6, 8}) {
        const QByteArray wave =
            nurv::test::wavBytes({.channels = channels, .frames = 5000, .extensible = true}, {}, "LIST\4\0\0\0text");
        ASSERT_EQ(wave.mid(20, 2), QByteArray::fromHex("feff"));
        const ProgramResult made = runProgram(shorten(), {}, wave);
        expectSuccess(made);
        EXPECT_LT(made.output.size(), wave.size());
        EXPECT_TRUE(runProgram(shorten(), {u"-x"_s}, made.output).output == wave) << channels;
    }
}

TEST(ShortenProgram, AppendsASeekTableToNamedFilesOnly)
{
    const TestFolder folder;
    const QString in = folder.write(u"in.wav"_s, asArray(Wave{.frames = 30000}.file()));
    const QString surround = folder.write(u"3.wav"_s, asArray(Wave{.frames = 30000, .channels = 3}.file()));
    const auto endsWithTable = [&](const QStringList &arguments) {
        expectSuccess(runProgram(shorten(), arguments + QStringList{folder.path(u"out.shn"_s)}));
        return folder.read(u"out.shn"_s).endsWith("SHNAMPSK");
    };
    EXPECT_TRUE(endsWithTable({in}));
    EXPECT_TRUE(endsWithTable({u"-v3"_s, in}));
    EXPECT_FALSE(endsWithTable({u"-v2"_s, in}));
    EXPECT_FALSE(endsWithTable({u"-m8"_s, in}));
    EXPECT_FALSE(endsWithTable({surround}));
    const ProgramResult plain = runProgram(shorten(), {in});
    EXPECT_FALSE(plain.output.endsWith("SHNAMPSK"));
    // The table is all that differs.
    EXPECT_TRUE(endsWithTable({in}));
    EXPECT_TRUE(folder.read(u"out.shn"_s).startsWith(plain.output));
}

TEST(ShortenProgram, RefusesWhatShortenCannotHoldAndLeavesTheOutputAlone)
{
    const TestFolder folder;
    const QString in = nurv::test::writeWav(folder.path(u"in.wav"_s), {.bits = 24, .seconds = 0.1});
    const QString former = folder.write(u"former.shn"_s, "former");
    const ProgramResult result = runProgram(shorten(), {in, former});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "shorten: " + in.toUtf8() + ": Shorten holds samples of 8 or 16 bits, not of 24\n");
    EXPECT_EQ(folder.read(u"former.shn"_s), "former");
    EXPECT_EQ(runProgram(shorten(), {in, folder.path(u"new.shn"_s)}).exitStatus, 1);
    EXPECT_FALSE(folder.exists(u"new.shn"_s));
}

TEST(ShortenProgram, FailsForDamagedFilesAndLeavesNoOutput)
{
    const TestFolder folder;
    const QByteArray stream = asArray(encoded(Wave{.frames = 9000}.file()));
    QByteArray flipped = stream;
    flipped[6] = static_cast<char>(~flipped[6]);
    for (const QByteArray &damaged : {QByteArray(), QByteArray("no sound"), stream.left(5000), flipped}) {
        const QString in = folder.write(u"in.shn"_s, damaged);
        const ProgramResult result = runProgram(shorten(), {u"-x"_s, in, folder.path(u"out.wav"_s)});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors.toStdString(), testing::StartsWith("shorten: " + in.toStdString() + ": "));
        EXPECT_EQ(folder.list(), QStringList{u"in.shn"_s});
    }
    // A stream gets what could be restored: it may be the only copy.
    const ProgramResult rescued = runProgram(shorten(), {u"-x"_s}, stream.left(5000));
    EXPECT_EQ(rescued.exitStatus, 1);
    EXPECT_EQ(rescued.errors, "shorten: standard input: the Shorten stream is cut short\n");
    EXPECT_GT(rescued.output.size(), 5000);
    EXPECT_TRUE(asArray(Wave{.frames = 9000}.file()).startsWith(rescued.output));
}

TEST(ShortenProgram, RefusesToOverwriteItsInput)
{
    const TestFolder folder;
    const QByteArray wave = asArray(Wave{}.file());
    const QString in = folder.write(u"in.wav"_s, wave);
    const QString link = folder.makeLink(u"link.wav"_s, in);
    for (const QString &out : {in, link}) {
        EXPECT_EQ(runProgram(shorten(), {in, out}).exitStatus, 1);
        EXPECT_EQ(folder.read(u"in.wav"_s), wave);
    }
}

TEST(ShortenProgram, NoticesAFullDisk)
{
    const TestFolder folder;
    const QString wave = folder.write(u"in.wav"_s, asArray(Wave{}.file()));
    const QString stream = folder.write(u"in.shn"_s, asArray(encoded(Wave{}.file())));
    for (const QStringList &arguments : {QStringList{wave}, QStringList{u"-x"_s, stream}}) {
        const ProgramResult result = runProgram(shorten(), arguments + QStringList{u"/dev/full"_s});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors.toStdString(), HasSubstr("/dev/full"));
    }
}

TEST(ShortenProgram, EndsQuietlyWhenItsReaderHasSeenEnough)
{
    const TestFolder folder;
    const Wave wave{.frames = 400'000};
    const QString in = folder.write(u"in.shn"_s, asArray(encoded(wave.file())));
    for (const QString &line : {u"\"$0\" -x \"$1\" - | head -c 44; exit ${PIPESTATUS[0]}"_s,
                                u"trap '' PIPE; \"$0\" -x \"$1\" - | head -c 44; exit ${PIPESTATUS[0]}"_s}) {
        const ProgramResult result = runShell(line, {in});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.output, asArray(wave.file()).left(44));
        EXPECT_EQ(result.errors, "");
    }
}

TEST(ShortenProgram, LeavesNothingBehindAfterASignal)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        const TestFolder folder;
        QProcess process;
        process.start(shorten(), {u"-"_s, folder.write(u"out.shn"_s, "former")});
        process.write(asArray(Wave{.frames = 200'000}.file()).chopped(1000));
        EXPECT_TRUE(nurv::test::waitUntil([&] { return process.bytesToWrite() == 0; }));
        ::kill(static_cast<pid_t>(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished(kLimitMs));
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(folder.list(), QStringList{u"out.shn"_s}) << signal;
        EXPECT_EQ(folder.read(u"out.shn"_s), "former");
    }
}

TEST(ShortenProgram, NamesWrongArgumentsAndWhereHelpIs)
{
    const ProgramResult wrong = runProgram(shorten(), {u"-q"_s, u"3"_s, u"in"_s});
    EXPECT_EQ(wrong.exitStatus, 1);
    EXPECT_EQ(wrong.output, "");
    EXPECT_EQ(wrong.errors,
              "shorten: the option -q is not offered: lossy compression is not supported\nTry 'shorten --help'.\n");
    const ProgramResult help = runProgram(shorten(), {u"--help"_s});
    expectSuccess(help);
    EXPECT_THAT(help.output.toStdString(), testing::StartsWith("Usage: shorten "));
    EXPECT_EQ(runProgram(shorten(), {u"--version"_s}).output, "shorten (Nurv Audio Workbench) " NURV_VERSION "\n");
}

TEST(ShortenProgram, WritesNoSoundToATerminal)
{
    const TestFolder folder;
    folder.write(u"in.wav"_s, asArray(Wave{}.file()));
    const QString line = u"cd \"$1\" && script -qec \"$0 in.wav\" /dev/null"_s;
    const ProgramResult result = runShell(line, {folder.path()});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "shorten: the output is a terminal, which shows no sound\r\n"
                             "Try 'shorten --help'.\r\n");
    EXPECT_EQ(folder.list(), QStringList{u"in.wav"_s});
}

TEST(ShortenProgram, RestoresTenMinutesWithTheMemoryOfTenSeconds)
{
    const Wave tenSeconds{.frames = 441'000};
    const QByteArray data = asArray(tenSeconds.data());
    constexpr int kTimes = 60;
    QByteArray header = asArray(tenSeconds.header({}, static_cast<size_t>(data.size()) * kTimes, 0));
    QCryptographicHash original(QCryptographicHash::Md5);
    original.addData(header);

    const TestFolder folder;
    QCryptographicHash nothing(QCryptographicHash::Md5);
    QProcess encoder;
    encoder.start(shorten(), {u"-"_s, folder.path(u"long.shn"_s)});
    feed(encoder, header, nothing);
    int early = 0;
    for (int i = 0; i < kTimes; ++i) {
        original.addData(data);
        feed(encoder, data, nothing);
        if (i == 0)
            early = peakMemory(encoder);
    }
    EXPECT_LT(peakMemory(encoder), early + 2048);
    encoder.closeWriteChannel();
    ASSERT_TRUE(encoder.waitForFinished(kLimitMs));
    EXPECT_EQ(encoder.exitCode(), 0);

    const QByteArray stream = folder.read(u"long.shn"_s);
    EXPECT_TRUE(stream.endsWith("SHNAMPSK"));
    QCryptographicHash restored(QCryptographicHash::Md5);
    QProcess decoder;
    decoder.start(shorten(), {u"-x"_s});
    const qsizetype piece = stream.size() / kTimes;
    feed(decoder, stream.left(piece), restored);
    early = peakMemory(decoder);
    // The last buffer of the decoder is held back, so that it lives to be asked.
    feed(decoder, stream.mid(piece).chopped(200'000), restored);
    EXPECT_LT(peakMemory(decoder), early + 2048);
    feed(decoder, stream.right(200'000), restored);
    decoder.closeWriteChannel();
    ASSERT_TRUE(decoder.waitForFinished(kLimitMs));
    EXPECT_EQ(decoder.exitCode(), 0);
    restored.addData(decoder.readAllStandardOutput());
    EXPECT_EQ(restored.result(), original.result());
}
