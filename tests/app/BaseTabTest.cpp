// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BaseTab.h"

#include "app/FileArrivals.h"
#include "app/PathNames.h"
#include "app/RawNamedFile.h"
#include "app/TestApplication.h"
#include "process/ResourceFolder.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"
#include "support/WaitUntil.h"
#include "toolbox/Toolbox.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <thread>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

namespace nurv {

namespace {

const QString kNothingSupported = u"File types not supported by this tab"_s;
const QString kSomeSkipped = u"Some files types were not recognized by this tab and were skipped"_s;
const QString kSomeUnreadable = u"Some files could not be read and were skipped"_s;
const QStringList kOk{u"OK"_s};

class BaseTabTest : public ::testing::Test {
protected:
    [[nodiscard]] QStringList listedNames() const
    {
        QStringList names;
        for (const QString &path : decode.fileNames())
            names.append(lastPathComponent(path));
        return names;
    }

    test::TestApplication application;
    test::ScriptedPrompts &prompts = application.prompts;
    test::CountingTab &decode = application.tab(u"decode"_s);
    test::TestFolder folder;
};

} // namespace

TEST_F(BaseTabTest, KnowsItsLabelItsControllerAndTheToolFolder)
{
    EXPECT_EQ(decode.label(), u"decode"_s);
    EXPECT_EQ(&decode.nurvController(), &application.controller);
    EXPECT_EQ(application.controller.tab(u"decode"_s), &decode);
    EXPECT_EQ(decode.pathToCommandLineTools(), pathToCommandLineTools());
    EXPECT_TRUE(decode.usesTableViewContextMenu());
    EXPECT_THAT(decode.fileNames(), IsEmpty());
}

TEST_F(BaseTabTest, IsToldWhichRowsAreSelectedUntilTheListChanges)
{
    decode.addMatchedFiles({folder.path(u"a.flac"_s), folder.path(u"b.flac"_s), folder.path(u"c.flac"_s)});
    EXPECT_THAT(decode.selectedRows(), IsEmpty());
    decode.setSelectedRows({2, 0, 2, 3, -1});
    EXPECT_THAT(decode.selectedRows(), ElementsAre(0, 2));
    decode.deleteSelectedRows({0});
    EXPECT_THAT(decode.selectedRows(), IsEmpty());
    for (const std::function<void()> &change :
         {std::function<void()>([this] { decode.addMatchedFiles({folder.path(u"a.flac"_s)}); }),
          std::function<void()>([this] { decode.filterGivenExtension(u"other"_s); }),
          std::function<void()>([this] { decode.clearFiles(); })}) {
        decode.setSelectedRows({1});
        EXPECT_THAT(decode.selectedRows(), ElementsAre(1));
        change();
        EXPECT_THAT(decode.selectedRows(), IsEmpty());
    }
}

TEST_F(BaseTabTest, HasOneColumnUnlessItSaysMore)
{
    EXPECT_EQ(decode.columnTitles(), QStringList{u"Name"_s});
}

TEST_F(BaseTabTest, NeedsNoProgramsOfItsOwn)
{
    EXPECT_THAT(decode.neededPrograms().launched, IsEmpty());
    EXPECT_THAT(decode.neededPrograms().helpers, IsEmpty());
}

TEST_F(BaseTabTest, KeepsOneEntryOfAFileAddedTwice)
{
    const QString path = folder.write(u"a.flac"_s, "x");
    decode.addFile(path);
    decode.addFile(path);
    decode.addFiles({path, path, folder.path()});
    EXPECT_THAT(decode.fileNames(), ElementsAre(path));
}

TEST_F(BaseTabTest, KeepsOneEntryOfAFileThatIsWrittenInTwoWays)
{
    const QString path = folder.write(u"disc/a.flac"_s, "x");
    const QStringList ways{path, folder.path(u"disc//a.flac"_s), folder.path(u"./disc/../disc/a.flac"_s)};
    decode.addFiles(ways);
    EXPECT_THAT(decode.fileNames(), ElementsAre(path));
    application.controller.addFiles(ways);
    EXPECT_THAT(decode.fileNames(), ElementsAre(path));
}

TEST_F(BaseTabTest, AnnouncesAFileOnlyWhenItIsNew)
{
    int changes = 0;
    QObject::connect(&decode, &BaseTab::fileNamesChanged, &decode, [&] { ++changes; });
    decode.addFile(u"/music/a.flac"_s);
    decode.addFile(u"/music/a.flac"_s);
    EXPECT_EQ(decode.additions, 1);
    EXPECT_EQ(changes, 1);
    decode.addFiles({u"/music/a.flac"_s});
    EXPECT_EQ(decode.additions, 2);
    EXPECT_EQ(changes, 2);
}

TEST_F(BaseTabTest, AddsASingleFileWithoutAskingWhetherItIsValid)
{
    decode.addFile(u"/music/readme.txt"_s);
    EXPECT_THAT(decode.fileNames(), ElementsAre(u"/music/readme.txt"_s));
}

TEST_F(BaseTabTest, ListsTheFilesOfAFolderLikeAFileBrowser)
{
    for (const QString &name : {u"b10.flac"_s, u"b2.flac"_s, u".DS_Store"_s, u"A1.flac"_s, u"a02.flac"_s, u"sub/z.flac"_s})
        folder.write(name, "x");
    decode.addFiles({folder.path()});
    EXPECT_THAT(listedNames(), ElementsAre(u"A1.flac"_s, u"a02.flac"_s, u"b2.flac"_s, u"b10.flac"_s, u"z.flac"_s));
}

TEST_F(BaseTabTest, StaysSortedAfterEveryChange)
{
    decode.addFile(u"/music/track 10.flac"_s);
    decode.addFile(u"/music/track 2.flac"_s);
    decode.addFiles({u"/music/Track 1.flac"_s});
    EXPECT_THAT(listedNames(), ElementsAre(u"Track 1.flac"_s, u"track 2.flac"_s, u"track 10.flac"_s));
    decode.deleteSelectedRows({1});
    EXPECT_THAT(listedNames(), ElementsAre(u"Track 1.flac"_s, u"track 10.flac"_s));
}

TEST_F(BaseTabTest, KeepsBothFormsOfAnAccentedNameInAFixedOrder)
{
    const QString composed = folder.write(u"caf\u00E9.flac"_s, "1");
    const QString decomposed = folder.write(u"cafe\u0301.flac"_s, "2");
    decode.addFiles({composed, decomposed});
    const QStringList order = decode.fileNames();
    EXPECT_THAT(order, UnorderedElementsAre(composed, decomposed));
    decode.clearFiles();
    decode.addFiles({decomposed, composed});
    EXPECT_EQ(decode.fileNames(), order);
}

TEST_F(BaseTabTest, MakesRelativePathsAbsolute)
{
    decode.addFiles({u"a.flac"_s});
    ASSERT_EQ(decode.fileNames().size(), 1);
    EXPECT_TRUE(decode.fileNames().first().startsWith(u'/'));
}

TEST_F(BaseTabTest, TellsThatNothingIsSupported)
{
    prompts.expectAsk(kNothingSupported, kOk, u"OK"_s);
    decode.addFiles({folder.write(u"a.txt"_s, "x"), folder.write(u"b.jpg"_s, "x")});
    EXPECT_THAT(decode.fileNames(), IsEmpty());
    EXPECT_EQ(decode.additions, 1);
}

TEST_F(BaseTabTest, TellsThatSomeFilesWereSkipped)
{
    prompts.expectAsk(kSomeSkipped, kOk, u"OK"_s);
    decode.addFiles({folder.write(u"a.txt"_s, "x"), folder.write(u"b.flac"_s, "x")});
    EXPECT_THAT(listedNames(), ElementsAre(u"b.flac"_s));
}

TEST_F(BaseTabTest, SpeaksOfSomeFilesWhenTheListHoldsOlderOnes)
{
    decode.addFile(u"/music/a.flac"_s);
    prompts.expectAsk(kSomeSkipped, kOk, u"OK"_s);
    decode.addFiles({folder.write(u"a.txt"_s, "x")});
}

TEST_F(BaseTabTest, TellsOfRefusedFilesInFolders)
{
    folder.write(u"sub/a.txt"_s, "x");
    prompts.expectAsk(kNothingSupported, kOk, u"OK"_s);
    decode.addFiles({folder.path()});
}

TEST_F(BaseTabTest, CountsWhatFileBrowsersLeaveBehindAsRefusedWhereItsTypeIs)
{
    folder.write(u"a.flac"_s, "x");
    folder.write(u".TOC.plist"_s, "x");
    prompts.expectAsk(kSomeSkipped, kOk, u"OK"_s);
    decode.addFiles({folder.path()});
    EXPECT_THAT(listedNames(), ElementsAre(u"a.flac"_s));

    folder.remove(u".TOC.plist"_s);
    folder.write(u".DS_Store"_s, "x");
    test::CountingTab &tags = application.tab(u"Tags"_s);
    prompts.expectAsk(kSomeSkipped, kOk, u"OK"_s);
    tags.addFiles({folder.path()});
    EXPECT_EQ(tags.fileNames().size(), 1);
}

TEST_F(BaseTabTest, DropsRefusedFilesSilentlyWhenTheUserWantsNoMessage)
{
    const test::SettingForTest off(u"warnOnFilesSkipped"_s, false);
    decode.addFiles({folder.write(u"a.txt"_s, "x"), folder.write(u"b.flac"_s, "x")});
    EXPECT_THAT(listedNames(), ElementsAre(u"b.flac"_s));
    EXPECT_THAT(prompts.shownAlerts(), IsEmpty());
}

TEST_F(BaseTabTest, TellsOfFoldersBehindLinksOnlyWhenTheUserWantsToHearOfSkippedFiles)
{
    const test::TestFolder elsewhere;
    folder.write(u"in/b.flac"_s, "x");
    const QString link = folder.makeLink(u"in/disc"_s, elsewhere.path());
    {
        const test::SettingForTest off(u"warnOnFilesSkipped"_s, false);
        decode.addFiles({folder.path(u"in"_s)});
        application.controller.selectTab(NURVController::kAboutLabel);
        application.controller.openFiles({folder.path(u"in"_s)});
    }
    EXPECT_THAT(prompts.shownAlerts(), IsEmpty());
    prompts.expectAsk({.title = u"Some files were skipped"_s,
                       .message = u"Links to folders, which are not followed:\n"_s + link,
                       .buttons = kOk},
                      u"OK"_s);
    decode.addFiles({folder.path(u"in"_s)});
}

TEST_F(BaseTabTest, TellsHalfASecondAfterTheDrop)
{
    decode.setRefusalMessageDelay(500);
    QElapsedTimer sinceDrop;
    sinceDrop.start();
    decode.addFiles({folder.write(u"a.txt"_s, "x")});
    EXPECT_EQ(prompts.shownAlerts().size(), 0);
    prompts.expectAsk(kNothingSupported, kOk, u"OK"_s);
    EXPECT_TRUE(test::waitUntil([&] { return prompts.unaskedCount() == 0; }));
    EXPECT_GE(sinceDrop.elapsed(), 475); // a coarse timer may come five in a hundred early
}

TEST_F(BaseTabTest, SaysNothingMoreOnceTheTabIsGone)
{
    {
        test::CountingTab tab(application.controller, u"another"_s);
        tab.setRefusalMessageDelay(1);
        FileIntake intake;
        intake.refused = {{.path = u"/a.txt"_s}};
        tab.addCollected(intake);
    }
    QElapsedTimer waited;
    waited.start();
    EXPECT_TRUE(test::waitUntil([&] { return waited.elapsed() > 50; }));
}

TEST_F(BaseTabTest, NamesWhatItCannotReadWhateverTheSettingSays)
{
    const test::SettingForTest off(u"warnOnFilesSkipped"_s, false);
    const test::RawNamedFile bad(folder, "caf\xE9.flac");
    const Alert expected{.title = kSomeUnreadable,
                         .message = u"File names that are not valid UTF-8:\n"_s + folder.path(u"caf\\xE9.flac"_s),
                         .buttons = kOk};
    prompts.expectAsk(expected, u"OK"_s);
    decode.addFiles({folder.path()});
    EXPECT_THAT(decode.fileNames(), IsEmpty());
}

TEST_F(BaseTabTest, AddsTheSameWhetherItCollectsOnAnotherThreadOrNot)
{
    folder.write(u"one/b.flac"_s, "x");
    folder.write(u"one/two/a.FLAC"_s, "x");
    folder.write(u"x.dat"_s, "no audio");
    const QStringList given{folder.path(), u"/gone/c.wv"_s};
    FileIntake intake;
    std::thread([&] {
        intake = application.controller.arrivals().search({.label = u"decode"_s, .door = Door::List, .paths = given});
    }).join();
    prompts.expectAsk(kSomeSkipped, kOk, u"OK"_s);
    decode.addCollected(intake);
    const QStringList collected = decode.fileNames();
    EXPECT_EQ(collected.size(), 3);

    decode.clearFiles();
    prompts.expectAsk(kSomeSkipped, kOk, u"OK"_s);
    decode.addFiles(given);
    EXPECT_EQ(decode.fileNames(), collected);
}

TEST_F(BaseTabTest, AddsTheFilesThatTheAddButtonChose)
{
    prompts.expectFilesToAdd(decode.nurvController(), u"decode"_s, {u"/music/b.flac"_s, u"/music/a.flac"_s});
    decode.addButtonClick();
    EXPECT_THAT(listedNames(), ElementsAre(u"a.flac"_s, u"b.flac"_s));

    prompts.expectFilesToAdd(decode.nurvController(), u"decode"_s, {});
    decode.addButtonClick();
    EXPECT_EQ(decode.additions, 1);
}

TEST_F(BaseTabTest, ClearsItsListAndTakesTheFilesAgain)
{
    int changes = 0;
    decode.addFile(u"/music/a.flac"_s);
    QObject::connect(&decode, &BaseTab::fileNamesChanged, &decode, [&] { ++changes; });
    decode.clearButtonClick();
    EXPECT_THAT(decode.fileNames(), IsEmpty());
    EXPECT_EQ(changes, 1);
    decode.addFile(u"/music/a.flac"_s);
    EXPECT_EQ(decode.fileNames().size(), 1);
}

TEST_F(BaseTabTest, OffersEveryFormOfAnExtensionOnce)
{
    for (const QString &name : {u"/a.flac"_s, u"/c.flac"_s, u"/b.FLAC"_s, u"/d.wv"_s, u"/bonus"_s})
        decode.addFile(name);
    EXPECT_THAT(decode.listedExtensions(), UnorderedElementsAre(u"flac"_s, u"FLAC"_s, u"wv"_s));
}

TEST_F(BaseTabTest, TakesAnExtensionOffTheListByItsExactForm)
{
    int changes = 0;
    decode.addFile(u"/a.flac"_s);
    decode.addFile(u"/b.FLAC"_s);
    QObject::connect(&decode, &BaseTab::fileNamesChanged, &decode, [&] { ++changes; });
    decode.filterGivenExtension(u"flac"_s);
    EXPECT_THAT(decode.fileNames(), ElementsAre(u"/b.FLAC"_s));
    EXPECT_EQ(changes, 1);
    decode.addFile(u"/a.flac"_s);
    EXPECT_EQ(decode.fileNames().size(), 2);
}

TEST_F(BaseTabTest, TakesSelectedRowsOffTheList)
{
    for (const QString &name : {u"/1.flac"_s, u"/2.flac"_s, u"/3.flac"_s, u"/4.flac"_s})
        decode.addFile(name);
    decode.deleteSelectedRows({3, 0, 0, -1, 4});
    EXPECT_THAT(decode.fileNames(), ElementsAre(u"/2.flac"_s, u"/3.flac"_s));
    decode.addFile(u"/1.flac"_s);
    EXPECT_EQ(decode.fileNames().size(), 3);
    decode.deleteSelectedRows({});
    EXPECT_EQ(decode.fileNames().size(), 3);
}

TEST_F(BaseTabTest, AsksForTheOutputFolder)
{
    prompts.expectFolder({.title = u"Choose output directory"_s, .buttonText = {}}, u"/out"_s);
    EXPECT_EQ(decode.chooseOutputFolder(), u"/out"_s);
    prompts.expectOutputFolder(std::nullopt);
    EXPECT_EQ(decode.chooseOutputFolder(), std::nullopt);
}

TEST_F(BaseTabTest, AsksWhereToSave)
{
    prompts.expectSavePath(u"list.md5"_s, u"Save"_s, u"/out/list.md5"_s);
    EXPECT_EQ(decode.openSavePanel(u"list.md5"_s, u"Save"_s), u"/out/list.md5"_s);
    prompts.expectSavePath(u"list.md5"_s, std::nullopt, std::nullopt);
    EXPECT_EQ(decode.openSavePanel(u"list.md5"_s, std::nullopt), std::nullopt);
}

TEST(BaseTabPrompts, GetNoFolderFromAChooserThatFails)
{
    class FailingPrompts final : public UserPrompts {
    public:
        QString ask(const Alert &) override { return {}; }
        QStringList choose(const FileChooser &) override { throw std::runtime_error("no chooser"); }
        bool runPanel(const Panel &) override { return false; }
    };
    FailingPrompts prompts;
    NullDesktopServices services;
    NURVController controller(prompts, services, toolbox());
    test::CountingTab tab(controller, u"decode"_s);
    EXPECT_EQ(tab.chooseOutputFolder(), std::nullopt);
}

TEST_F(BaseTabTest, AsksBeforeOriginalsAreDeleted)
{
    EXPECT_TRUE(decode.confirmDeletingOriginals(false));
    prompts.expectDeletionQuestion(u"Yes"_s);
    EXPECT_TRUE(decode.confirmDeletingOriginals(true));
    prompts.expectDeletionQuestion(u"No"_s);
    EXPECT_FALSE(decode.confirmDeletingOriginals(true));
}

TEST_F(BaseTabTest, AsksNothingAboutDeletingWhenTheUserWantsNoWarning)
{
    const test::SettingForTest off(u"warnOnDelete"_s, false);
    EXPECT_TRUE(decode.confirmDeletingOriginals(true));
}

TEST_F(BaseTabTest, ShowsItsOptionsAgainWhenTheUserChangesOne)
{
    decode.changeDisplayOptions();
    EXPECT_EQ(decode.displayRequests, 1);
}

} // namespace nurv
