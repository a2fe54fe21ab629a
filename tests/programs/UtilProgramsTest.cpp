// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/Dvda.h"
#include "programs/Metaflac.h"
#include "programs/Mkisofs.h"
#include "programs/NeededPrograms.h"
#include "programs/Sox.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

TEST(UtilPrograms, GetTheirArgumentsInOrder)
{
    EXPECT_EQ(sox::deEmphasisArguments(u"/in/a b.wav"_s, u"/out/a b-deemph.wav"_s),
              (QStringList{u"-S"_s, u"/in/a b.wav"_s, u"/out/a b-deemph.wav"_s, u"deemph"_s}));
    EXPECT_EQ(dvda::authoringArguments(u"/o/log.txt"_s, u"/o/DVD-AUDIO"_s, {u"/b.wav"_s, u"/a.flac"_s}),
              (QStringList{u"-l"_s, u"/o/log.txt"_s, u"-P0"_s, u"-S"_s, u"-f"_s, u"-o"_s, u"/o/DVD-AUDIO"_s, u"-g"_s,
                           u"/b.wav"_s, u"/a.flac"_s}));
    EXPECT_EQ(mkisofs::imageArguments(u"/o/image.iso"_s, u"/o/DVD-AUDIO"_s),
              (QStringList{u"-o"_s, u"/o/image.iso"_s, u"-dvd-audio"_s, u"/o/DVD-AUDIO"_s}));
    EXPECT_EQ(metaflac::addReplayGainArguments({u"/b.flac"_s, u"/a.flac"_s}),
              (QStringList{u"--add-replay-gain"_s, u"/b.flac"_s, u"/a.flac"_s}));
    EXPECT_EQ(metaflac::removeReplayGainArguments({u"/a.flac"_s}), (QStringList{u"--remove-replay-gain"_s, u"/a.flac"_s}));
    EXPECT_EQ(NeededPrograms::ofRun(u"mkisofs"_s, {}).helpers, QStringList(u"genisoimage"_s));
}

struct BegunCase {
    const char16_t *chunk;
    int sources;
    const char16_t *name; ///< null: nothing
    int progress;
};

class DvdaChunks : public ::testing::TestWithParam<BegunCase> {};

TEST_P(DvdaChunks, TellWhichFileHasBegun)
{
    const BegunCase &row = GetParam();
    const std::optional<dvda::BegunFile> file = dvda::parseAuthoring(QString::fromUtf16(row.chunk), row.sources);
    ASSERT_EQ(file.has_value(), row.name != nullptr);
    if (file) {
        EXPECT_EQ(file->name, QString::fromUtf16(row.name));
        EXPECT_EQ(file->progress, row.progress);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Chunks, DvdaChunks,
    ::testing::Values(
        BegunCase{u"[Nurv]  Processing 00 /m/a b.wav\n", 3, u"a b.wav", 33},
        BegunCase{u"[Nurv]  Processing 02 /m/c.flac\n", 3, u"c.flac", 100},
        BegunCase{u"\b\b[Nurv]  Processing 09 /m/c.flac\n\b", 99, u"c.flac", 10},
        BegunCase{u"[Nurv]  Processing 98 /m/c.flac\n", 99, u"c.flac", 100},
        // Positions count from the start of the chunk, wherever the marker is.
        BegunCase{u"some words [Nurv]  Processing 02 /m/c.flac\n", 3, u"c.flac", 33},
        BegunCase{u"[Nurv]  Processing 00 /m/a.wav\n[Nurv]  Processing 01 /m/b.wav\n", 2, u"b.wav", 50},
        BegunCase{u"[Nurv]  Processing ", 3, u"", 33},
        BegunCase{u"[Nurv]  Processing 1", 3, u"", 66},
        BegunCase{u"[Nurv] Processing 00 /m/a.wav\n", 3, nullptr, 0},
        BegunCase{u"", 3, nullptr, 0}, BegunCase{u"[Nurv]  Processing 00 /m/a.wav\n", 0, nullptr, 0}));

struct ProgressCase {
    const char16_t *chunk;
    double percent; ///< below 0: nothing
};

class MkisofsChunks : public ::testing::TestWithParam<ProgressCase> {};

TEST_P(MkisofsChunks, TellHowFarTheImageIs)
{
    const std::optional<double> percent = mkisofs::parseProgress(QString::fromUtf16(GetParam().chunk));
    ASSERT_EQ(percent.has_value(), GetParam().percent >= 0.0);
    EXPECT_DOUBLE_EQ(percent.value_or(-1.0), GetParam().percent);
}

INSTANTIATE_TEST_SUITE_P(Chunks, MkisofsChunks,
                         ::testing::Values(ProgressCase{u"  0.79% done, estimate finish Mon Nov 23 13:00:00 2026\n", 0.79},
                                           ProgressCase{u" 10.53% done, estimate finish\n", 10.53},
                                           ProgressCase{u"100.00% done, estimate finish\n", 100.0},
                                           ProgressCase{u"\b\b 45.00% done, x", 45.0},
                                           // The first seven characters count, wherever the marker is.
                                           ProgressCase{u"abc 45.00% done, x", 0.0},
                                           ProgressCase{u" 10.53% done, x\n 20.53% done, x\n", 10.53},
                                           ProgressCase{u" 10.53% done", -1.0}, ProgressCase{u"", -1.0}));

TEST(SoxChunks, TellHowFarADeEmphasisIs)
{
    const sox::DeEmphasisReport figure = sox::parseDeEmphasis(u"\rIn:42.50% 00:00:10.22 [00:00:13.78] Out:451k  ");
    EXPECT_EQ(figure.progress, 42.5);
    EXPECT_EQ(figure.text, QString());
    EXPECT_FALSE(figure.isDone);
    const sox::DeEmphasisReport last = sox::parseDeEmphasis(u"\rIn:100%  00:00:05.00 [00:00:00.00] Out:220k \nDone.\n");
    EXPECT_EQ(last.progress, 100.0);
    EXPECT_TRUE(last.isDone);
    const sox::DeEmphasisReport head = sox::parseDeEmphasis(u"\n\nInput File : 'a.wav'\n\n");
    EXPECT_EQ(head.text, u"Input File : 'a.wav'");
    EXPECT_EQ(head.progress, std::nullopt);
    const sox::DeEmphasisReport done = sox::parseDeEmphasis(u"Done.\n");
    EXPECT_EQ(done.text, u"Done.");
    EXPECT_TRUE(done.isDone);
    EXPECT_EQ(sox::parseDeEmphasis(u"In:").progress, std::nullopt);
    EXPECT_EQ(sox::parseDeEmphasis(u"In:x%").progress, 0.0);
    EXPECT_EQ(sox::parseDeEmphasis(u"\nInput and In:50%").text, u"Input and In:50%") << "the chunk begins with other words";
    EXPECT_TRUE(sox::parseDeEmphasis(u"gain 100% x").isDone);
}

TEST(UtilPrograms, SayWhyTheyFailed)
{
    EXPECT_EQ(sox::reasonOfFailure(u"Input\nsox FAIL deemph:sample rate must be 44100 (audio-CD) or 48000 (DAT)"),
              u"sample rate must be 44100 (audio-CD) or 48000 (DAT)");
    EXPECT_EQ(sox::reasonOfFailure(u"/x/sox FAIL formats: can't open input file `/m/a.wav': WAVE: RIFF header not found\n"),
              u"can't open input file `/m/a.wav': WAVE: RIFF header not found");
    EXPECT_EQ(sox::reasonOfFailure(u"sox WARN rate: clipped"), QString());
    EXPECT_EQ(dvda::reasonOfFailure(u"[Nurv]  Processing 00 a\ndvda: cannot read a\n"), u"cannot read a");
    EXPECT_EQ(dvda::reasonOfFailure(u"[Nurv]  Processing 00 dvda: a\n"), QString());
    EXPECT_EQ(mkisofs::reasonOfFailure(u" 10.00% done, x\nmkisofs: no room\n"), u"no room");
    EXPECT_EQ(metaflac::reasonOfFailure(u"c.flac: ERROR: sample rate of 48000 Hz does not match\n\nWords.\n"),
              u"c.flac: ERROR: sample rate of 48000 Hz does not match");
    EXPECT_EQ(metaflac::reasonOfFailure(u"fine\n"), QString());
}

} // namespace
} // namespace nurv
