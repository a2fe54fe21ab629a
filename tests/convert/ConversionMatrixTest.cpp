// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"
#include "convert/TaggedSource.h"
#include "support/TestProgram.h"

#include "base/WorkerThreads.h"

#include <QFileInfo>

#include <ostream>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

/// What becomes of a source in a format.
enum class Outcome {
    Sound, ///< the samples, no tags
    SoundAndTags,
    Refused, ///< the program cannot read or write it: an error, and nothing is made
};

bool holds(const QStringList &list, const QString &word)
{
    return list.contains(word);
}

Outcome encodingOutcome(const QString &source, const QString &format, const test::SoundShape &shape)
{
    // Shorten knows 16 bits at most.
    if (format == u"SHN" && shape.bits == 24)
        return Outcome::Refused;
    if (format == u"APE" && shape.channels > 2)
        return Outcome::Refused;
    // Its encoder knows 16, 20, 24 and 32 bits.
    if (format == u"M4A" && shape.bits == 8)
        return Outcome::Refused;
    if (format == u"SHN")
        return Outcome::Sound;
    if (format == u"FLAC")
        return holds({u"WAV"_s, u"SHN"_s, u"TTA"_s}, source) ? Outcome::Sound : Outcome::SoundAndTags;
    if (format == u"M4A")
        return holds({u"FLAC"_s, u"AIFF"_s, u"WV"_s, u"APE"_s}, source) ? Outcome::SoundAndTags : Outcome::Sound;
    // TTA takes no tags here, and of WAV, AIFF, Shorten and TTA no other encoding carries them on.
    return format == u"TTA" || holds({u"WAV"_s, u"AIFF"_s, u"SHN"_s, u"TTA"_s}, source) ? Outcome::Sound
                                                                                      : Outcome::SoundAndTags;
}

Outcome decodingOutcome(const QString &source, const QString &format)
{
    return format == u"AIFF" && holds({u"FLAC"_s, u"M4A"_s}, source) ? Outcome::SoundAndTags : Outcome::Sound;
}

struct MatrixRow {
    QString source;
    int bits;
    int channels = 2;
    int rateHz = 44100;

    [[nodiscard]] test::SoundShape shape() const
    {
        return {.rate = rateHz,
                .bits = bits,
                .channels = channels,
                .seconds = channels > 2 ? 1.0 : 3.0,
                .extensible = channels > 2};
    }
};

void PrintTo(const MatrixRow &row, std::ostream *stream)
{
    *stream << qPrintable(row.source) << row.bits << 'c' << row.channels << 'r' << row.rateHz;
}

class ConversionMatrixTest : public test::ConvertFixture, public ::testing::WithParamInterface<MatrixRow> {
protected:
    ConversionMatrixTest() { set(u"warnOnDelete", false); }

    template<typename Tab>
    void convert(Tab &tab, const QString &source, const QString &format, Outcome outcome)
    {
        SCOPED_TRACE(qPrintable(source.section(u'/', -1) + u" to "_s + format));
        endedTasks.clear();
        outputWindows.clear();
        ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        run(tab, {source});
        ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
        ASSERT_EQ(endedTasks.size(), 1U);
        const NURVTask &task = *endedTasks[0];
        const QString output = out.path(QFileInfo(source).completeBaseName() + u'.' + format.toLower());
        ASSERT_TRUE(QFile::exists(source));
        if (outcome == Outcome::Refused) {
            EXPECT_TRUE(task.error()) << qPrintable(task.report());
            EXPECT_EQ(task.topTextField().text, u"Error");
            EXPECT_FALSE(task.report().section(u'\n', 1).trimmed().isEmpty()) << "the report says why";
            if (format == u"SHN") {
                EXPECT_TRUE(task.report().contains(u"Shorten holds samples of 8 or 16 bits, not of 24"_s))
                    << qPrintable(task.report());
            }
            EXPECT_EQ(out.list(), QStringList()) << qPrintable(task.report());
            return;
        }
        EXPECT_EQ(task.topTextField().text, isTold(source, format) ? u"Complete"_s : u"Complete; not proven"_s)
            << qPrintable(task.report());
        EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
        ASSERT_EQ(out.list(), QStringList{QFileInfo(output).fileName()}) << qPrintable(task.report());
        const QString readable = readableByOthers(output);
        EXPECT_TRUE(test::sameSound(source, readable));
        expectBits(readable);
        expectTags(output, outcome == Outcome::SoundAndTags);
        ASSERT_TRUE(QFile::remove(output));
    }

private:
    /// Whether lengths and programs tell that all of the sound arrived: nothing in a Shorten
    /// or TTA file but its decoding does, and shntool takes no notice of its decoders' complaints.
    static bool isTold(const QString &source, const QString &format)
    {
        const QString kind = QFileInfo(source).suffix().toUpper();
        if (kind == u"SHN" || kind == u"TTA")
            return false;
        if (format == u"SHN")
            return !holds({u"FLAC"_s, u"APE"_s}, kind);
        return format != u"FLAC" || kind != u"APE";
    }
    /// Other programs read no Shorten file whose header has a subformat, as those of more than two channels have.
    [[nodiscard]] QString readableByOthers(const QString &output) const
    {
        if (GetParam().channels <= 2 || !output.endsWith(u".shn"))
            return output;
        const QString wav = folder.path(u"restored.wav"_s);
        const test::ProgramResult restored =
            test::runProgram(QString::fromLocal8Bit(NURV_BUILT_PROGRAMS) + u"/shorten"_s, {u"-x"_s, output, wav});
        EXPECT_EQ(restored.exitStatus, 0) << restored.errors.constData();
        return wav;
    }
    static void expectBits(const QString &output)
    {
        const auto facts = test::ffprobeStream(output);
        const int raw = facts.value(u"bits_per_raw_sample"_s).toInt();
        const int bits = raw != 0 ? raw : facts.value(u"bits_per_sample"_s).toInt();
        // Of TTA and some others ffprobe knows only the width of the samples in memory.
        const int expected = GetParam().bits;
        if (bits != 0) {
            EXPECT_EQ(bits, expected);
        } else {
            EXPECT_EQ(facts.value(u"sample_fmt"_s).startsWith(u"s16"_s), expected == 16);
        }
    }
    static void expectTags(const QString &output, bool hasTags)
    {
        const auto tags = test::ffprobeTags(output);
        EXPECT_EQ(tags.value(u"title"_s), hasTags ? test::kSourceTitle : QString());
        EXPECT_EQ(tags.value(u"artist"_s), hasTags ? test::kSourceArtist : QString());
        if (hasTags && output.endsWith(u".flac"_s)) {
            QStringList fields = test::metaflacTags(output);
            EXPECT_TRUE(fields.contains(u"TITLE="_s + test::kSourceTitle, Qt::CaseInsensitive)) << qPrintable(fields.join(u'\n'));
            EXPECT_TRUE(fields.contains(u"ARTIST="_s + test::kSourceArtist, Qt::CaseInsensitive));
        }
    }
};

class EncodingMatrixTest : public ConversionMatrixTest {};

TEST_P(EncodingMatrixTest, ReachesEveryFormatThatItsProgramsKnow)
{
    const QString &kind = GetParam().source;
    const QString source = folder.path(u"Track 01."_s + kind.toLower());
    test::makeTaggedSource(source, kind, GetParam().shape());
    EncodeTab tab(controller);
    for (const QString &format : {u"SHN"_s, u"FLAC"_s, u"APE"_s, u"WV"_s, u"TTA"_s, u"M4A"_s})
        convert(tab, source, format, encodingOutcome(kind, format, GetParam().shape()));
}

class DecodingMatrixTest : public ConversionMatrixTest {};

TEST_P(DecodingMatrixTest, ReachesWavAndAiff)
{
    const QString &kind = GetParam().source;
    const QString source = folder.path(u"Track 01."_s + kind.toLower());
    test::makeTaggedSource(source, kind, GetParam().shape());
    DecodeTab tab(controller);
    for (const QString &format : {u"WAV"_s, u"AIFF"_s})
        convert(tab, source, format, decodingOutcome(kind, format));
}

/// Mono, surround, high rates and 8 bits of these kinds, as far as each of them knows them.
std::vector<MatrixRow> rowsOf(const QStringList &kinds)
{
    std::vector<MatrixRow> rows;
    for (const QString &kind : kinds) {
        rows.push_back({kind, 16, 1});
        rows.push_back({kind, 16, 2, 96000});
        if (kind != u"SHN")
            rows.push_back({kind, 24, 2, 96000});
        if (kind != u"SHN" && kind != u"APE") {
            rows.push_back({kind, 16, 6, 48000});
            rows.push_back({kind, 24, 6, 48000});
        }
        if (kind != u"M4A")
            rows.push_back({kind, 8});
    }
    return rows;
}

const auto kLossless = ::testing::Values(MatrixRow{u"FLAC"_s, 16}, MatrixRow{u"FLAC"_s, 24}, MatrixRow{u"SHN"_s, 16},
                                         MatrixRow{u"WV"_s, 16}, MatrixRow{u"WV"_s, 24}, MatrixRow{u"TTA"_s, 16},
                                         MatrixRow{u"TTA"_s, 24}, MatrixRow{u"APE"_s, 16}, MatrixRow{u"APE"_s, 24},
                                         MatrixRow{u"M4A"_s, 16}, MatrixRow{u"M4A"_s, 24});

INSTANTIATE_TEST_SUITE_P(Plain, EncodingMatrixTest,
                         ::testing::Values(MatrixRow{u"WAV"_s, 16}, MatrixRow{u"WAV"_s, 24}, MatrixRow{u"AIFF"_s, 16},
                                           MatrixRow{u"AIFF"_s, 24}),
                         ::testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Lossless, EncodingMatrixTest, kLossless, ::testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Shapes, EncodingMatrixTest,
                         ::testing::ValuesIn(rowsOf({u"WAV"_s, u"AIFF"_s, u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s,
                                                     u"APE"_s, u"M4A"_s})),
                         ::testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Shapes, DecodingMatrixTest,
                         ::testing::ValuesIn(rowsOf({u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s, u"APE"_s, u"M4A"_s})),
                         ::testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Lossless, DecodingMatrixTest, kLossless, ::testing::PrintToStringParamName());

} // namespace
} // namespace nurv
