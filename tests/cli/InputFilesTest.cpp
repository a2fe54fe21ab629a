// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InputFiles.h"
#include "app/TestApplication.h"
#include "NurvProgram.h"
#include "support/AudioFixtures.h"
#include "support/FileLooks.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace nurv::test;

TEST(InputFiles, AFileOfAnotherKindIsToldByNameAndGivesStatus1)
{
    const TestFolder folder;
    const QString flac = writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1});
    const QString text = folder.write(u"notes.txt"_s, "text");
    const ProgramResult result = runNurv({u"decode"_s, u"--beside-source"_s, text, flac});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("nurv: " + text.toUtf8() + ": not a file of a kind that this command takes\n"))
        << result.errors.constData();
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST(InputFiles, AFileOfAnotherKindInAFolderIsToldByNameAndNoFailure)
{
    const TestFolder folder;
    writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1});
    folder.write(u"notes.txt"_s, "text");
    folder.write(u".DS_Store"_s, "left behind");
    const ProgramResult result = runNurv({u"decode"_s, u"--beside-source"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(result.errors.startsWith(
        "nurv: notes.txt: skipped, not of a kind that this command takes\na.flac: Complete\n1 of 1 done; "))
        << result.errors.constData();
    folder.remove(u"a.wav"_s);
    EXPECT_EQ(runNurv({u"decode"_s, u"--beside-source"_s, u"--quiet"_s, folder.path()}).errors, "");
}

TEST(InputFiles, AFolderGivesOnlyFilesWithAnExtensionOfThePage)
{
    const TestFolder folder;
    const QString wav = writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.1});
    writeWav(folder.path(u"in/take one"_s), {.seconds = 0.1});
    folder.write(u"in/README"_s, "text");
    const ProgramResult result = runNurv({u"encode"_s, u"--beside-source"_s, folder.path(u"in"_s)});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(result.errors.contains("nurv: README: skipped")) << result.errors.constData();
    EXPECT_EQ(folder.list(),
              (QStringList{u"in/README"_s, u"in/a.flac"_s, u"in/a.wav"_s, u"in/take one"_s}));

    // What is named itself is taken without one.
    EXPECT_EQ(runNurv({u"encode"_s, u"--beside-source"_s, folder.path(u"in/take one"_s)}).exitStatus, 0);
    EXPECT_TRUE(sameSound(folder.path(u"in/take one"_s), folder.path(u"in/take one.flac"_s)));
}

TEST(InputFiles, ADamagedFileInAFolderCountsAsRefused)
{
    const TestFolder folder;
    writeWav(folder.path(u"in/a.wav"_s), {.seconds = 0.1});
    writeByFfmpeg(folder.path(u"in/disc1/whole.m4a"_s), {.seconds = 0.1}, {u"-c:a"_s, u"alac"_s});
    writeByFfmpeg(folder.path(u"in/disc1/other kind.m4a"_s), {.seconds = 0.1}, {u"-c:a"_s, u"aac"_s});
    const QByteArray whole = folder.read(u"in/disc1/whole.m4a"_s);
    folder.write(u"in/disc1/cut.m4a"_s, whole.left(whole.size() / 2));
    folder.write(u"in/disc1/empty.m4a"_s, "");
    folder.write(u"in/cover.jpg"_s, "picture");
    folder.makeFolder(u"out"_s);
    const ProgramResult result =
        runNurv({u"encode"_s, u"--output-dir"_s, folder.path(u"out"_s), folder.path(u"in"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    for (const char *name : {"cut", "empty"}) {
        EXPECT_TRUE(result.errors.contains("nurv: disc1/" + QByteArray(name)
                                           + ".m4a: damaged: no sound can be found in it\n"))
            << result.errors.constData();
    }
    EXPECT_TRUE(result.errors.contains("nurv: disc1/other kind.m4a: skipped, not of a kind that this command takes\n"));
    EXPECT_TRUE(result.errors.contains("\n2 of 2 done, 2 refused; ")) << result.errors.constData();
    EXPECT_EQ(folder.list().filter(u"out/"_s), (QStringList{u"out/a.flac"_s, u"out/whole.flac"_s}));

    const ProgramResult quiet =
        runNurv({u"encode"_s, u"--quiet"_s, u"--json"_s, u"--beside-source"_s, folder.path(u"in/disc1/cut.m4a"_s)});
    EXPECT_EQ(quiet.exitStatus, 1);
    EXPECT_TRUE(quiet.errors.startsWith("nurv: " + folder.path(u"in/disc1/cut.m4a"_s).toUtf8() + ": damaged: "));
    EXPECT_EQ(jsonLines(quiet.output).last()[u"refused"_s].toArray().size(), 1);
}

TEST(InputFiles, NamesTellSeveralGivenFoldersApart)
{
    const TestFolder folder;
    writeFlac(folder.path(u"disc1/a.flac"_s), {.seconds = 0.1});
    writeFlac(folder.path(u"disc2/a.flac"_s), {.seconds = 0.1});
    folder.write(u"disc2/notes.txt"_s, "text");
    const ProgramResult result =
        runProgram(u"env"_s, {u"-C"_s, folder.path(), nurvPath(), u"decode"_s, u"--beside-source"_s, u"--jobs=1"_s,
                              u"disc1"_s, u"disc2/"_s});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_TRUE(result.errors.startsWith("nurv: disc2/notes.txt: skipped, not of a kind that this command takes\n"
                                         "disc1/a.flac: Complete\ndisc2/a.flac: Complete\n2 of 2 done; "))
        << result.errors.constData();
}

TEST(InputFiles, AMissingFileIsToldAndTheOthersAreWorkedOn)
{
    const TestFolder folder;
    const QString flac = writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1});
    const ProgramResult result = runNurv({u"decode"_s, u"--beside-source"_s, folder.path(u"b.flac"_s), flac});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("b.flac: No such file or directory\n")) << result.errors.constData();
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST(InputFiles, NothingToDoGivesStatus1AndSaysSo)
{
    const TestFolder folder;
    const ProgramResult result = runNurv({u"decode"_s, u"--beside-source"_s, folder.path()});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.errors, "nurv: there is nothing to do: no file was found that can be worked on\n");
    const ProgramResult json = runNurv({u"decode"_s, u"--json"_s, u"--beside-source"_s, folder.path()});
    ASSERT_EQ(jsonLines(json.output).size(), 1);
    EXPECT_EQ(jsonLines(json.output)[0][u"jobs"_s], 0);
}

TEST(InputFiles, NamesThatAreNotUtf8AreToldWhereverTheyStand)
{
    const TestFolder folder;
    const ProgramResult result =
        runProgram(u"bash"_s, {u"-c"_s,
                               u"mkdir \"$1/sub\"; touch \"$1\"/$'x\\xff.flac' \"$1\"/sub/$'y\\xfe.flac'; "
                               "\"$0\" decode --beside-source \"$1\"/$'x\\xff.flac' \"$1/sub\"; status=$?; "
                               "rm -r \"$1\"/*; exit $status"_s,
                               nurvPath(), folder.path()});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("/x\\xFF.flac: the name is not valid UTF-8\n")) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("y\\xFE.flac: the name is not valid UTF-8\n")) << result.errors.constData();
}

TEST(InputFiles, AnEmptyNameIsToldAsWhatItIs)
{
    const TestFolder folder;
    const ProgramResult result = runNurv({u"decode"_s, u"--beside-source"_s, QString()});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.startsWith("nurv: an empty name stands for no file\n")) << result.errors.constData();
}

TEST(InputFiles, TwoDashesEndTheOptions)
{
    const TestFolder folder;
    writeFlac(folder.path(u"--odd.flac"_s), {.seconds = 0.1});
    const ProgramResult result = runProgram(
        u"env"_s, {u"-C"_s, folder.path(), nurvPath(), u"decode"_s, u"--beside-source"_s, u"--"_s, u"--odd.flac"_s});
    EXPECT_EQ(result.exitStatus, 0) << result.errors.constData();
    EXPECT_TRUE(folder.exists(u"--odd.wav"_s));
}

TEST(InputFiles, APipeIsRefusedWithoutBeingOpened)
{
    const TestFolder folder;
    ASSERT_EQ(runProgram(u"mkfifo"_s, {folder.path(u"a.flac"_s)}).exitStatus, 0);
    const ProgramResult result = runNurv({u"decode"_s, u"--beside-source"_s, folder.path(u"a.flac"_s)});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.errors.contains("a.flac: it is no regular file\n")) << result.errors.constData();
}

TEST(InputFiles, EachFileIsLookedAtOnce)
{
    const TestFolder folder;
    const QString named = writeByFfmpeg(folder.path(u"named.m4a"_s), {.seconds = 0.1}, {u"-c:a"_s, u"alac"_s});
    const QString lossless = writeByFfmpeg(folder.path(u"in/a.m4a"_s), {.seconds = 0.1}, {u"-c:a"_s, u"alac"_s});
    const QString lossy = writeByFfmpeg(folder.path(u"in/b.m4a"_s), {.seconds = 0.1}, {u"-c:a"_s, u"aac"_s});
    const QString damaged = folder.write(u"in/c.m4a"_s, "x");
    const QString wav = folder.write(u"in/d.wav"_s, "x");
    const QString note = folder.write(u"in/note.txt"_s, "x");
    TestApplication application({u"encode"_s});
    const FileLooks looks;
    const nurv::InputFiles input = nurv::collectInput(
        {QFile::encodeName(named), QFile::encodeName(folder.path(u"in"_s))}, application.controller.arrivals(),
        {.label = u"encode"_s, .door = nurv::Door::CommandLine, .paths = {}});
    EXPECT_EQ(input.intake.accepted.size(), 3);
    EXPECT_EQ(input.refusals, QStringList{u"c.m4a: damaged: no sound can be found in it"_s.prepend(folder.path(u"in/"_s))});
    EXPECT_EQ(input.skipped.size(), 2);
    for (const QString &path : {named, lossless, lossy, damaged, wav, note})
        EXPECT_EQ(looks.stats(path), 1) << qPrintable(path);
    for (const QString &path : {named, lossless, lossy, damaged})
        EXPECT_EQ(looks.opens(path), 1) << qPrintable(path);
    for (const QString &path : {wav, note})
        EXPECT_EQ(looks.opens(path), 0) << qPrintable(path);
}

TEST(InputFiles, AnAbsolutePathKeepsLinksButNotInFrontOfTwoDots)
{
    const TestFolder folder;
    folder.makeFolder(u"real/deep"_s);
    const QString link = folder.makeLink(u"link"_s, folder.path(u"real/deep"_s));
    EXPECT_EQ(nurv::absolutePath(link + u"/a.wav"_s), link + u"/a.wav"_s);
    EXPECT_EQ(nurv::absolutePath(link + u"/../a.wav"_s), folder.path(u"real/a.wav"_s));
    EXPECT_EQ(nurv::absolutePath(u"./b//c.wav"_s), QDir::currentPath() + u"/b/c.wav"_s);
    EXPECT_EQ(nurv::absolutePath(u":a.wav"_s), QDir::currentPath() + u"/:a.wav"_s);
    EXPECT_EQ(nurv::absolutePath(link + u"/..a.wav"_s), link + u"/..a.wav"_s);
}
