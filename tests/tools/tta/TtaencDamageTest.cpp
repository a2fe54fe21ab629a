// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "RunTtaenc.h"
#include "TtaSounds.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

const TtaHeader kTwelveFrames = shapeOf(2, 16, 11 * 8359 + 100, 8000);

class TtaencDamage : public ::testing::Test {
protected:
    TtaencDamage() : m_file(toQt(ttaOf(makePcm(Sound::Music, kTwelveFrames), kTwelveFrames))) {}

    [[nodiscard]] qsizetype frameStart(int frame) const
    {
        qsizetype start = 22 + 12 * 4 + 4;
        for (int i = 0; i < frame; ++i)
            start += static_cast<uint8_t>(m_file[22 + 4 * i]) | static_cast<uint8_t>(m_file[23 + 4 * i]) << 8;
        return start;
    }
    void damage(qsizetype at) { m_file[at] = static_cast<char>(m_file[at] ^ 0x20); }

    /// The last line of a test of the file, which has to fail.
    [[nodiscard]] std::string lastLine() const
    {
        const QString path = m_folder.write(u"x.tta"_s, m_file);
        const ProgramResult result = runTtaenc({u"-t"_s, path});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_EQ(result.output, "");
        QByteArray line = result.errors.trimmed();
        line = line.mid(line.lastIndexOf('\n') + 1);
        return QString::fromUtf8(line).replace(path, u"x.tta"_s).toStdString();
    }

    TestFolder m_folder;
    QByteArray m_file;
};

TEST_F(TtaencDamage, SaysOkOfAGoodFileAfterCountingToAHundred)
{
    const QString path = m_folder.write(u"x.tta"_s, m_file);
    const ProgramResult result = runTtaenc({u"-t"_s, path});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, "");
    const QByteArray steps = QByteArray(result.errors).replace('\b', "");
    EXPECT_EQ(
        steps,
        " 8% done... 16% done... 25% done... 33% done... 41% done... 50% done... 58% done... 66% done... 75% done..."
        " 83% done... 91% done... 100% done...\n"
            + path.toUtf8() + ": OK\n");
    // Each step takes the one before back.
    EXPECT_THAT(result.errors.toStdString(), HasSubstr(" 8% done..." + std::string(11, '\b') + " 16% done..."));
}

TEST_F(TtaencDamage, NamesTheDamagedFrame)
{
    damage(frameStart(6) + 100);
    EXPECT_EQ(lastLine(), "x.tta: frame 7 of 12 (at 6.27 s) is damaged: its CRC does not match");
}

TEST_F(TtaencDamage, NamesEveryDamagedFrame)
{
    for (const int frame : {2, 4, 5, 6, 11})
        damage(frameStart(frame) + 10);
    EXPECT_EQ(lastLine(), "x.tta: frame 3 of 12 (at 2.09 s) is damaged: its CRC does not match; "
                          "5 frames are not good: 3, 5-7, 12");
}

TEST_F(TtaencDamage, TellsATruncatedFile)
{
    m_file.truncate(frameStart(6) + 100);
    EXPECT_EQ(lastLine(), "x.tta: frame 7 of 12 (at 6.27 s) is missing: the file is truncated; "
                          "6 frames are not good: 7-12");
    m_file.truncate(60);
    EXPECT_EQ(lastLine(), "ttaenc: x.tta: the file is truncated within its seek table");
    m_file.truncate(21);
    EXPECT_EQ(lastLine(), "ttaenc: x.tta: the file is truncated within its header");
    m_file.clear();
    EXPECT_EQ(lastLine(), "ttaenc: x.tta: not a TTA1 file");
}

TEST_F(TtaencDamage, TellsADamagedHeaderAndADamagedSeekTable)
{
    damage(14);
    EXPECT_EQ(lastLine(), "ttaenc: x.tta: the header is damaged: its CRC does not match");
    damage(14);
    damage(30);
    EXPECT_EQ(lastLine(), "ttaenc: x.tta: the seek table is damaged: its CRC does not match");
}

TEST_F(TtaencDamage, LeavesNothingOfAFileThatCannotBeDecoded)
{
    damage(frameStart(6) + 100);
    const QString path = m_folder.write(u"x.tta"_s, m_file);
    m_folder.write(u"former.wav"_s, "former");
    const ProgramResult result = runTtaenc({path, u"-o"_s, m_folder.path(u"former.wav"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.errors.toStdString(),
                EndsWith("\nttaenc: " + path.toStdString()
                         + ": frame 7 of 12 (at 6.27 s) is damaged: its CRC does not match\n"));
    EXPECT_EQ(m_folder.read(u"former.wav"_s), "former");
    EXPECT_EQ(m_folder.list(), (QStringList{u"former.wav"_s, u"x.tta"_s}));
}

TEST_F(TtaencDamage, WritesNoSampleOfADamagedFrameToAPipe)
{
    const QByteArray wav = wavOf(makePcm(Sound::Music, kTwelveFrames), kTwelveFrames);
    damage(frameStart(6) + 100);
    const ProgramResult result = runTtaenc({u"-d"_s, u"-o"_s, u"-"_s, m_folder.write(u"x.tta"_s, m_file)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.output == wav.first(44 + 6 * 8359 * 4));
}

TEST_F(TtaencDamage, IgnoresTagsAndRubbishBehindTheLastFrame)
{
    const QByteArray wav = wavOf(makePcm(Sound::Music, kTwelveFrames), kTwelveFrames);
    const QByteArray id3v2 = QByteArray("ID3\4\0\0\0\0\1\0", 10) + QByteArray(128, 'i');
    const QByteArray apev2 = "APETAGEX" + QByteArray(24, '\0');
    const QByteArray id3v1 = "TAG" + QByteArray(125, 't');
    const QString path = m_folder.write(u"x.tta"_s, id3v2 + m_file + apev2 + id3v1);
    EXPECT_EQ(runTtaenc({u"-t"_s, path}).exitStatus, 0);
    // By its contents, also from a pipe.
    const ProgramResult result = runTtaenc({u"-"_s, u"-o"_s, u"-"_s}, id3v2 + m_file + apev2 + id3v1);
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(result.output == wav);
}

TEST_F(TtaencDamage, RefusesAnEncryptedFile)
{
    // The header of a file with a password: format 2, with its CRC.
    m_file = QByteArray::fromHex("545441310200010010007856000001000000");
    const QString path = m_folder.write(u"crc"_s, m_file);
    const ProgramResult crc =
        runProgram(u"python3"_s, {u"-c"_s,
                                  u"import sys,zlib; sys.stdout.buffer.write("
                                  "zlib.crc32(open(sys.argv[1],'rb').read()).to_bytes(4,'little'))"_s,
                                  path});
    ASSERT_EQ(crc.output.size(), 4);
    m_file += crc.output + QByteArray(40, '\0');
    EXPECT_EQ(lastLine(), "ttaenc: x.tta: the file is encrypted with a password, which is not supported");
}

} // namespace

} // namespace nurv::test
