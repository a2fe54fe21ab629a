// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace nurv::test;

TEST(Arguments, VersionIsPrintedOnStandardOutput)
{
    const ProgramResult result = runNurv({u"--version"_s});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_EQ(result.output, "nurv (Nurv Audio Workbench) " NURV_VERSION "\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(runNurv({u"encode"_s, u"--version"_s}).output, result.output);
}

TEST(Arguments, HelpNamesEveryCommandAndEveryOption)
{
    const ProgramResult general = runNurv({u"--help"_s});
    EXPECT_EQ(general.exitStatus, 0);
    for (const char *command : {"encode", "decode", "lossy", "checksum create", "checksum verify", "checksum test", "fix", "doctor", "recover"})
        EXPECT_TRUE(general.output.contains(command)) << command;

    const ProgramResult encode = runNurv({u"encode"_s, u"--help"_s});
    EXPECT_EQ(encode.exitStatus, 0);
    for (const char *option : {"--format", "--level", "--mode", "--lax", "--verify", "--keep-foreign-metadata", "--ffp",
                               "--md5", "--output-dir", "--beside-source", "--keep-folders", "--overwrite",
                               "--skip-existing", "--delete-originals", "--no-proof", "--drop-metadata", "--jobs",
                               "--json", "--quiet", "--verbose", "--yes", "--no", "--version", "--help"}) {
        EXPECT_TRUE(encode.output.contains(option)) << option;
    }
    const ProgramResult decode = runNurv({u"decode"_s, u"-h"_s});
    EXPECT_EQ(decode.exitStatus, 0);
    for (const char *option : {"--through-errors", "--keep-folders", "--overwrite", "--skip-existing", "--no-proof",
                               "--drop-metadata", "--verbose"}) {
        EXPECT_TRUE(decode.output.contains(option)) << option;
    }
}

TEST(Arguments, WrongUsageGivesOneSentenceAndAHintAndStatus2)
{
    const TestFolder folder;
    const QString out = folder.path();
    const QString wav = folder.write(u"a.wav"_s, "no sound");
    const std::vector<std::pair<QStringList, QByteArray>> cases{
        {{}, "nurv: a command is needed."},
        {{u"rip"_s}, "nurv: unknown command \"rip\"; there are encode, decode, lossy, checksum, fix, shntool, util, tags, settings, doctor, recover."},
        {{u"--frob"_s}, "nurv: unknown option \"--frob\"; the options of a command come after it."},
        {{u"encode"_s, u"--levle"_s, u"5"_s}, "nurv encode: unknown option \"--levle\" (did you mean --level?)."},
        {{u"encode"_s, wav, u"--out"_s, out}, "nurv encode: unknown option \"--out\" (did you mean --output-dir?)."},
        {{u"encode"_s}, "nurv encode: no files are given."},
        {{u"encode"_s, u"-x"_s}, "nurv encode: unknown option \"-x\"."},
        {{u"encode"_s, wav, u"--level"_s}, "nurv encode: --level needs a value (N)."},
        {{u"encode"_s, u"--verify=yes"_s}, "nurv encode: --verify takes no value."},
        {{u"encode"_s, u"--format="_s}, "nurv encode: the value of --format is empty."},
        {{u"encode"_s, u"--format"_s, u"xyz"_s, u"--beside-source"_s, wav},
         "nurv encode: --format takes one of shn, wv, flac, tta, ape, m4a, not \"xyz\"."},
        {{u"encode"_s, u"--level=9"_s, u"--beside-source"_s, wav},
         "nurv encode: --level takes a whole number from 0 to 8, not \"9\"."},
        {{u"encode"_s, u"--level=-1"_s, u"--beside-source"_s, wav},
         "nurv encode: --level takes a whole number from 0 to 8, not \"-1\"."},
        {{u"encode"_s, u"--level"_s, u"five"_s, u"--beside-source"_s, wav},
         "nurv encode: --level takes a whole number from 0 to 8, not \"five\"."},
        {{u"encode"_s, u"--format=ape"_s, u"--level=1500"_s, u"--beside-source"_s, wav},
         "nurv encode: --level takes 1000, 2000, 3000, 4000 or 5000 with --format ape, not \"1500\"."},
        {{u"encode"_s, u"--format=ape"_s, u"--level=5"_s, u"--beside-source"_s, wav},
         "nurv encode: --level takes 1000, 2000, 3000, 4000 or 5000 with --format ape, not \"5\"."},
        {{u"doctor"_s, u"--json"_s, u"--quiet"_s, u"--jsno"_s}, "nurv doctor: unknown option \"--jsno\" (did you mean --json?)."},
        {{u"encode"_s, u"--format=tta"_s, u"--level=5"_s, u"--beside-source"_s, wav},
         "nurv encode: --level goes with --format flac or ape only, not with tta."},
        {{u"encode"_s, u"--format=shn"_s, u"--ffp"_s, u"--beside-source"_s, wav},
         "nurv encode: --ffp goes with --format flac only, not with shn."},
        {{u"encode"_s, u"--format=flac"_s, u"--md5"_s, u"--beside-source"_s, wav},
         "nurv encode: --md5 goes with --format shn only, not with flac."},
        {{u"encode"_s, u"--format=wv"_s, u"--lax"_s, u"--beside-source"_s, wav},
         "nurv encode: --lax goes with --format flac only, not with wv."},
        {{u"encode"_s, u"--mode=high"_s, u"--beside-source"_s, wav},
         "nurv encode: --mode goes with --format wv only, not with flac."},
        {{u"encode"_s, u"--format=wv"_s, u"--mode=slow"_s, u"--beside-source"_s, wav},
         "nurv encode: --mode takes fast or high, not \"slow\"."},
        {{u"encode"_s, wav}, "nurv encode: --output-dir DIR or --beside-source is needed."},
        {{u"encode"_s, u"--beside-source"_s, u"--output-dir"_s, out, wav},
         "nurv encode: --output-dir and --beside-source cannot both be given."},
        {{u"encode"_s, u"--beside-source"_s}, "nurv encode: no files are given."},
        {{u"encode"_s, u"--yes"_s, u"--no"_s, u"--beside-source"_s, wav},
         "nurv encode: --yes and --no cannot both be given."},
        {{u"encode"_s, u"--no"_s, u"--delete-originals"_s, u"--beside-source"_s, wav},
         "nurv encode: --no and --delete-originals cannot both be given."},
        {{u"encode"_s, u"--overwrite"_s, u"--skip-existing"_s, u"--output-dir"_s, out, wav},
         "nurv encode: --overwrite and --skip-existing cannot both be given."},
        {{u"decode"_s, u"--skip-existing"_s, u"--overwrite"_s, u"--output-dir"_s, out, wav},
         "nurv decode: --overwrite and --skip-existing cannot both be given."},
        {{u"encode"_s, u"--keep-folders"_s, u"--beside-source"_s, wav},
         "nurv encode: --keep-folders and --beside-source cannot both be given."},
        {{u"encode"_s, u"--no-proof"_s, u"--beside-source"_s, wav},
         "nurv encode: --no-proof goes with --delete-originals only."},
        {{u"decode"_s, u"--drop-metadata"_s, u"--beside-source"_s, wav},
         "nurv decode: --drop-metadata goes with --delete-originals only."},
        {{u"encode"_s, u"--drop-metadata"_s, u"--no"_s, u"--output-dir"_s, out, wav},
         "nurv encode: --drop-metadata goes with --delete-originals only."},
        {{u"encode"_s, u"--verbose"_s, u"--quiet"_s, u"--beside-source"_s, wav},
         "nurv encode: --quiet and --verbose cannot both be given."},
        {{u"encode"_s, u"--proof"_s, u"--beside-source"_s, wav},
         "nurv encode: unknown option \"--proof\"."},
        {{u"encode"_s, u"--overwrite"_s, u"--no"_s, u"--beside-source"_s, wav},
         "nurv encode: --no and --overwrite cannot both be given."},
        {{u"encode"_s, u"--jobs=0"_s, u"--beside-source"_s, wav},
         "nurv encode: --jobs takes a whole number from 1 to 256, not \"0\"."},
        {{u"decode"_s, u"--format=flac"_s, u"--beside-source"_s, wav},
         "nurv decode: --format takes wav or aiff, not \"flac\"."},
        {{u"decode"_s, u"--lax"_s, u"--beside-source"_s, wav}, "nurv decode: unknown option \"--lax\"."},
        {{u"doctor"_s, wav}, "nurv doctor: doctor takes no files."},
        {{u"recover"_s, wav}, "nurv recover: recover takes no files."},
        {{u"recover"_s, u"--yes"_s, u"--no"_s}, "nurv recover: --yes and --no cannot both be given."},
    };
    for (const auto &[arguments, sentence] : cases) {
        const ProgramResult result = runNurv(arguments);
        EXPECT_EQ(result.exitStatus, 2) << qPrintable(arguments.join(u' '));
        EXPECT_EQ(result.output, "");
        const QByteArray command = sentence.left(sentence.indexOf(':'));
        EXPECT_EQ(result.errors, sentence + "\nTry \"" + command + " --help\".\n");
    }
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
}

TEST(Arguments, TheOutputFolderMustExistAndBeWritable)
{
    const TestFolder folder;
    const QString wav = folder.write(u"a.wav"_s, "no sound");
    const auto errorFor = [&](const QString &name) {
        const ProgramResult result = runNurv({u"encode"_s, u"--output-dir"_s, name, wav});
        EXPECT_EQ(result.exitStatus, 2);
        return result.errors;
    };
    EXPECT_TRUE(errorFor(folder.path(u"new"_s)).startsWith("nurv encode: the output folder does not exist: "));
    EXPECT_FALSE(folder.exists(u"new"_s));
    EXPECT_TRUE(errorFor(u"~/new"_s).contains("~/new (the shell puts the home folder in only after a blank: "
                                              "--output-dir ~/new)"));
    EXPECT_TRUE(errorFor(wav).startsWith("nurv encode: the output folder is no folder: "));
    // The kernel's own folder takes no files, not even from root.
    EXPECT_EQ(folder.list(), QStringList{u"a.wav"_s});
    EXPECT_TRUE(errorFor(u"/proc/self/fdinfo"_s).startsWith("nurv encode: the output folder cannot be written: "));
}

TEST(Arguments, AnswersTheHelpAlsoWhenOtherOptionsAreWrong)
{
    EXPECT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, u"--output-dir=x"_s, u"--help"_s}).exitStatus, 0);
}
