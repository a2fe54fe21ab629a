// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ProblemLine.h"

#include "app/TestApplication.h"
#include "engine/TestTasks.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

// What the programs wrote when they were given such files, below the heading of a report.

const QString kFlacBanner = u"\n\nflac 1.4.2\n"
                            "Copyright (C) 2000-2009  Josh Coalson, 2011-2022  Xiph.Org Foundation\n"
                            "flac comes with ABSOLUTELY NO WARRANTY.  This is free software, and you are\n"
                            "welcome to redistribute it under certain conditions.  Type `flac' for details.\n\n"_s;
const QString kWavpackBanner = u"\n WAVPACK  Hybrid Lossless Audio Compressor  linux-gnu Version 5.6.0\n"
                               " Copyright (c) 1998 - 2022 David Bryant.  All Rights Reserved.\n\n"_s;
const QString kWvunpackBanner = u"\n WVUNPACK  Hybrid Lossless Audio Decompressor  linux-gnu Version 5.6.0\n"
                                " Copyright (c) 1998 - 2022 David Bryant.  All Rights Reserved.\n\n"_s;

QString lineOf(const QString &sourcePath, const QString &text)
{
    return problemLine(sourcePath + u":\n"_s + text, sourcePath, {u"--lax"_s, u"--keep-foreign-metadata"_s});
}

} // namespace

TEST(ProblemLine, KnowsTheNamesThatOurOwnProgramsShow)
{
    EXPECT_EQ(lineOf(u"/m/a\x1b[2J.tta"_s, u"ttaenc: /m/a\\x1B[2J.tta: not a TTA1 file\n"_s), u"not a TTA1 file"_s);
    EXPECT_EQ(lineOf(u"/m/a\x1b[2J.tta"_s, u"ttaenc: /m/a\x1b[2J.tta: not a TTA1 file\n"_s), u"not a TTA1 file"_s);
}

TEST(ProblemLine, OfFlacThatEncodes)
{
    EXPECT_EQ(lineOf(u"/m/bad.wav"_s,
                     kFlacBanner
                         + u"WARNING: /m/bad.wav is not a WAVE file; treating as a raw file\n"
                           "ERROR: for encoding a raw file you must specify a value for --endian, --sign, --channels, "
                           "--bps, and --sample-rate\n"
                           "Type \"flac\" for a usage summary or \"flac --help\" for all options\n"_s),
              u"not a WAVE file; treating as a raw file"_s);
    EXPECT_EQ(
        lineOf(u"/m/a.wav"_s, kFlacBanner + u"ERROR: output file /o/a.flac already exists, use -f to override\n"_s),
        u"output file /o/a.flac already exists"_s);
    EXPECT_EQ(
        lineOf(u"/m/nope.wav"_s, kFlacBanner + u"ERROR: can't open input file nope.wav: No such file or directory\n"_s),
        u"can't open input file nope.wav: No such file or directory"_s);
}

TEST(ProblemLine, OfFlacThatDecodes)
{
    EXPECT_EQ(lineOf(u"/m/bad.flac"_s, kFlacBanner
                                           + u"\n\n\nbad.flac: ERROR while decoding metadata\n"
                                             "          state = FLAC__STREAM_DECODER_END_OF_STREAM\n"_s),
              u"ERROR while decoding metadata"_s);
    EXPECT_EQ(
        lineOf(u"/m/cut.flac"_s, kFlacBanner
                                     + u"cut.flac: *** Got error code 0:FLAC__STREAM_DECODER_ERROR_STATUS_LOST_SYNC\n"
                                       "\n\ncut.flac: ERROR during decoding\n"
                                       "          state = FLAC__STREAM_DECODER_END_OF_STREAM\n"_s),
        u"ERROR during decoding"_s);
}

TEST(ProblemLine, OfShntoolThatIsGivenWhatItDoesNotTake)
{
    EXPECT_EQ(problemLine(u"shntool [cmp]: error: need exactly two files to process\nshntool [cmp]: \n"
                          "shntool [cmp]: type 'shntool cmp -h' for help\n"_s,
                          QString(), {}),
              u"need exactly two files to process"_s);
}

TEST(ProblemLine, OfShntool)
{
    EXPECT_EQ(lineOf(u"/m/bad.wav"_s, u"shntool [conv]: warning: none of the builtin format modules handle input file: "
                                      "[/m/bad.wav]\n"_s),
              u"none of the builtin format modules handle input file"_s);
    EXPECT_EQ(lineOf(u"/m/concert.wav"_s,
                     u"Converting [concert.wav] (10:00.00) --> [out/concert.shn] :   0% ERROR\n"
                     "shntool [conv]: warning: error while transferring 105840000-byte data chunk -- skipping.\n"
                     "shntool [conv]: warning: child encoder process 5158 had non-zero exit status 1\n"_s),
              u"error while transferring 105840000-byte data chunk -- skipping"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s,
                     u"Converting [a.wav] (0:01.00) --> [a.flac] :   0% \n"
                     "shntool [conv]: error: standard input is not a terminal -- cannot prompt for overwrite action.  "
                     "use \"-O always\" or \"-O never\".\n"_s),
              u"its output exists already"_s);
}

TEST(ProblemLine, OfShntoolThatWasCalledWrongly)
{
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"shntool [cmp]: error: need exactly two files to process\nshntool [cmp]: \n"
                                    "shntool [cmp]: type 'shntool cmp -h' for help\n"_s),
              u"need exactly two files to process"_s);
}

TEST(ProblemLine, OfWavpack)
{
    EXPECT_EQ(
        lineOf(u"/m/bad.wav"_s, kWavpackBanner + u"creating bad.wv,bad.wav is not a recognized file type!      \n"_s),
        u"not a recognized file type"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, kWavpackBanner + u"overwrite a.wv (yes/no/all)? \n"_s),
              u"its output exists already"_s);
    EXPECT_EQ(lineOf(u"/m/j.wv"_s,
                     kWvunpackBanner + u"not compatible with this version of WavPack file!                \n"_s),
              u"not compatible with this version of WavPack file"_s);
    EXPECT_EQ(
        lineOf(u"/m/c.wv"_s, kWvunpackBanner + u"restoring c.wav, 75% done...file is missing 11025 samples!     \n"_s),
        u"file is missing 11025 samples"_s);
}

TEST(ProblemLine, OfTestsOfFiles)
{
    EXPECT_EQ(lineOf(u"/m/a.wv"_s, kWvunpackBanner
                                       + u"verifying /m/a.wv,   3% done...\b\b\b\b\b\b\b\b\b\b\b\b  6% done... 50% done..."
                                         "\b\b\b\b\b\b\b\b\b\b\b\b100% done...\rmissing data or crc errors detected in 1 block(s)!"
                                         "                                \n"_s),
              u"missing data or crc errors detected in 1 block(s)"_s);
    // The job has put the name before each piece of what flac wrote.
    EXPECT_EQ(lineOf(u"/m/a.flac"_s, u"\na.flac: \na.flac: flac 1.4.2\nCopyright (C) 2000-2009  Josh Coalson\na.flac: a.flac:\n"
                                     "a.flac: *** Got error code 2:FLAC__STREAM_DECODER_ERROR_STATUS_FRAME_CRC_MISMATCH\n"
                                     "a.flac: \na.flac: a.flac: ERROR while decoding data\n"
                                     "a.flac: state = FLAC__STREAM_DECODER_ABORTED\n"_s),
              u"ERROR while decoding data"_s);
}

TEST(ProblemLine, OfTheBundledPrograms)
{
    EXPECT_EQ(lineOf(u"/m/bad.wav"_s, u"mac: bad.wav: this is no WAV file\nError: 1002\n"_s), u"this is no WAV file"_s);
    EXPECT_EQ(lineOf(u"/m/a.ape"_s,
                     u"Decompressing...\nProgress: 5.5% (2.6 seconds remaining, 0.2 seconds total)          \n"
                     "mac: a.ape: frame 2 does not agree with its checksum\nError: 1009\n"_s),
              u"frame 2 does not agree with its checksum"_s);
    EXPECT_EQ(lineOf(u"/m/c.tta"_s, u"Percent Progress: 47\nttaenc: c.tta: frame 1 of 1 (at 0.00 s) is missing: "
                                    "the file is truncated\n"_s),
              u"frame 1 of 1 (at 0.00 s) is missing: the file is truncated"_s);
    EXPECT_EQ(lineOf(u"/m/c.tta"_s, u"Percent Progress: 47ttaenc: c.tta: not a TTA1 file\n"_s), u"not a TTA1 file"_s);
}

TEST(ProblemLine, OfOurOwnReasons)
{
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"\"flac\" could not be started: No such file or directory\n"
                                    "It was looked for in the folder /usr/lib/nurv/tools.\n"
                                    "It is provided by the package \"flac\"."_s),
              u"\"flac\" could not be started: No such file or directory"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, kFlacBanner
                                        + u"a.wav: 45% complete, ratio=0.532\n"
                                          "flac was ended by signal 9 (Killed) while working on a.wav\n"_s),
              u"flac was ended by signal 9 (Killed) while working on a.wav"_s);
    EXPECT_EQ(lineOf(u"/m/a.wv"_s, u"/m/a.wv: its output a.wav is made from /m/a.flac\n"_s),
              u"its output a.wav is made from /m/a.flac"_s);
    // What a program gave as its reason says more.
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"mac: a.wav: this is no WAV file\n/m/a.wav: its program made no output\n"_s),
              u"this is no WAV file"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"/m/a.wav: its program made no output\n"_s), u"its program made no output"_s);
}

TEST(ProblemLine, AdvicePassesOnOnlySwitchesThatTheCommandHas)
{
    EXPECT_EQ(lineOf(u"/m/a.wav"_s,
                     u"a.wav: WARNING: skipping unknown chunk 'LIST' (use --keep-foreign-metadata to keep)\n"_s),
              u"skipping unknown chunk 'LIST' (use --keep-foreign-metadata to keep)"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"ERROR: not in the subset. Try --lax or -l 12\n"_s), u"not in the subset"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"the disk is full\nuse -f to force\n"_s), u"the disk is full"_s);
    // Names have dashes, too.
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"can't read /m/x-y/a - b--c.wav\n"_s), u"can't read /m/x-y/a - b--c.wav"_s);
}

TEST(ProblemLine, OfAReportThatTellsNothing)
{
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, QString()), u"it failed without a reason"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, kFlacBanner), u"it failed without a reason"_s);
    EXPECT_EQ(problemLine(QString(), QString(), {}), u"it failed without a reason"_s);
    EXPECT_EQ(problemLine(u"the list is empty\n"_s, QString(), {}), u"the list is empty"_s);
}

TEST(ProblemLine, EndsSoonOnHostileText)
{
    const QString dashes = u"use -a, "_s.repeated(20'000);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, dashes + u"\nend\n"_s), u"end"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"error: "_s.repeated(20'000) + u"end\n"_s), u"end"_s);
    EXPECT_EQ(lineOf(u"/m/a.wav"_s, u"a.wav: "_s.repeated(5'000) + u"end\n"_s), u"end"_s);
}

TEST(ReportHead, SaysWhatWentWrongBeforeTheProgramsChatter)
{
    const test::TestApplication application;
    const auto headOf = [&](const QString &report, const QString &problem, bool failed) {
        const auto job = std::make_shared<test::HeldTask>(&application.controller.taskQueue());
        job->setSourcePath(u"/m/a.wav"_s);
        job->write(report);
        job->ownOutcome().problem = problem;
        job->setError(failed);
        return reportHead(*job);
    };
    const QString report = u"/m/a.wav:"_s + kFlacBanner + u"a.wav: ERROR: the disk is full\n"_s;
    EXPECT_EQ(headOf(report, QString(), true), u"the disk is full\n\n"_s);
    EXPECT_EQ(headOf(report, u"its tags were not copied"_s, true), u"its tags were not copied\n\n"_s);
    EXPECT_EQ(headOf(report, QString(), false), QString());
    EXPECT_EQ(headOf(u"the list is empty\n"_s, QString(), true), QString()) << "it begins so";
    EXPECT_EQ(headOf(u"\n"_s, u"anything"_s, true), QString()) << "no window comes of it";
}

} // namespace nurv
