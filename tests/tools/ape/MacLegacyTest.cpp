// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Files of the versions before 3990. No encoder writes them any more, but those that hold
// silence only have no coded samples: they can be made here.
#include "ApeSounds.h"
#include "RunMac.h"
#include "support/AudioFixtures.h"

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::EndsWith;

constexpr size_t kBlocks = 400000; // two frames
constexpr size_t kBlocksPerFrame = 294912;

void appendLittle(QByteArray &bytes, uint64_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i));
}

/// The words of two silent frames: checksum with the mark, special code, five coded bytes.
QByteArray silentFrames()
{
    QByteArray stream;
    for (const size_t blocks : {kBlocksPerFrame, kBlocks - kBlocksPerFrame}) {
        const std::vector<uint8_t> pcm(blocks * 4);
        const uint32_t word = apeFrameCrc(pcm) | kApeSpecialCodeFollows;
        for (int shift = 24; shift >= 0; shift -= 8)
            stream += static_cast<char>(word >> shift);
        stream += QByteArray::fromHex("000000030001000000");
    }
    stream += QByteArray(4 - stream.size() % 4, '\0');
    for (qsizetype i = 0; i < stream.size(); i += 4)
        std::reverse(stream.begin() + i, stream.begin() + i + 4);
    return stream;
}

/// A 16-bit stereo file as it was before there were descriptors.
QByteArray oldFile(unsigned version, bool countsSeekElements)
{
    QByteArray file = "MAC ";
    appendLittle(file, version, 2);
    appendLittle(file, 2000, 2);
    appendLittle(file, 32 + 2 + (countsSeekElements ? 16 : 0), 2); // no WAV header stored; checksums
    appendLittle(file, 2, 2);
    appendLittle(file, 44100, 4);
    appendLittle(file, 0, 8); // stored bytes before and behind
    appendLittle(file, 2, 4);
    appendLittle(file, kBlocks - kBlocksPerFrame, 4);
    if (countsSeekElements)
        appendLittle(file, 2, 4);
    const auto first = static_cast<uint64_t>(file.size()) + 8;
    appendLittle(file, first, 4);
    appendLittle(file, first + 13, 4);
    return file + silentFrames();
}

QByteArray silentWav()
{
    return wavOf(QByteArray(kBlocks * 4, '\0'), {});
}

TEST(MacLegacy, GivesThePlainWavFileOfVersionsWithoutDescriptor)
{
    const TestFolder folder;
    for (const unsigned version : {3950U, 3960U, 3970U}) {
        for (const bool countsSeekElements : {false, true}) {
            SCOPED_TRACE(version);
            const QString path = folder.write(u"a.ape"_s, oldFile(version, countsSeekElements));
            const ProgramResult result = runMac({path, folder.path(u"a.wav"_s), u"-d"_s});
            EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
            EXPECT_THAT(result.errors.toStdString(), EndsWith("\r\nSuccess...\n"));
            EXPECT_TRUE(isSame(folder.read(u"a.wav"_s), silentWav()));
            EXPECT_TRUE(isSame(runMac({path, u"-"_s, u"-d"_s}).output, silentWav()));
            EXPECT_EQ(runMac({path, u"-v"_s}).exitStatus, 0);
        }
    }
}

TEST(MacLegacy, GivesBackTheStoredPartsOfVersion3980)
{
    const TestFolder folder;
    const QByteArray wav = silentWav() + riffChunk("LIST", "INFO");
    QByteArray ape = encoded(wav, ApeLevel::Normal);
    ape.replace(4, 2, QByteArray::fromHex("8c0f"));
    const QString path = folder.write(u"a.ape"_s, ape);
    EXPECT_TRUE(isSame(runMac({path, u"-"_s, u"-d"_s}).output, wav));
    // Behind a tag, too.
    const QByteArray tag = QByteArray::fromHex("49443303000000000014") + QByteArray(20, 't');
    const QString tagged = folder.write(u"tagged.ape"_s, tag + ape);
    EXPECT_TRUE(isSame(runMac({tagged, u"-"_s, u"-d"_s}).output, wav));
}

TEST(MacLegacy, ReportsDamageByNumber)
{
    const TestFolder folder;
    const auto failureOf = [&](const QByteArray &file) {
        const ProgramResult result = runMac({folder.write(u"a.ape"_s, file), folder.path(u"a.wav"_s), u"-d"_s});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_FALSE(folder.exists(u"a.wav"_s));
        return result.errors.mid(result.errors.indexOf("Error: ")).toStdString();
    };
    QByteArray damaged = oldFile(3970, false);
    const qsizetype frames = damaged.size() - silentFrames().size();
    damaged[frames] = static_cast<char>(damaged[frames] ^ 1);
    EXPECT_EQ(failureOf(damaged), "Error: 1009\n");
    EXPECT_EQ(failureOf(oldFile(3970, false).first(frames + 12)), "Error: 1000\n");
    EXPECT_EQ(failureOf(oldFile(3970, false).first(20)), "Error: 1002\n");
}

TEST(MacLegacy, GivesOnlyFramesWhoseChecksumIsRight)
{
    const TestFolder folder;
    QByteArray damaged = oldFile(3970, false);
    // The checksum of the second frame: byte 13 of a stream whose groups of four are reversed.
    const qsizetype checksum = damaged.size() - silentFrames().size() + 14;
    damaged[checksum] = static_cast<char>(damaged[checksum] ^ 1);
    const ProgramResult result = runMac({folder.write(u"a.ape"_s, damaged), u"-"_s, u"-d"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(), EndsWith("Error: 1009\n"));
    EXPECT_TRUE(isSame(result.output, silentWav().first(44 + kBlocksPerFrame * 4))) << result.output.size();
}

TEST(MacLegacy, IsReadByNameOnly)
{
    const ProgramResult result = runMac({u"-"_s, u"-v"_s}, oldFile(3970, false));
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "mac: files of version 3970 are not supported from pipes\nError: 1014\n");
}

TEST(MacLegacy, IsReadWhateverItsNameIs)
{
    const TestFolder folder;
    folder.write(u"standard input"_s, oldFile(3970, false));
    const ProgramResult result = runShell(u"cd \"$1\" && \"$0\" 'standard input' -v"_s, {folder.path()});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
}

TEST(MacLegacy, IsRefusedWhereItsProgramIsMissing)
{
    const TestFolder folder;
    ASSERT_TRUE(QFile::copy(mac(), folder.path(u"mac"_s)));
    const QString path = folder.write(u"a.ape"_s, oldFile(3970, false));
    const ProgramResult result = runProgram(folder.path(u"mac"_s), {path, u"-v"_s});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "mac: files of version 3970 are not supported\nError: 1014\n");
}

} // namespace

} // namespace nurv::test
