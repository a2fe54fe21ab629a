// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/NURVController.h"

#include "app/RawNamedFile.h"
#include "app/TestApplication.h"
#include "settings/SettingsStore.h"
#include "support/AudioFixtures.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv {

namespace {

void expectMessage(test::TestApplication &application, const QString &kinds)
{
    application.prompts.expectAsk({.title = u"Some files are of kinds that no tab takes and were skipped"_s,
                                   .message = kinds,
                                   .buttons = {u"OK"_s}},
                                  u"OK"_s);
}

class Routing : public ::testing::Test {
protected:
    [[nodiscard]] QStringList listOf(const QString &label) { return application.tab(label).fileNames(); }

    // What the page lists after these files have come while it was showing.
    [[nodiscard]] QStringList takenBy(const QString &label, const QStringList &paths)
    {
        controller.selectTab(label);
        controller.openFiles(paths);
        EXPECT_EQ(controller.selectedTabViewItem(), label);
        return listOf(label);
    }

    void expectMessageOfKinds(const QString &kinds) { expectMessage(application, kinds); }

    test::TestApplication application;
    NURVController &controller = application.controller;
    test::TestFolder folder;
};

} // namespace

TEST_F(Routing, GivesTheShownPageTheFilesOfAFolderThatItTakes)
{
    const QString one = folder.write(u"a.flac"_s, "x");
    const QString two = folder.write(u"disc/deep/b.SHN"_s, "x");
    folder.write(u"c.wav"_s, "x");
    folder.write(u".DS_Store"_s, "x");
    folder.write(u"disc/.TOC.plist"_s, "x");
    EXPECT_THAT(takenBy(u"decode"_s, {folder.path()}), ElementsAre(one, two));
}

TEST_F(Routing, DropsFilesOfOtherTypesWithoutAMessage)
{
    EXPECT_THAT(takenBy(u"decode"_s, {u"/a.txt"_s, u"/b.wav"_s, u"/bonus"_s}), IsEmpty());
    EXPECT_THAT(application.prompts.shownAlerts(), IsEmpty());
}

TEST_F(Routing, GoesByTheNameWhateverTheFileHolds)
{
    const QString wav = folder.write(u"x.dat"_s, test::wavBytes({.seconds = 0.1}));
    EXPECT_THAT(takenBy(u"encode"_s, {wav}), IsEmpty());
}

TEST_F(Routing, GivesEveryPageWhatItsListHolds)
{
    const QStringList all{u"/1.flac"_s, u"/2.m4a"_s, u"/3.mp3"_s, u"/4.wav"_s, u"/5.md5"_s};
    EXPECT_THAT(takenBy(u"decode"_s, all), ElementsAre(u"/1.flac"_s, u"/2.m4a"_s));
    EXPECT_THAT(takenBy(u"encode"_s, all), ElementsAre(u"/1.flac"_s, u"/4.wav"_s));
    EXPECT_THAT(takenBy(u"shntool"_s, all), ElementsAre(u"/1.flac"_s, u"/4.wav"_s));
    EXPECT_THAT(takenBy(u"fix SBE"_s, all), ElementsAre(u"/1.flac"_s, u"/4.wav"_s));
    EXPECT_THAT(takenBy(u"lossy"_s, all), ElementsAre(u"/1.flac"_s, u"/4.wav"_s));
    EXPECT_THAT(takenBy(u"Tags"_s, all), ElementsAre(u"/1.flac"_s, u"/2.m4a"_s, u"/3.mp3"_s));
}

TEST_F(Routing, GivesTheUtilAndChecksumPagesEveryFile)
{
    const QStringList all{u"/image.jpg"_s, u"/noextension"_s, u"/song.flac"_s};
    EXPECT_EQ(takenBy(u"util"_s, all), all);
    EXPECT_EQ(takenBy(u"checksum"_s, all), all);
}

TEST_F(Routing, GivesTheEncodePageAnM4aFileOnlyWhenItHoldsAppleLossless)
{
    const QString lossless =
        test::writeByFfmpeg(folder.path(u"lossless.m4a"_s), {.seconds = 0.2}, {u"-c:a"_s, u"alac"_s});
    const QString lossy = test::writeByFfmpeg(folder.path(u"lossy.m4a"_s), {.seconds = 0.2}, {u"-c:a"_s, u"aac"_s});
    EXPECT_THAT(takenBy(u"encode"_s, {lossy, lossless}), ElementsAre(lossless));
    EXPECT_THAT(takenBy(u"lossy"_s, {lossy, lossless}), IsEmpty());
}

TEST_F(Routing, SkipsWhatFileBrowsersLeaveBehindAlsoWhenItIsGiven)
{
    EXPECT_THAT(takenBy(u"util"_s, {u"/disc/.DS_Store"_s, u"/disc/.TOC.plist"_s}), IsEmpty());
}

TEST_F(Routing, SendsEachFileFromTheAboutPageToTheTabOfItsExtension)
{
    struct Route {
        QString tab;
        QString shown;
    };
    const Route toDecode{u"decode"_s, u"decode"_s};
    const Route toEncode{u"encode"_s, u"encode"_s};
    const Route toChecksum{u"checksum"_s, u"checksum"_s};
    const Route nowhere{QString(), u"encode"_s};
    const std::map<QString, Route> routes{
        {u"FLAC"_s, toDecode}, {u"SHN"_s, toDecode},    {u"WV"_s, toDecode},    {u"TTA"_s, toDecode},
        {u"M4A"_s, toDecode},  {u"APE"_s, toDecode},    {u"WAV"_s, toEncode},   {u"AIF"_s, toEncode},
        {u"AIFF"_s, toEncode}, {u"MD5"_s, toChecksum},  {u"FFP"_s, toChecksum}, {u"TXT"_s, toChecksum},
        {u"ST5"_s, toChecksum}, {u"MP3"_s, nowhere},    {u"JPG"_s, nowhere},    {u""_s, nowhere},
    };
    for (const auto &[extension, route] : routes) {
        const QString path = u"/music/file."_s + extension.toLower();
        controller.selectTab(NURVController::kAboutLabel);
        if (route.tab.isEmpty())
            expectMessageOfKinds(extension.isEmpty() ? u"file."_s : extension);
        controller.addFiles({path});
        EXPECT_EQ(controller.selectedTabViewItem(), route.shown) << qPrintable(extension);
        for (const QString &label : controller.pageLabels().first(8)) {
            const QStringList expected = label == route.tab ? QStringList{path} : QStringList();
            EXPECT_EQ(listOf(label), expected) << qPrintable(extension + u" on "_s + label);
            application.tab(label).clearFiles();
        }
    }
}

TEST_F(Routing, NamesTheKindsThatNoPageTakesInOneMessage)
{
    controller.selectTab(NURVController::kAboutLabel);
    expectMessageOfKinds(u"JPG, LOG, PDF"_s);
    controller.addFiles({u"/a.wav"_s, u"/b.pdf"_s, u"/c.log"_s, u"/d.pdf"_s, u"/e.jpg"_s});
    EXPECT_THAT(listOf(u"encode"_s), ElementsAre(u"/a.wav"_s));
    SettingsStore::instance().setValue(u"warnOnFilesSkipped"_s, false);
    controller.selectTab(NURVController::kAboutLabel);
    controller.addFiles({u"/b.pdf"_s});
    SettingsStore::instance().remove(u"warnOnFilesSkipped"_s);
}

TEST_F(Routing, ShowsThePageOfTheLastFileFromTheAboutPage)
{
    controller.selectTab(NURVController::kAboutLabel);
    controller.addFiles({u"/a.wav"_s, u"/b.txt"_s, u"/c.flac"_s, u"/d.wav"_s, u"/e.txt"_s});
    EXPECT_EQ(controller.selectedTabViewItem(), u"checksum"_s);
    EXPECT_THAT(listOf(u"encode"_s), ElementsAre(u"/a.wav"_s, u"/d.wav"_s));
    EXPECT_THAT(listOf(u"decode"_s), ElementsAre(u"/c.flac"_s));
    EXPECT_THAT(listOf(u"checksum"_s), ElementsAre(u"/b.txt"_s, u"/e.txt"_s));
    EXPECT_EQ(application.tab(u"checksum"_s).displayRequests, 1);
}

TEST_F(Routing, SearchesFoldersFromTheAboutPage)
{
    const QString path = folder.write(u"deep/a.flac"_s, "x");
    folder.write(u".DS_Store"_s, "x");
    controller.selectTab(NURVController::kAboutLabel);
    controller.addFiles({folder.path()});
    EXPECT_THAT(listOf(u"decode"_s), ElementsAre(path));
    EXPECT_EQ(controller.selectedTabViewItem(), u"decode"_s);
}

TEST_F(Routing, StaysOnTheAboutPageWhenNothingComes)
{
    controller.selectTab(NURVController::kAboutLabel);
    controller.addFiles({});
    controller.addFiles({folder.path()});
    EXPECT_EQ(controller.selectedTabViewItem(), u"about"_s);
}

TEST_F(Routing, NamesFilesThatCannotBeReadFromEveryPage)
{
    const test::RawNamedFile bad(folder, "caf\xE9.flac");
    const Alert alert{.title = u"Some files could not be read and were skipped"_s,
                      .message = u"File names that are not valid UTF-8:\n"_s + folder.path(u"caf\\xE9.flac"_s),
                      .buttons = {u"OK"_s}};
    for (const QString &label : {u"decode"_s, u"util"_s, u"about"_s}) {
        application.prompts.expectAsk(alert, u"OK"_s);
        controller.selectTab(label);
        controller.addFiles({folder.path()});
        EXPECT_EQ(application.prompts.unaskedCount(), 0) << qPrintable(label);
    }
}

TEST(RoutingAtTheStart, ChoosesAPageThatTakesOneOfTheFiles)
{
    test::TestApplication application({u"decode"_s, u"encode"_s, u"checksum"_s, u"util"_s});
    const NURVController &controller = application.controller;
    const test::TestFolder folder;
    const QString wav = folder.write(u"a.wav"_s, "x");
    const QString flac = folder.write(u"b.flac"_s, "x");
    const QString list = folder.write(u"c.md5"_s, "x");
    EXPECT_EQ(controller.selectedTabViewItem(), u"decode");
    EXPECT_EQ(controller.pageFor({}), u"decode");
    EXPECT_EQ(controller.pageFor({flac}), u"decode");
    EXPECT_EQ(controller.pageFor({wav}), u"encode");
    EXPECT_EQ(controller.pageFor({wav, flac}), u"decode") << "the one that shows takes one of them";
    EXPECT_EQ(controller.pageFor({list}), u"checksum");
    EXPECT_EQ(controller.pageFor({folder.path(), folder.makeLink(u"link.wav"_s, wav), folder.path(u"gone.wav"_s)}),
              u"decode");
    EXPECT_EQ(controller.pageFor({folder.write(u"d.jpg"_s, "x")}), u"checksum") << "which takes all";
}

TEST(RoutingWithoutTabs, AddsNothingAndKeepsThePageExceptForUnknownTypes)
{
    test::TestApplication application({u"decode"_s});
    NURVController &controller = application.controller;
    controller.selectTab(NURVController::kAboutLabel);
    expectMessage(application, u"MD5, WAV"_s);
    controller.addFiles({u"/a.wav"_s, u"/list.md5"_s});
    EXPECT_EQ(controller.selectedTabViewItem(), u"about"_s);
    expectMessage(application, u"WAV"_s);
    controller.addFiles({u"/a.flac"_s, u"/b.wav"_s});
    EXPECT_EQ(controller.selectedTabViewItem(), u"decode"_s);
    EXPECT_THAT(application.tab(u"decode"_s).fileNames(), ElementsAre(u"/a.flac"_s));
    controller.selectTab(NURVController::kAboutLabel);
    expectMessage(application, u"JPG"_s);
    controller.addFiles({u"/image.jpg"_s});
    EXPECT_EQ(controller.selectedTabViewItem(), u"encode"_s);
    controller.addFiles({u"/b.wav"_s});
}

} // namespace nurv
