// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DeletionCheck.h"

#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <QtEndian>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using namespace test;

struct DeletionCheck : ::testing::Test {
    TestFolder folder;
    QString output = folder.write(u"out.flac"_s, "something");

    [[nodiscard]] std::optional<QString> reasonFor(const QByteArray &source) const
    {
        return reasonToKeepSource(folder.write(u"source.wav"_s, source), output);
    }
    static QByteArray littleEndian(quint32 value)
    {
        QByteArray bytes(4, '\0');
        qToLittleEndian(value, bytes.data());
        return bytes;
    }
};

const SoundShape kSound{.frames = 40000};

TEST_F(DeletionCheck, LetsWholeFilesGo)
{
    EXPECT_EQ(reasonFor(wavBytes(kSound)), std::nullopt);
    EXPECT_EQ(reasonFor(aiffBytes(kSound)), std::nullopt);
    EXPECT_EQ(reasonFor(wavBytes(kSound, riffChunk("LIST", "abc"), riffChunk("id3 ", "odd"))), std::nullopt);
    EXPECT_EQ(reasonFor("fLaC and so on"), std::nullopt) << "no chunks to look at";
}

TEST_F(DeletionCheck, LetsAFileWithALittlePaddingGo)
{
    EXPECT_EQ(reasonFor(wavBytes(kSound) + QByteArray(4096, '\0')), std::nullopt);
}

TEST_F(DeletionCheck, KeepsAFileOfMoreChunksThanAnybodyReads)
{
    EXPECT_EQ(reasonFor(wavBytes(kSound, riffChunk("LIST", "").repeated(9000))), std::nullopt);
    EXPECT_EQ(reasonFor(wavBytes(kSound, riffChunk("LIST", "").repeated(10'000))),
              u"it has more parts than a sound file"_s);
}

TEST_F(DeletionCheck, KeepsATruncatedFile)
{
    for (const QByteArray &whole : {wavBytes(kSound), aiffBytes(kSound)})
        EXPECT_EQ(reasonFor(whole.chopped(1000)), u"it holds less than its header says"_s);
}

TEST_F(DeletionCheck, KeepsAFileWhoseDataSizeHasWrappedAround)
{
    QByteArray wav = wavBytes(kSound);
    wav.replace(wav.indexOf("data") + 4, 4, littleEndian(400));
    EXPECT_EQ(reasonFor(wav), u"it holds more than its header says"_s);
}

TEST_F(DeletionCheck, KeepsAStreamedFileWithoutSizes)
{
    for (const quint32 size : {0U, 0xFFFFFFFFU}) {
        QByteArray wav = wavBytes(kSound);
        wav.replace(wav.indexOf("data") + 4, 4, littleEndian(size));
        EXPECT_NE(reasonFor(wav), std::nullopt);
    }
}

TEST_F(DeletionCheck, ReadsThe64BitSizesOfAnRf64File)
{
    QByteArray wav = wavBytes(kSound);
    const qsizetype data = wav.indexOf("data");
    const quint32 size = qFromLittleEndian<quint32>(wav.constData() + data + 4);
    QByteArray rf64 = "RF64" + littleEndian(0xFFFFFFFF) + "WAVE";
    rf64 += "ds64" + littleEndian(28) + QByteArray(8, '\0') + littleEndian(size) + QByteArray(4, '\0')
            + QByteArray(12, '\0');
    rf64 += wav.mid(12, data + 4 - 12) + littleEndian(0xFFFFFFFF) + wav.mid(data + 8);
    EXPECT_EQ(reasonFor(rf64), std::nullopt);
    EXPECT_EQ(reasonFor(rf64.chopped(10)), u"it holds less than its header says"_s);
}

TEST_F(DeletionCheck, KeepsASourceWithoutOutput)
{
    const QString source = folder.write(u"source.wav"_s, wavBytes(kSound));
    const QString reason = u"there is no output"_s;
    EXPECT_EQ(reasonToKeepSource(source, folder.path(u"missing.flac"_s)), reason);
    EXPECT_EQ(reasonToKeepSource(source, folder.write(u"empty.flac"_s, "")), reason);
    EXPECT_EQ(reasonToKeepSource(source, folder.makeFolder(u"folder.flac"_s)), reason);
}

TEST_F(DeletionCheck, KeepsASourceThatIsItsOutput)
{
    const QString source = folder.write(u"source.flac"_s, "fLaC");
    EXPECT_EQ(reasonToKeepSource(source, source), u"it is the output itself"_s);
    EXPECT_EQ(reasonToKeepSource(source, folder.makeLink(u"link.flac"_s, source)), u"it is the output itself"_s);
}

TEST_F(DeletionCheck, FlushesAFileThatIsThere)
{
    EXPECT_TRUE(flushToDisk(output));
    EXPECT_FALSE(flushToDisk(folder.path(u"missing.flac"_s)));
}

} // namespace
} // namespace nurv
