// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lossy/LossyFixture.h"

#include "tags/AACTagsHelper.h"

#include <QScopeGuard>

#include <ostream>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

constexpr double kSeconds = 0.7;
constexpr int kRate = 44100;

struct Source {
    QString format;
    int bits;
};

void PrintTo(const Source &source, std::ostream *stream)
{
    *stream << qPrintable(source.format) << source.bits;
}

class LossyMatrixTest : public test::LossyFixture, public ::testing::WithParamInterface<Source> {
protected:
    [[nodiscard]] test::SoundShape shape() const { return {.bits = GetParam().bits, .seconds = kSeconds}; }

    void expectSound(const std::shared_ptr<StagedTask> &task, const QString &path, const QString &codec, int rate)
    {
        EXPECT_FALSE(task->error()) << qPrintable(task->report());
        EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
        const QMap<QString, QString> stream = test::ffprobeStream(path);
        EXPECT_EQ(stream[u"codec_name"_s], codec);
        EXPECT_EQ(stream[u"channels"_s], u"2");
        EXPECT_EQ(stream[u"sample_rate"_s], QString::number(rate));
        // MP3 and Opus tell to the sample where their sound ends, MPEG-4 to the frame of 1024.
        const double seconds = decodedSeconds(path, kRate);
        EXPECT_GT(seconds, kSeconds - 0.001);
        EXPECT_LT(seconds, kSeconds + (codec == u"aac" ? 1024.0 / kRate : 0.001));
        const QString reference = test::writeWav(folder.path(u"reference.wav"_s), shape());
        for (std::size_t channel = 0; channel < 2; ++channel)
            EXPECT_NEAR(20.0 * std::log10(levels(path).at(channel) / levels(reference).at(channel)), 0.0, 0.5) << channel;
    }
    void removeOutput(const QString &path) { ASSERT_TRUE(QFile::remove(path)); }
};

TEST_P(LossyMatrixTest, BecomesMp3)
{
    const QString source = makeSource(GetParam().format, shape());
    for (const auto &[type, level] : {std::pair{u"CBR"_s, 192}, std::pair{u"VBR"_s, 2}}) {
        const auto task = runJob(makeMp3(source, type, level));
        const QString mp3 = output(u"mp3"_s);
        expectSound(task, mp3, u"mp3"_s, kRate);
        const QMap<QString, QString> tags = test::ffprobeTags(mp3);
        const bool hasTags = GetParam().format.toLower() == u"flac" || GetParam().format == u"M4A";
        EXPECT_EQ(tags.value(u"title"_s), hasTags ? u"Title"_s : QString());
        EXPECT_EQ(tags.value(u"artist"_s), hasTags ? u"Artist"_s : QString());
        removeOutput(mp3);
    }
}

TEST_P(LossyMatrixTest, BecomesAac)
{
    AACTagsHelper::setQuickTimeVersionProvider([] { return std::optional<std::uint32_t>(0x07650000); });
    const auto none = qScopeGuard([] { AACTagsHelper::setQuickTimeVersionProvider({}); });
    const QString source = makeSource(GetParam().format, shape());
    const std::initializer_list<std::tuple<QString, int, QString>> modes{{u"CBR"_s, 160, u"CBR 160kbps"_s},
                                                                         {u"ABR"_s, 128, u"ABR 128kbps"_s},
                                                                         {u"VBR Constrained"_s, 192, u"VBR Constrained 192kbps"_s},
                                                                         {u"VBR"_s, 88, u"True VBR Quality 88"_s}};
    for (const auto &[type, level, text] : modes) {
        const auto task = runJob(makeAac(source, type, level));
        const QString m4a = output(u"m4a"_s);
        expectSound(task, m4a, u"aac"_s, kRate);
        const QMap<QString, QString> tags = test::ffprobeTags(m4a);
        EXPECT_EQ(tags.value(u"title"_s), GetParam().format.toLower() == u"flac" ? u"Title"_s : QString());
        EXPECT_EQ(tags.value(u"gapless_playback"_s), u"1");
        EXPECT_EQ(tags.value(u"encoder"_s), u"Nurv %1, QuickTime 7.6.5, %2"_s.arg(QStringLiteral(NURV_VERSION), text));
        removeOutput(m4a);
    }
}

TEST_P(LossyMatrixTest, BecomesOpus)
{
    const QString source = makeSource(GetParam().format, shape());
    for (const QString &type : {u"CBR"_s, u"VBR Constrained"_s, u"VBR"_s}) {
        const auto task = runJob(makeOpus(source, type, 128, 20));
        const QString opus = output(u"opus"_s);
        expectSound(task, opus, u"opus"_s, 48000);
        const QMap<QString, QString> tags = test::ffprobeTags(opus);
        const bool hasTexts = GetParam().format.toLower() == u"flac" || GetParam().format == u"M4A";
        EXPECT_EQ(tags.value(u"title"_s), hasTexts ? u"Title"_s : QString());
        EXPECT_EQ(tags.value(u"artist"_s), hasTexts ? u"Artist"_s : QString());
        removeOutput(opus);
    }
}

std::vector<Source> sources()
{
    std::vector<Source> sources;
    for (const int bits : {16, 24}) {
        for (const QString &format : {u"WAV"_s, u"AIFF"_s, u"flac"_s, u"FLAC"_s, u"WV"_s, u"APE"_s, u"TTA"_s, u"M4A"_s})
            sources.push_back({format, bits});
    }
    // It knows 16 bits at most.
    sources.push_back({u"SHN"_s, 16});
    return sources;
}

INSTANTIATE_TEST_SUITE_P(Sources, LossyMatrixTest, ::testing::ValuesIn(sources()));

} // namespace
} // namespace nurv
