// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class ForeignMetadataTest : public test::ConvertFixture {
protected:
    void encodeAndDecode(const QString &source, const QString &format, bool keep)
    {
        EncodeTab encode(controller);
        encode.flacKeepForeignMetadataButton.setOn(keep);
        run(encode, {source});
        DecodeTab decode(controller);
        ASSERT_TRUE(decode.outputFormatMatrix.selectTitle(format));
        decode.flacKeepForeignMetadataButton.setOn(keep);
        run(decode, {out.path(source.section(u'/', -1).section(u'.', 0, -2) + u".flac"_s)});
        ASSERT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
    }
    [[nodiscard]] QString wavWithChunks() const
    {
        const QByteArray info = "INFO" + test::riffChunk("INAM", QByteArray("Concert\0", 8))
                                + test::riffChunk("IART", QByteArray("Band\0\0", 6));
        return folder.write(u"a.wav"_s,
                            test::wavBytes({.seconds = 1}, test::riffChunk("LIST", info),
                                           test::riffChunk("odd ", "seven b") + test::riffChunk("id3 ", "ID3\x03xyz")));
    }
};

TEST_F(ForeignMetadataTest, BringsAWavFileBackByteForByteWhenAsked)
{
    encodeAndDecode(wavWithChunks(), u"WAV"_s, true);
    EXPECT_EQ(out.read(u"a.wav"_s), folder.read(u"a.wav"_s));
}

TEST_F(ForeignMetadataTest, DropsForeignChunksOtherwise)
{
    const QString source = wavWithChunks();
    encodeAndDecode(source, u"WAV"_s, false);
    EXPECT_FALSE(out.read(u"a.wav"_s).contains("Concert"));
    EXPECT_TRUE(test::sameSound(source, out.path(u"a.wav"_s)));
}

TEST_F(ForeignMetadataTest, BringsTheChunksOfAnAiffFileBackWhenAsked)
{
    QByteArray aiff = test::aiffBytes({.seconds = 1});
    const QByteArray name("NAME\0\0\0\x08"
                          "Concert!",
                          16);
    aiff.insert(12, name);
    const auto size = static_cast<quint32>(aiff.size() - 8);
    for (int byte = 0; byte < 4; ++byte)
        aiff[4 + byte] = static_cast<char>((size >> (24 - 8 * byte)) & 0xff);
    const QString source = folder.write(u"a.aiff"_s, aiff);
    encodeAndDecode(source, u"AIFF"_s, true);
    EXPECT_TRUE(test::sameSound(source, out.path(u"a.aiff"_s)));
    // The tag that the decoding job adds stands behind everything that was there.
    const QByteArray decoded = out.read(u"a.aiff"_s);
    ASSERT_GE(decoded.size(), aiff.size());
    EXPECT_EQ(decoded.sliced(8, aiff.size() - 8), aiff.sliced(8));
}

} // namespace
} // namespace nurv
