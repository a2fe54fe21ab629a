// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"

#include <csignal>

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

namespace {

/// A set of three files whose borders lie within sectors, in the folder "in", and an empty folder "out".
class FixCommandTest : public ::testing::Test {
protected:
    FixCommandTest()
    {
        for (int i = 1; i <= 3; ++i) {
            writeFlac(folder.path(u"in/show-d%1t01.flac"_s.arg(i)), {.frames = 20'001 + i, .seed = static_cast<unsigned>(i)},
                      {u"-T"_s, u"TITLE=Song %1"_s.arg(i), u"-T"_s, u"DATE=1999"_s});
        }
        folder.makeFolder(u"out"_s);
    }
    [[nodiscard]] ProgramResult fix(const QStringList &options) const
    {
        return runNurv(QStringList{u"fix"_s, u"--output-dir"_s, folder.path(u"out"_s), folder.path(u"in"_s)} + options);
    }

    TestFolder folder;
};

} // namespace

TEST_F(FixCommandTest, FixesAFolderWithTagsAndFingerprints)
{
    const ProgramResult result = fix({u"--ffp"_s});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_EQ(result.errors.split('\n').first(), "Fixing: Complete");
    EXPECT_TRUE(result.errors.contains("\n3 of 3 done; ")) << result.errors.constData();
    EXPECT_TRUE(result.output.startsWith("Fixing [")) << result.output.constData();
    EXPECT_TRUE(metaflacTags(folder.path(u"out/show-d2t01.flac"_s)).contains(u"TITLE=Song 2"_s));
    EXPECT_EQ(folder.read(u"out/fingerprint.ffp.txt"_s).count('\n'), 5);
    EXPECT_EQ(folder.list().size(), 7);
}

TEST_F(FixCommandTest, WritesListsByDisc)
{
    EXPECT_EQ(fix({u"--format=shn"_s, u"--md5=disc"_s}).exitStatus, 0);
    for (const QString &disc : {u"1"_s, u"2"_s, u"3"_s})
        EXPECT_TRUE(folder.read(u"out/Disc%1.md5"_s.arg(disc)).contains(" *show-d" + disc.toUtf8() + "t01.shn\n"));
}

TEST_F(FixCommandTest, WritesOneListOrNone)
{
    EXPECT_EQ(fix({u"--format=shn"_s, u"--md5=one"_s}).exitStatus, 0);
    EXPECT_EQ(folder.read(u"out/md5sum.md5"_s).count(".shn\n"), 3);
    folder.remove(u"out/md5sum.md5"_s);
    for (int i = 1; i <= 3; ++i)
        folder.remove(u"out/show-d%1t01.shn"_s.arg(i));
    EXPECT_EQ(fix({u"--format=shn"_s}).exitStatus, 0);
    EXPECT_EQ(folder.list().size(), 6);
}

TEST_F(FixCommandTest, DeletesTheWholeSetOrNothing)
{
    const ProgramResult kept = fix({u"--format=wav"_s, u"--delete-originals"_s, u"--yes"_s});
    EXPECT_EQ(kept.exitStatus, 1) << "the tags have no place";
    EXPECT_TRUE(kept.errors.startsWith("Fixing: Complete; original kept: show-d1t01.flac: ")) << kept.errors.constData();
    EXPECT_TRUE(kept.errors.contains("0 of 3 done, 3 originals kept")) << kept.errors.constData();
    EXPECT_EQ(folder.list().size(), 6);
    const ProgramResult gone = fix({u"--delete-originals"_s, u"--yes"_s});
    EXPECT_EQ(gone.exitStatus, 0) << gone.errors.constData();
    EXPECT_EQ(folder.list(), (QStringList{u"out/show-d1t01.flac"_s, u"out/show-d1t01.wav"_s, u"out/show-d2t01.flac"_s,
                                          u"out/show-d2t01.wav"_s, u"out/show-d3t01.flac"_s, u"out/show-d3t01.wav"_s}));
}

TEST_F(FixCommandTest, NamesWhatIsInTheWay)
{
    folder.write(u"out/show-d2t01.flac"_s, "mine");
    const ProgramResult result = fix({});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.startsWith("Fixing: show-d2t01.flac: its output show-d2t01.flac exists already\n"))
        << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("0 of 3 done, 3 failed")) << result.errors.constData();
    EXPECT_EQ(folder.read(u"out/show-d2t01.flac"_s), "mine");
}

TEST_F(FixCommandTest, TellsTheJobInJson)
{
    const ProgramResult result = fix({u"--json"_s, u"--delete-originals"_s, u"--yes"_s});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    const QJsonObject job = QJsonDocument::fromJson(result.output.split('\n').first()).object();
    EXPECT_EQ(job[u"title"_s].toString(), u"Fixing");
    EXPECT_EQ(job[u"output"_s].toString(), folder.path(u"out"_s));
    EXPECT_EQ(job[u"original"_s].toString(), u"deleted");
    EXPECT_EQ(job[u"proof"_s].toString(), u"proven");
    EXPECT_TRUE(job[u"report"_s].toString().contains(u"Fixing ["_s));
}

TEST_F(FixCommandTest, IsClearedUpAfterWhenItWasKilled)
{
    const ProgramFolder tools;
    tools.addAllReal();
    // Killed while the tags are copied: all files have their names already.
    tools.remove(u"metaflac"_s);
    tools.addFake(u"metaflac"_s, "create=" + folder.path(u"waits"_s).toUtf8() + ";hang");
    const QStringList before = folder.list();
    {
        RunningNurv run({u"fix"_s, u"--output-dir"_s, folder.path(u"out"_s), folder.path(u"in"_s)});
        ASSERT_TRUE(waitUntil([this] { return folder.exists(u"waits"_s); }));
        EXPECT_TRUE(folder.exists(u"out/show-d1t01.flac"_s));
        run.sendSignal(SIGKILL);
        static_cast<void>(run.finish());
    }
    folder.remove(u"waits"_s);
    const ProgramResult recovered = runNurv({u"recover"_s, u"--yes"_s});
    EXPECT_EQ(recovered.exitStatus, 0) << recovered.errors.constData();
    EXPECT_EQ(folder.list(), before) << recovered.output.constData() << recovered.errors.constData();
}

TEST_F(FixCommandTest, SaysThatTheLevelHasNoEffect)
{
    const ProgramResult result = fix({u"--level=8"_s});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(result.errors.startsWith("nurv: --level has no effect: shntool runs flac with flac's own level\n"))
        << result.errors.constData();
}

TEST_F(FixCommandTest, RefusesWhatDoesNotGoTogether)
{
    const std::vector<std::pair<QStringList, QByteArray>> cases{
        {{u"--format=wv"_s}, "nurv fix: --format takes one of shn, flac, aiff, wav, not \"wv\"."},
        {{u"--level=9"_s}, "nurv fix: --level takes a whole number from 0 to 8, not \"9\"."},
        {{u"--format=shn"_s, u"--level=5"_s}, "nurv fix: --level goes with --format flac only, not with shn."},
        {{u"--format=wav"_s, u"--ffp"_s}, "nurv fix: --ffp goes with --format flac only, not with wav."},
        {{u"--md5=one"_s}, "nurv fix: --md5 goes with --format shn only, not with flac."},
        {{u"--format=shn"_s, u"--md5=all"_s}, "nurv fix: --md5 takes one of none, one, disc, not \"all\"."},
        {{u"--no-proof"_s}, "nurv fix: --no-proof goes with --delete-originals only."},
        {{u"--beside-source"_s}, "nurv fix: unknown option \"--beside-source\"."},
        {{u"--delete-originals"_s, u"--no"_s}, "nurv fix: --no and --delete-originals cannot both be given."},
    };
    for (const auto &[options, message] : cases) {
        const ProgramResult result = fix(options);
        EXPECT_EQ(result.exitStatus, 2) << message.constData();
        EXPECT_EQ(result.errors.split('\n').first(), message);
    }
    const ProgramResult nowhere = runNurv({u"fix"_s, folder.path(u"in"_s)});
    EXPECT_EQ(nowhere.exitStatus, 2);
    EXPECT_EQ(nowhere.errors.split('\n').first(), "nurv fix: --output-dir DIR is needed.");
    EXPECT_EQ(folder.list().size(), 3);
}
