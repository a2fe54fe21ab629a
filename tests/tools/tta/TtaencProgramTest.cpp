// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RunTtaenc.h"
#include "support/AudioFixtures.h"
#include "support/WaitUntil.h"
#include "TtaSounds.h"

#include <QProcess>

#include <gmock/gmock.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::HasSubstr;

const TtaHeader kShape = shapeOf(2, 16, 30000, 8000);

const std::vector<uint8_t> &pcm()
{
    static const std::vector<uint8_t> samples = makePcm(Sound::Music, kShape);
    return samples;
}

QByteArray wav()
{
    return wavOf(pcm(), kShape);
}

QByteArray tta()
{
    return toQt(ttaOf(pcm(), kShape));
}

/// With another size in its data chunk.
QByteArray withDeclaredSize(QByteArray file, quint32 size)
{
    for (int i = 0; i < 4; ++i)
        file[40 + i] = static_cast<char>(size >> (8 * i));
    return file;
}

TEST(TtaencProgram, NamesCannotGiveATerminalOrders)
{
    const TestFolder folder;
    const QString path = folder.write(u"a\x1b[2J\u009b\u202E.tta"_s, tta());
    const QByteArray shown = folder.path(u"a\\x1B[2J\\u{009B}\\u{202E}.tta"_s).toUtf8();
    EXPECT_TRUE(runTtaenc({u"-t"_s, path}).errors.endsWith(shown + ": OK\n"));
    const ProgramResult failure = runTtaenc({u"-e"_s, path, u"-o"_s, folder.path(u"b.tta"_s)});
    EXPECT_TRUE(failure.errors.startsWith("ttaenc: " + shown)) << failure.errors.constData();
    EXPECT_FALSE(failure.errors.contains('\x1b'));
}

TEST(TtaencProgram, DecidesByTheInputAndTakesOptionsInAnyOrder)
{
    const TestFolder folder;
    const QString wavPath = folder.write(u"a.wav"_s, wav());
    const QString ttaPath = folder.path(u"b.tta"_s);
    const QString back = folder.path(u"c.wav"_s);
    EXPECT_EQ(runTtaenc({wavPath, u"-o"_s, ttaPath}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"b.tta"_s) == tta());
    EXPECT_EQ(runTtaenc({ttaPath, u"-o"_s, back}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"c.wav"_s) == wav());
    EXPECT_TRUE(runTtaenc({u"-d"_s, u"-o"_s, u"-"_s, ttaPath}).output == wav());
    EXPECT_EQ(runTtaenc({u"-e"_s, u"-o"_s, folder.path(u"d.tta"_s), u"-"_s}, wav()).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"d.tta"_s) == tta());
    EXPECT_TRUE(runTtaenc({u"-"_s, u"-o"_s, u"-"_s}, wav()).output == tta());
    EXPECT_TRUE(runTtaenc({u"-"_s}, tta()).output == wav());
}

TEST(TtaencProgram, NamesItsOutputAfterTheInputButReplacesNothingUnasked)
{
    const TestFolder folder;
    const QString wavPath = folder.write(u"a.wav"_s, wav());
    EXPECT_EQ(runTtaenc({wavPath}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"a.tta"_s) == tta());
    const ProgramResult again = runTtaenc({wavPath});
    EXPECT_EQ(again.exitStatus, 1);
    EXPECT_EQ(again.errors, "ttaenc: " + folder.path(u"a.tta"_s).toUtf8()
                                + " is there already; name it with -o to have it replaced\nTry 'ttaenc --help'.\n");
    EXPECT_EQ(runTtaenc({wavPath, u"-o"_s, folder.path(u"a.tta"_s)}).exitStatus, 0);
    folder.remove(u"a.wav"_s);
    EXPECT_EQ(runTtaenc({folder.path(u"a.tta"_s)}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"a.wav"_s) == wav());
}

TEST(TtaencProgram, CountsToAHundredInStepsOfOneWrite)
{
    const TestFolder folder;
    const TtaHeader shape = shapeOf(1, 8, 150 * 1044, 1000);
    const QString wavPath = folder.write(u"a.wav"_s, wavOf(makePcm(Sound::Sweep, shape), shape));
    const QString ttaPath = folder.path(u"a.tta"_s);
    QString expected = u"Percent Progress: 1"_s;
    for (int percent = 2; percent <= 100; ++percent)
        expected += QString(percent <= 10 ? 19 : 20, u'\b') + u"Percent Progress: %1"_s.arg(percent);
    expected += u'\n';
    EXPECT_EQ(QString::fromUtf8(runTtaenc({wavPath, u"-o"_s, ttaPath}).errors), expected);
    EXPECT_EQ(QString::fromUtf8(runTtaenc({ttaPath, u"-o"_s, folder.path(u"b.wav"_s)}).errors), expected);
    EXPECT_EQ(QString::fromUtf8(runTtaenc({u"-d"_s, ttaPath, u"-o"_s, u"-"_s}).errors), expected);
    // How many writes: a datagram socket keeps them apart.
    const ProgramResult writes =
        runProgram(u"python3"_s, {u"-c"_s,
                                  u"import socket,subprocess,sys\n"
                                  "ours, theirs = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)\n"
                                  "ours.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)\n"
                                  "child = subprocess.Popen(sys.argv[1:], stderr=theirs)\n"
                                  "theirs.close()\n"
                                  "count = 0\n"
                                  "while True:\n"
                                  "    text = ours.recv(4096)\n"
                                  "    if not text: break\n"
                                  "    count += text.count(b'Percent Progress: ') == 1\n"
                                  "child.wait()\n"
                                  "print(count)\n"_s,
                                  ttaenc(), ttaPath, u"-o"_s, folder.path(u"b.wav"_s)});
    EXPECT_EQ(writes.output, "100\n") << writes.errors.constData();
}

TEST(TtaencProgram, ShowsNoProgressWhereTheLengthIsUnknown)
{
    const TestFolder folder;
    const auto errorsOf = [&](const QByteArray &input) {
        return runTtaenc({u"-e"_s, u"-o"_s, folder.path(u"x.tta"_s), u"-"_s}, input).errors;
    };
    EXPECT_EQ(errorsOf(withDeclaredSize(wav(), 0xFFFFFFFF)), "");
    EXPECT_EQ(errorsOf(withDeclaredSize(wav(), 0)), "");
    EXPECT_THAT(errorsOf(wav()).toStdString(), ::testing::EndsWith("Percent Progress: 100\n"));
    // What is left of a sample frame counts for nothing.
    const QString odd = folder.write(u"odd.wav"_s, withDeclaredSize(wav(), 40003).first(40047));
    EXPECT_THAT(runTtaenc({odd, u"-o"_s, folder.path(u"odd.tta"_s)}).errors.toStdString(),
                ::testing::EndsWith("Percent Progress: 100\n"));
}

TEST(TtaencProgram, WritesNoSoundToATerminal)
{
    const TestFolder folder;
    const QString path = folder.write(u"in.wav"_s, wav());
    const ProgramResult result = runShell(u"script -qec \"$0 -e -o - '$1'\" /dev/null"_s, {path});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.output, "ttaenc: the output is a terminal, which shows no sound\r\nTry 'ttaenc --help'.\r\n");
}

TEST(TtaencProgram, EncodesPipesWhoseLengthIsUnknownOrWrong)
{
    const TestFolder folder;
    const QByteArray file = wav();
    const auto encoded = [](const QByteArray &input) {
        const ProgramResult result = runTtaenc({u"-e"_s, u"-o"_s, u"-"_s, u"-"_s}, input);
        EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
        return result.output;
    };
    EXPECT_TRUE(encoded(withDeclaredSize(file, 0)) == tta());
    EXPECT_TRUE(encoded(withDeclaredSize(file, 0xFFFFFFFF)) == tta());
    // More than there is; what is left of a sample frame is dropped.
    EXPECT_TRUE(encoded(withDeclaredSize(file, 0x7FFFFFFF) + "abc") == tta());
    // Less than there is.
    const TtaHeader shorter = shapeOf(2, 16, 10000, 8000);
    const std::vector<uint8_t> part(pcm().begin(), pcm().begin() + 40000);
    EXPECT_TRUE(encoded(withDeclaredSize(file, 40000)) == toQt(ttaOf(part, shorter)));
    EXPECT_TRUE(encoded(withDeclaredSize(file, 40003)) == toQt(ttaOf(part, shorter)));
    // The same as files; a recording that was not finished knows no size at all.
    for (const quint32 size : {0U, 0xFFFFFFFFU, 0x7FFFFFFFU}) {
        QByteArray unfinished = withDeclaredSize(file, size);
        unfinished.replace(4, 4, QByteArray(4, '\0'));
        const QString path = folder.write(u"x.wav"_s, unfinished);
        EXPECT_EQ(runTtaenc({path, u"-o"_s, folder.path(u"x.tta"_s)}).exitStatus, 0);
        EXPECT_TRUE(folder.read(u"x.tta"_s) == tta()) << size;
    }
}

TEST(TtaencProgram, TakesTheSoundFromBetweenOtherChunks)
{
    const TestFolder folder;
    // Odd sizes, with pad bytes.
    const QByteArray file = wav();
    const QByteArray before = riffChunk("LIST", "INFO1") + riffChunk("fact", "four");
    const QByteArray after = riffChunk("id3 ", "odd") + riffChunk("LIST", "INFOICMT");
    const QByteArray chunked = file.first(36) + before + file.mid(36) + after;
    const QString path = folder.write(u"x.wav"_s, chunked);
    EXPECT_EQ(runTtaenc({path, u"-o"_s, folder.path(u"x.tta"_s)}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"x.tta"_s) == tta());
    EXPECT_TRUE(runTtaenc({u"-e"_s, u"-"_s, u"-o"_s, u"-"_s}, chunked).output == tta());
}

TEST(TtaencProgram, PadsAnOddNumberOfBytes)
{
    const TtaHeader shape = shapeOf(1, 8, 1001, 8000);
    const QByteArray file = wavOf(makePcm(Sound::Sweep, shape), shape);
    ASSERT_EQ(file.size(), 44 + 1002);
    const QByteArray encoded = runTtaenc({u"-"_s, u"-o"_s, u"-"_s}, file + riffChunk("LIST", "INFO")).output;
    EXPECT_TRUE(encoded == toQt(ttaOf(makePcm(Sound::Sweep, shape), shape)));
    EXPECT_TRUE(runTtaenc({u"-"_s, u"-o"_s, u"-"_s}, encoded).output == file);
}

TEST(TtaencProgram, ReadsExtensibleHeaders)
{
    const TestFolder folder;
    for (const int bits : {16, 24}) {
        const SoundShape shape{.bits = bits, .channels = 6, .seconds = 1.5, .extensible = true};
        const QString path = writeWav(folder.path(u"x.wav"_s), shape);
        const QString encoded = folder.path(u"x.tta"_s);
        const ProgramResult result = runTtaenc({path, u"-o"_s, encoded});
        ASSERT_EQ(result.exitStatus, 0) << result.errors.constData();
        const QByteArray back = runTtaenc({u"-d"_s, encoded, u"-o"_s, u"-"_s}).output;
        EXPECT_EQ(back.mid(20, 2), QByteArray("\1\0", 2));
        EXPECT_TRUE(back.mid(44) == makeSamples(shape));
    }
}

TEST(TtaencProgram, EncodesNoSamples)
{
    const TestFolder folder;
    const QByteArray empty = wavOf({}, kShape);
    const QString path = folder.write(u"x.wav"_s, empty);
    EXPECT_EQ(runTtaenc({path, u"-o"_s, folder.path(u"x.tta"_s)}).exitStatus, 0);
    EXPECT_EQ(folder.read(u"x.tta"_s).size(), 26);
    EXPECT_EQ(runTtaenc({u"-t"_s, folder.path(u"x.tta"_s)}).exitStatus, 0);
    EXPECT_TRUE(runTtaenc({u"-d"_s, folder.path(u"x.tta"_s), u"-o"_s, u"-"_s}).output == empty);
    EXPECT_TRUE(runTtaenc({u"-e"_s, u"-"_s, u"-o"_s, u"-"_s}, empty).output == folder.read(u"x.tta"_s));
}

TEST(TtaencProgram, TakesTheChunksBehindAnEmptyDataChunkForNoSound)
{
    const TestFolder folder;
    QByteArray file = wavOf({}, kShape);
    ASSERT_EQ(file.size(), 44);
    file += riffChunk("LIST", "INFOICMT");
    file[4] = static_cast<char>(file.size() - 8);
    const QString path = folder.write(u"x.wav"_s, file);
    EXPECT_EQ(runTtaenc({u"-e"_s, path, u"-o"_s, folder.path(u"x.tta"_s)}).exitStatus, 0);
    EXPECT_EQ(folder.read(u"x.tta"_s).size(), 26);
    EXPECT_TRUE(runTtaenc({u"-d"_s, folder.path(u"x.tta"_s), u"-o"_s, u"-"_s}).output == wavOf({}, kShape));
}

TEST(TtaencProgram, RefusesWhatItCannotEncodeAndSaysWhy)
{
    const TestFolder folder;
    const auto refusalOf = [&](const QString &path) {
        const ProgramResult result = runTtaenc({path, u"-o"_s, folder.path(u"y.tta"_s)});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_FALSE(folder.exists(u"y.tta"_s));
        return QString::fromUtf8(result.errors).replace(path, u"x"_s).toStdString();
    };
    EXPECT_EQ(refusalOf(writeByFfmpeg(folder.path(u"float.wav"_s), {}, {u"-c:a"_s, u"pcm_f32le"_s})),
              "ttaenc: x: floating-point sound is not supported, only integer PCM\n");
    EXPECT_EQ(refusalOf(writeByFfmpeg(folder.path(u"adpcm.wav"_s), {}, {u"-c:a"_s, u"adpcm_ms"_s})),
              "ttaenc: x: WAV format 2 is not supported, only integer PCM\n");
    EXPECT_EQ(refusalOf(writeWav(folder.path(u"32.wav"_s), {.bits = 32})),
              "ttaenc: x: 32 bits per sample are not supported, only 8, 16 and 24\n");
    const TtaHeader seven = shapeOf(7, 16, 100);
    EXPECT_EQ(refusalOf(folder.write(u"7.wav"_s, wavOf(makePcm(Sound::Noise, seven), seven))),
              "ttaenc: x: 7 channels are not supported, only 1 to 6\n");
    EXPECT_EQ(refusalOf(folder.write(u"text"_s, "no sound at all")), "ttaenc: x: neither a WAV nor a TTA1 file\n");
    EXPECT_EQ(refusalOf(folder.path(u"missing"_s)), "ttaenc: cannot read x: No such file or directory\n");
}

TEST(TtaencProgram, RefusesToWriteOverItsInput)
{
    const TestFolder folder;
    const QString path = folder.write(u"x.wav"_s, wav());
    const ProgramResult result = runTtaenc({path, u"-o"_s, path});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("the output is the same file as the input"));
    EXPECT_TRUE(folder.read(u"x.wav"_s) == wav());
}

TEST(TtaencProgram, EndsQuietlyWhenItsReaderGoesAway)
{
    const TestFolder folder;
    const TtaHeader shape = shapeOf(2, 16, 44100 * 20);
    const QString path = folder.write(u"x.tta"_s, toQt(ttaOf(makePcm(Sound::Noise, shape), shape)));
    const ProgramResult result =
        runShell(u"\"$0\" -d -o - \"$1\" 2> \"$2\" | head -c 44 > \"$3\"; echo ${PIPESTATUS[0]}"_s,
                 {path, folder.path(u"errors"_s), folder.path(u"head"_s)});
    EXPECT_EQ(result.output, "1\n");
    EXPECT_EQ(folder.read(u"head"_s).size(), 44);
    EXPECT_THAT(folder.read(u"errors"_s).toStdString(), ::testing::Not(HasSubstr("ttaenc")));
}

TEST(TtaencProgram, ReadsAPipeToItsEnd)
{
    // The writer of a closed one would be ended by it.
    const TestFolder folder;
    const QString path = folder.write(u"x.tta"_s, tta() + QByteArray(1'000'000, 't'));
    for (const QString &arguments : {u"-t -"_s, u"-d - -o /dev/null"_s})
        EXPECT_EQ(runShell(u"cat \"$1\" | \"$0\" %1 2>&1; echo ${PIPESTATUS[@]} >&2"_s.arg(arguments), {path}).errors,
                  "0 0\n");
    folder.write(u"x.wav"_s, wav() + riffChunk("LIST", QByteArray(1'000'000, 't')));
    EXPECT_EQ(
        runShell(u"cat \"$1\" | \"$0\" -e - -o /dev/null 2>&1; echo ${PIPESTATUS[@]} >&2"_s, {folder.path(u"x.wav"_s)})
            .errors,
        "0 0\n");
}

TEST(TtaencProgram, TellsAFullDisk)
{
    const TestFolder folder;
    const QString path = folder.write(u"x.tta"_s, tta());
    const ProgramResult result = runTtaenc({path, u"-d"_s, u"-o"_s, u"/dev/full"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), HasSubstr("ttaenc: cannot write /dev/full: No space left on device"));
}

TEST(TtaencProgram, EncodesToDevicesAndNamedPipes)
{
    const TestFolder folder;
    const QString path = folder.write(u"x.wav"_s, wav());
    EXPECT_EQ(runTtaenc({u"-e"_s, path, u"-o"_s, u"/dev/null"_s}).exitStatus, 0);
    EXPECT_TRUE(runTtaenc({u"-e"_s, path, u"-o"_s, u"/dev/stdout"_s}).output == tta());
    const QString line = u"mkfifo \"$2\"; cat \"$2\" & \"$0\" -e \"$1\" -o \"$2\" && wait"_s;
    EXPECT_TRUE(runShell(line, {path, folder.path(u"pipe"_s)}).output == tta());
    // What waits does so in the folder for temporary files.
    const ProgramResult failed = runShell(u"TMPDIR=/nowhere \"$0\" -e \"$1\" -o /dev/null"_s, {path});
    EXPECT_THAT(failed.errors.toStdString(), HasSubstr("cannot make a temporary file in /nowhere: "));
}

/// Sends the signal while the program waits for the rest of its input.
void expectFormerLeft(const QString &direction, const QByteArray &input)
{
    const TestFolder folder;
    const QString output = folder.write(u"x"_s, "former");
    QProcess process;
    process.start(ttaenc(), {direction, u"-"_s, u"-o"_s, output});
    ASSERT_TRUE(process.waitForStarted());
    process.write(input.first(input.size() / 2));
    ASSERT_TRUE(waitUntil([&] { return process.bytesToWrite() == 0; }));
    ::kill(static_cast<pid_t>(process.processId()), SIGTERM);
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(folder.list(), QStringList{u"x"_s});
    EXPECT_EQ(folder.read(u"x"_s), "former");
}

TEST(TtaencProgram, LeavesTheFormerFileWhenItIsTerminated)
{
    expectFormerLeft(u"-e"_s, wav());
    expectFormerLeft(u"-d"_s, tta());
}

TEST(TtaencProgram, NeedsNoMoreMemoryForLongFiles)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers take memory of their own";
#endif
    // A third of the samples.
    const auto runWithLittleMemory = [](const QStringList &arguments) {
        return runShell(u"ulimit -v 32768; exec \"$0\" \"$@\""_s, arguments);
    };
    const TestFolder folder;
    const TtaHeader second = shapeOf(2, 16, 44100);
    const std::vector<uint8_t> samples = makePcm(Sound::Noise, second);
    std::vector<uint8_t> all;
    for (int i = 0; i < 600; ++i)
        all.insert(all.end(), samples.begin(), samples.end());
    const QByteArray file = wavOf(all, shapeOf(2, 16, 600 * 44100));
    const QString wavPath = folder.write(u"x.wav"_s, file);
    const QString ttaPath = folder.path(u"x.tta"_s);
    EXPECT_EQ(runWithLittleMemory({wavPath, u"-o"_s, ttaPath}).exitStatus, 0);
    EXPECT_EQ(runWithLittleMemory({ttaPath, u"-o"_s, folder.path(u"y.wav"_s)}).exitStatus, 0);
    EXPECT_TRUE(folder.read(u"y.wav"_s) == file);
    EXPECT_EQ(runWithLittleMemory({u"-t"_s, ttaPath}).exitStatus, 0);
    // The length unknown: through a temporary file.
    folder.write(u"x.wav"_s, withDeclaredSize(file, 0xFFFFFFFF));
    const ProgramResult piped =
        runShell(u"ulimit -v 32768; cat \"$1\" | \"$0\" - -o - | cmp - \"$2\""_s, {wavPath, ttaPath});
    EXPECT_EQ(piped.exitStatus, 0) << piped.output.constData();
}

} // namespace

} // namespace nurv::test
