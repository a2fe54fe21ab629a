// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ApeSounds.h"
#include "RunMac.h"
#include "support/AudioFixtures.h"
#include "support/WaitUntil.h"

#include <QProcess>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

QByteArray wav()
{
    static const QByteArray file = wavOf(Sound::Music, {}, 100000);
    return file;
}

QByteArray ape()
{
    static const QByteArray file = encoded(wav(), ApeLevel::Normal);
    return file;
}

/// With another size in its data chunk.
QByteArray withDeclaredSize(QByteArray file, quint32 size)
{
    for (int i = 0; i < 4; ++i)
        file[40 + i] = static_cast<char>(size >> (8 * i));
    return file;
}

/// What the program wrote, with times and percentages as 0 and repeated lines as one.
std::string withoutTimes(const QByteArray &errors)
{
    QString text = QString::fromUtf8(errors);
    text.replace(QRegularExpression(u"[0-9]+\\.[0-9]"_s), u"0"_s);
    text.replace(QRegularExpression(u"(Progress: [^\r]*\r)+"_s), u"\\1"_s);
    return text.toStdString();
}

TEST(MacProgram, NamesCannotGiveATerminalOrders)
{
    const TestFolder folder;
    const QString path = folder.write(u"a\x1b[2J\u009b\u202E.ape"_s, "no such file");
    const QByteArray shown = folder.path(u"a\\x1B[2J\\u{009B}\\u{202E}.ape"_s).toUtf8();
    const ProgramResult result = runMac({path, u"-v"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.startsWith("mac: " + shown)) << result.errors.constData();
    EXPECT_FALSE(result.errors.contains('\x1b'));
}

TEST(MacProgram, EncodesDecodesAndVerifies)
{
    const TestFolder folder;
    const QString wavPath = folder.write(u"a.wav"_s, wav());
    const QString apePath = folder.path(u"a.ape"_s);
    const std::string progress = "...\nProgress: 0% (0 seconds remaining, 0 seconds total)          \r\nSuccess...\n";
    const ProgramResult encode = runMac({wavPath, apePath, u"-c2000"_s});
    EXPECT_EQ(encode.exitStatus, 0);
    EXPECT_EQ(encode.output, "");
    EXPECT_EQ(withoutTimes(encode.errors), "Compressing" + progress);
    EXPECT_TRUE(isSame(folder.read(u"a.ape"_s), ape()));
    const ProgramResult decode = runMac({apePath, folder.path(u"b.wav"_s), u"-d"_s});
    EXPECT_EQ(decode.exitStatus, 0);
    EXPECT_EQ(decode.output, "");
    EXPECT_EQ(withoutTimes(decode.errors), "Decompressing" + progress);
    EXPECT_TRUE(isSame(folder.read(u"b.wav"_s), wav()));
    const ProgramResult verify = runMac({apePath, u"-v"_s});
    EXPECT_EQ(verify.exitStatus, 0);
    EXPECT_EQ(verify.output, "");
    EXPECT_EQ(withoutTimes(verify.errors), "Verifying" + progress);
    EXPECT_EQ(folder.list(), (QStringList{u"a.ape"_s, u"a.wav"_s, u"b.wav"_s}));
}

TEST(MacProgram, WritesEveryProgressRecordCompletelyUpToTheLast)
{
    const TestFolder folder;
    const QString wavPath = folder.write(u"a.wav"_s, wavOf(Sound::Music, {}, 44100 * 10));
    const ProgramResult result = runMac({wavPath, folder.path(u"a.ape"_s), u"-c5000"_s});
    const QRegularExpression record(
        u"^Progress: ([0-9]+\\.[0-9])% \\([0-9]+\\.[0-9] seconds remaining, [0-9]+\\.[0-9] seconds total\\) {10}$"_s);
    QStringList records = QString::fromUtf8(result.errors).split(u'\n').value(1).split(u'\r', Qt::SkipEmptyParts);
    ASSERT_GE(records.size(), 2);
    double former = 0;
    for (const QString &text : records) {
        const QRegularExpressionMatch match = record.match(text);
        ASSERT_TRUE(match.hasMatch()) << text.toStdString();
        EXPECT_GE(match.captured(1).toDouble(), former);
        former = match.captured(1).toDouble();
    }
    EXPECT_EQ(former, 100.0);
}

TEST(MacProgram, IsQuietAboutPipes)
{
    const TestFolder folder;
    const QString apePath = folder.path(u"a.ape"_s);
    const ProgramResult encode = runMac({u"-"_s, apePath, u"-c2000"_s}, wav());
    EXPECT_EQ(encode.exitStatus, 0);
    EXPECT_EQ(encode.errors, "");
    EXPECT_TRUE(isSame(folder.read(u"a.ape"_s), ape()));
    const ProgramResult decode = runMac({apePath, u"-"_s, u"-d"_s});
    EXPECT_EQ(decode.exitStatus, 0);
    EXPECT_EQ(decode.errors, "");
    EXPECT_TRUE(isSame(decode.output, wav()));
    // Also where both ends are pipes.
    EXPECT_TRUE(isSame(runMac({u"-"_s, u"-"_s, u"-c2000"_s}, wav()).output, ape()));
    EXPECT_TRUE(isSame(runMac({u"-"_s, u"-"_s, u"-d"_s}, ape()).output, wav()));
    EXPECT_EQ(runMac({u"-"_s, u"-v"_s}, ape()).exitStatus, 0);
}

TEST(MacProgram, MakesAHeaderForPipesThatDoNotKnowTheirLength)
{
    for (const quint32 size : {0U, 0xFFFFFFFFU, 0x7FFFF000U}) {
        SCOPED_TRACE(size);
        const TestFolder folder;
        const ProgramResult encode =
            runMac({u"-"_s, folder.path(u"a.ape"_s), u"-c2000"_s}, withDeclaredSize(wav(), size) + 'x');
        ASSERT_EQ(encode.exitStatus, 0) << encode.errors.constData();
        EXPECT_EQ(folder.read(u"a.ape"_s).size(), ape().size() - 44);
        EXPECT_EQ(folder.list(), QStringList{u"a.ape"_s});
        EXPECT_TRUE(isSame(runMac({folder.path(u"a.ape"_s), u"-"_s, u"-d"_s}).output, wav()));
        EXPECT_TRUE(sameSound(folder.path(u"a.ape"_s), folder.write(u"a.wav"_s, wav())));
    }
    // With its pad byte.
    const QByteArray odd = wavOf(Sound::Music, {.bits = 8, .channels = 1}, 1001);
    const QByteArray encoded = runMac({u"-"_s, u"-"_s, u"-c1000"_s}, withDeclaredSize(odd, 0)).output;
    QByteArray expected = odd + '\0';
    expected[4] = static_cast<char>(expected[4] + 1);
    EXPECT_TRUE(isSame(runMac({u"-"_s, u"-"_s, u"-d"_s}, encoded).output, expected));
}

TEST(MacProgram, KeepsWhatAPipeAnnouncesAndDoesNotSend)
{
    const TestFolder folder;
    const QByteArray part = wav().first(200'001);
    ASSERT_EQ(runMac({u"-"_s, folder.path(u"a.ape"_s), u"-c1000"_s}, part).exitStatus, 0);
    EXPECT_TRUE(isSame(runMac({folder.path(u"a.ape"_s), u"-"_s, u"-d"_s}).output, part));
    EXPECT_EQ(runMac({folder.path(u"a.ape"_s), u"-v"_s}).exitStatus, 0);
}

TEST(MacProgram, ReadsARecordingThatWasNotFinished)
{
    const TestFolder folder;
    QByteArray unfinished = withDeclaredSize(wav(), 0);
    for (const char size : {'\0', '\xFF'}) {
        const QString path = folder.write(u"a.wav"_s, unfinished.replace(4, 4, QByteArray(4, size)));
        ASSERT_EQ(runMac({path, folder.path(u"a.ape"_s), u"-c2000"_s}).exitStatus, 0);
        EXPECT_TRUE(isSame(runMac({folder.path(u"a.ape"_s), u"-"_s, u"-d"_s}).output, wav()));
    }
}

TEST(MacProgram, ReportsFailuresByTheNumberThatItsCallersLookFor)
{
    const TestFolder folder;
    const auto failureOf = [&](const QStringList &arguments) {
        const ProgramResult result = runMac(arguments);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_FALSE(folder.exists(u"out"_s));
        return QString::fromUtf8(result.errors).replace(folder.path() + u'/', QString()).toStdString();
    };
    const QString out = folder.path(u"out"_s);
    EXPECT_EQ(failureOf({folder.path(u"none"_s), out, u"-d"_s}),
              "mac: cannot read none: No such file or directory\nError: 1000\n");
    EXPECT_EQ(failureOf({folder.write(u"text"_s, "no sound"), out, u"-d"_s}),
              "mac: text: this is no Monkey's Audio file\nError: 1002\n");
    EXPECT_EQ(failureOf({folder.write(u"a.wav"_s, wav()), folder.path(u"no/out"_s), u"-c1000"_s}),
              "mac: cannot write no/out: No such file or directory\nError: 1001\n");
    EXPECT_EQ(failureOf({writeWav(folder.path(u"32.wav"_s), {.bits = 32}), out, u"-c1000"_s}),
              "mac: 32.wav: only 8, 16 and 24 bits per sample are supported\nError: 1005\n");
    EXPECT_EQ(failureOf({folder.write(u"short.ape"_s, ape().first(1000)), u"-v"_s}),
              "mac: short.ape: the file ends too early\nError: 1000\n");
    EXPECT_EQ(failureOf({folder.path(u"a.wav"_s), folder.path(u"a.wav"_s), u"-c1000"_s}),
              "mac: the output is the same file as the input: a.wav\nTry 'mac --help'.\nError: 1002\n");
}

TEST(MacProgram, TellsADamagedFrameBehindItsProgress)
{
    const TestFolder folder;
    QByteArray damaged = ape();
    damaged[damaged.size() / 2] = static_cast<char>(damaged[damaged.size() / 2] ^ 8);
    const QString path = folder.write(u"a.ape"_s, damaged);
    folder.write(u"former.wav"_s, "former");
    for (const QStringList &arguments : {QStringList{path, u"-v"_s}, {path, folder.path(u"former.wav"_s), u"-d"_s}}) {
        const ProgramResult result = runMac(arguments);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors.toStdString(),
                    ::testing::MatchesRegex("[DV][a-z]+\\.\\.\\.\n(Progress: [^\r\n]*\r)+\nmac: [^\n]*a\\.ape: frame 1 "
                                            "of [0-9]+: its [^\n]*\nError: 10(09|10)\n"));
    }
    EXPECT_EQ(folder.read(u"former.wav"_s), "former");
    EXPECT_EQ(folder.list(), (QStringList{u"a.ape"_s, u"former.wav"_s}));
}

TEST(MacProgram, SaysWhatIsWrongWithItsArguments)
{
    const auto complaint = [](const QStringList &arguments) {
        const ProgramResult result = runMac(arguments);
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_THAT(result.errors.toStdString(), ::testing::EndsWith("\nTry 'mac --help'.\nError: 1002\n"));
        return result.errors.left(result.errors.indexOf('\n')).toStdString();
    };
    EXPECT_EQ(complaint({}), "mac: one of -cLEVEL, -d and -v is missing");
    EXPECT_EQ(complaint({u"a"_s, u"b"_s}), "mac: one of -cLEVEL, -d and -v is missing");
    EXPECT_EQ(complaint({u"a"_s, u"b"_s, u"-c2500"_s}),
              "mac: there is no level -c2500, only -c1000, -c2000, -c3000, -c4000 and -c5000");
    EXPECT_EQ(complaint({u"a"_s, u"b"_s, u"-x"_s}), "mac: unknown option -x");
    EXPECT_EQ(complaint({u"a"_s, u"-d"_s}), "mac: the output file is missing");
    EXPECT_EQ(complaint({u"-v"_s}), "mac: the input file is missing");
    EXPECT_EQ(complaint({u"a"_s, u"b"_s, u"-v"_s}), "mac: unexpected argument b");
    EXPECT_EQ(complaint({u"a"_s, u"b"_s, u"-d"_s, u"-v"_s}), "mac: -d and -v cannot be given together");
}

TEST(MacProgram, TellsAboutItself)
{
    EXPECT_EQ(runMac({u"--version"_s}).output, "mac (Nurv Audio Workbench) " NURV_VERSION "\n");
    const ProgramResult help = runMac({u"--help"_s});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_THAT(help.output.toStdString(), StartsWith("Usage: mac IN.wav OUT.ape -cLEVEL"));
}

TEST(MacProgram, EndsQuietlyWhenItsReaderGoesAway)
{
    const TestFolder folder;
    const QByteArray music = wavOf(Sound::Music, {}, 44100 * 10);
    const QString path = folder.write(u"x.ape"_s, encoded(music, ApeLevel::Fast));
    // Also where the signal is ignored.
    for (const QString &trap : {u""_s, u"trap '' PIPE; "_s}) {
        const ProgramResult result =
            runShell(trap + u"\"$0\" \"$1\" - -d 2> \"$2\" | head -c 44 > \"$3\"; echo ${PIPESTATUS[0]}"_s,
                     {path, folder.path(u"errors"_s), folder.path(u"head"_s)});
        EXPECT_EQ(result.output, "1\n");
        EXPECT_TRUE(isSame(folder.read(u"head"_s), music.first(44)));
        EXPECT_EQ(folder.read(u"errors"_s), "");
    }
}

TEST(MacProgram, DecodesNoFrameForAReaderThatWentAway)
{
    // One frame of 25 seconds: the times of the processor tell how much of it was decoded.
    const TestFolder folder;
    const QString path = folder.write(u"x.ape"_s, encoded(wavOf(Sound::Music, {}, 44100 * 25), ApeLevel::Insane));
    const ProgramResult times =
        runProgram(u"python3"_s, {u"-c"_s,
                                  u"import os,subprocess,sys\n"
                                  "def seconds(child):\n"
                                  "    _, status, usage = os.wait4(child.pid, 0)\n"
                                  "    return usage.ru_utime + usage.ru_stime\n"
                                  "command = sys.argv[1:] + ['-', '-d']\n"
                                  "whole = seconds(subprocess.Popen(command, stdout=subprocess.DEVNULL))\n"
                                  "child = subprocess.Popen(command, stdout=subprocess.PIPE)\n"
                                  "child.stdout.read(44)\n"
                                  "child.stdout.close()\n"
                                  "header = seconds(child)\n"
                                  "print('little' if header < whole / 2 else f'{header} of {whole} s')\n"_s,
                                  mac(), path});
    EXPECT_EQ(times.output, "little\n") << times.errors.constData();
}

TEST(MacProgram, WritesTheHeaderBeforeItHasTheFirstFrame)
{
    QProcess process;
    process.start(mac(), {u"-"_s, u"-"_s, u"-d"_s});
    ASSERT_TRUE(process.waitForStarted());
    process.write(ape().first(2000)); // much less than a frame
    QByteArray output;
    EXPECT_TRUE(waitUntil([&] { return (output += process.readAllStandardOutput()).size() >= 44; }));
    EXPECT_EQ(output, wav().first(44));
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("Error: 1000"));
}

TEST(MacProgram, ReadsAPipeToItsEnd)
{
    // The writer of a closed one would be ended by it.
    const TestFolder folder;
    const QString path = folder.write(u"x.ape"_s, ape() + QByteArray(1'000'000, 't'));
    for (const QString &arguments : {u"- -v"_s, u"- /dev/null -d"_s})
        EXPECT_EQ(runShell(u"cat \"$1\" | \"$0\" %1; echo ${PIPESTATUS[@]}"_s.arg(arguments), {path}).output, "0 0\n");
}

TEST(MacProgram, TellsAFullDisk)
{
    const TestFolder folder;
    const ProgramResult result = runMac({folder.write(u"x.ape"_s, ape()), u"/dev/full"_s, u"-d"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("cannot write /dev/full: No space left on device\nError: 1001"));
}

/// Sends the signal while the program waits for the rest of its input.
void expectFormerLeft(const QStringList &arguments, const QByteArray &input, const TestFolder &folder, int signal)
{
    const QString output = folder.write(u"x"_s, "former");
    QProcess process;
    process.start(mac(), QStringList{u"-"_s, output} + arguments);
    ASSERT_TRUE(process.waitForStarted());
    process.write(input.first(input.size() / 2));
    ASSERT_TRUE(waitUntil([&] { return process.bytesToWrite() == 0; }));
    ::kill(static_cast<pid_t>(process.processId()), signal);
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(folder.list(), QStringList{u"x"_s});
    EXPECT_EQ(folder.read(u"x"_s), "former");
}

TEST(MacProgram, LeavesTheFormerFileWhenItIsEndedBySignals)
{
    const TestFolder folder;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        expectFormerLeft({u"-c1000"_s}, wav(), folder, signal);
        expectFormerLeft({u"-d"_s}, ape(), folder, signal);
    }
}

TEST(MacProgram, NeedsNoMoreMemoryForLongFiles)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers take memory of their own";
#endif
    // Ten minutes, 106 MB of samples.
    const auto peakOf = [](const QStringList &arguments) {
        const ProgramResult result =
            runProgram(u"python3"_s, QStringList{u"-c"_s,
                                                 u"import os,sys\n"
                                                 "child = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ)\n"
                                                 "_, status, usage = os.wait4(child, 0)\n"
                                                 "print(usage.ru_maxrss if status == 0 else 'failed')\n"_s,
                                                 mac()}
                                         + arguments);
        bool isNumber = false;
        const int kibibytes = result.output.trimmed().toInt(&isNumber);
        EXPECT_TRUE(isNumber) << result.output.constData() << result.errors.constData();
        return kibibytes;
    };
    constexpr int kLimit = 24 * 1024;
    const TestFolder folder;
    const QByteArray second = pcmOf(makeSamples(Sound::Music, {}, 44100), {});
    const QByteArray file = wavOf(second.repeated(600), {});
    const QString wavPath = folder.write(u"x.wav"_s, file);
    const QString apePath = folder.path(u"x.ape"_s);
    EXPECT_LT(peakOf({wavPath, apePath, u"-c1000"_s}), kLimit);
    EXPECT_LT(peakOf({apePath, folder.path(u"y.wav"_s), u"-d"_s}), kLimit);
    EXPECT_TRUE(isSame(folder.read(u"y.wav"_s), file));
    EXPECT_LT(peakOf({apePath, u"-v"_s}), kLimit);
    // The length unknown: through a spool file.
    folder.write(u"x.wav"_s, withDeclaredSize(file, 0xFFFFFFFF));
    EXPECT_LT(peakOf({wavPath, folder.path(u"z.ape"_s), u"-c1000"_s}), kLimit);
    EXPECT_EQ(folder.read(u"z.ape"_s).size(), folder.read(u"x.ape"_s).size() - 44);
}

} // namespace

} // namespace nurv::test
