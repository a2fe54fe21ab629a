// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// One run per sample rate.
class RoundTripTest : public test::ConvertFixture, public ::testing::WithParamInterface<int> {};

using SurroundAiffTest = test::ConvertFixture;

struct Form {
    QString name;
    test::SoundShape shape;
};

QList<Form> forms(int rate)
{
    QList<Form> result;
    for (const int bits : {16, 24}) {
        for (const int channels : {1, 2, 6}) {
            result.append({u"%1-%2"_s.arg(bits).arg(channels),
                           {.rate = rate,
                            .bits = bits,
                            .channels = channels,
                            .frames = rate / 20 + 1,
                            .extensible = channels > 2}});
        }
    }
    return result;
}

TEST_P(RoundTripTest, KeepsEverySampleOfWavAndAiffThroughFlacAndBack)
{
    QStringList sources;
    for (const Form &form : forms(GetParam())) {
        sources << test::writeWav(folder.path(u"wav-"_s + form.name + u".wav"_s), form.shape);
        sources << test::writeAiff(folder.path(u"aiff-"_s + form.name + u".aiff"_s), form.shape);
    }
    EncodeTab encode(controller);
    run(encode, sources);
    ASSERT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
    QStringList encoded;
    for (const QString &name : out.list())
        encoded.append(out.path(name));
    ASSERT_EQ(encoded.size(), sources.size());

    for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
        DecodeTab decode(controller);
        ASSERT_TRUE(decode.outputFormatMatrix.selectTitle(format));
        decode.sourceDecodeButton.setOn(true);
        runBeside(decode, encoded);
        ASSERT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
    }
    for (const QString &source : sources) {
        const QString base = source.section(u'/', -1).section(u'.', 0, 0);
        for (const QString &extension : {u".flac"_s, u".wav"_s, u".aiff"_s})
            EXPECT_TRUE(test::sameSound(source, out.path(base + extension))) << qPrintable(base + extension);
    }
}

INSTANTIATE_TEST_SUITE_P(SampleRates, RoundTripTest, ::testing::Values(44100, 48000, 88200, 96000, 176400, 192000),
                         ::testing::PrintToStringParamName());

TEST_F(SurroundAiffTest, BecomesFlacByWayOfAWavFile)
{
    set(u"warnOnDelete", false);
    const QString source = test::writeAiff(folder.path(u"six.aiff"_s), {.channels = 6});
    const QByteArray decoded = test::decodedMd5(source);
    EncodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {source});
    EXPECT_EQ(out.list(), QStringList{u"six.flac"_s}) << qPrintable(endedTasks.at(0)->report());
    EXPECT_TRUE(test::decodedMd5(out.path(u"six.flac"_s)) == decoded);
    EXPECT_FALSE(QFile::exists(source)) << "proven";
}

} // namespace
} // namespace nurv
