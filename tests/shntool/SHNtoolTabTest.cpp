// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Panel.h"
#include "base/NotificationCenter.h"
#include "shntool/PreviewTask.h"
#include "shntool/SHNToolCueTask.h"
#include "shntool/SHNToolEditTask.h"
#include "shntool/SHNtoolFixture.h"
#include "shntool/SHNToolLenTask.h"
#include "shntool/SHNToolSplitTask.h"
#include "shntool/SHNToolTrimTask.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class SHNtoolTabTest : public test::SHNtoolFixture {
protected:
    SHNtoolTabTest() { queue().hold(); }

    /// A tab with that command and files of those names.
    std::unique_ptr<SHNtoolTab> makeTab(const QString &command, const QStringList &names = {u"a.wav"_s, u"b.wav"_s})
    {
        auto tab = std::make_unique<SHNtoolTab>(controller);
        EXPECT_TRUE(tab->shntoolCommandMatrix.selectTitle(command));
        QStringList paths;
        for (const QString &name : names)
            paths.append(folder.write(name, "x"));
        tab->addMatchedFiles(paths);
        return tab;
    }
    template<typename Job = NURVAsyncNSTask>
    std::shared_ptr<Job> job(std::size_t place = 0)
    {
        const auto &rows = queue().panelArray();
        return place < rows.size() ? std::dynamic_pointer_cast<Job>(rows[place]) : nullptr;
    }
    [[nodiscard]] std::size_t jobCount() { return queue().panelArray().size(); }
};

TEST_F(SHNtoolTabTest, BeginsWithLengthsAndFlac)
{
    const SHNtoolTab tab(controller);
    EXPECT_EQ(tab.label(), u"shntool");
    EXPECT_EQ(tab.shntoolCommandMatrix.titles(),
              (QStringList{u"len"_s, u"info"_s, u"cmp"_s, u"trim"_s, u"pad"_s, u"strip"_s, u"split"_s, u"join"_s, u"cue"_s}));
    EXPECT_EQ(tab.shntoolCommandMatrix.selectedTitle(), u"len");
    EXPECT_EQ(tab.shnLenMatrix.titles(),
              (QStringList{u"normal len output"_s, u"show len for fileset"_s, u"show len by disc*"_s}));
    EXPECT_EQ(tab.shnLenMatrix.selectedIndex(), 0);
    EXPECT_EQ(tab.outputFormatMatrix.titles(), (QStringList{u"SHN"_s, u"FLAC"_s, u"AIFF"_s, u"WAV"_s}));
    EXPECT_EQ(tab.outputFormatMatrix.selectedTitle(), u"FLAC");
}

TEST_F(SHNtoolTabTest, KeepsItsChoices)
{
    {
        SHNtoolTab tab(controller);
        tab.shntoolCommandMatrix.selectTitle(u"join"_s);
        tab.shnLenMatrix.setSelectedIndex(2);
        tab.outputFormatMatrix.selectTitle(u"WAV"_s);
    }
    EXPECT_EQ(SettingsStore::instance().integer(u"shntoolCommandOption"_s), 7);
    EXPECT_EQ(SettingsStore::instance().integer(u"shntoolLenOption"_s), 2);
    EXPECT_EQ(SettingsStore::instance().integer(u"shntoolOutputFormat"_s), 3);
}

TEST_F(SHNtoolTabTest, ShowsOnlyWhatTheCommandUses)
{
    SHNtoolTab tab(controller);
    struct Case {
        QString command;
        bool hasLengths;
        bool hasOutputs;
        bool canDelete;
    };
    for (const Case &one : {Case{u"len"_s, true, false, false}, Case{u"info"_s, false, false, false},
                            Case{u"cmp"_s, false, false, false}, Case{u"trim"_s, false, true, true},
                            Case{u"pad"_s, false, true, true}, Case{u"strip"_s, false, true, true},
                            Case{u"split"_s, false, true, false}, Case{u"join"_s, false, true, true},
                            Case{u"cue"_s, false, false, false}}) {
        SCOPED_TRACE(qPrintable(one.command));
        ASSERT_TRUE(tab.shntoolCommandMatrix.selectTitle(one.command));
        EXPECT_EQ(tab.shnLenMatrix.isHidden(), !one.hasLengths);
        EXPECT_TRUE(tab.namesButton.isHidden());
        EXPECT_EQ(tab.outputFormatMatrix.isHidden(), !one.hasOutputs);
        EXPECT_EQ(tab.outputFormatText.isHidden(), !one.hasOutputs);
        EXPECT_EQ(tab.sourceEncodeButton.isHidden(), !one.hasOutputs);
        EXPECT_EQ(tab.deleteOriginalsButton.isHidden(), !one.canDelete);
    }
    tab.shntoolCommandMatrix.selectTitle(u"len"_s);
    for (const int kind : {1, 2}) {
        tab.shnLenMatrix.setSelectedIndex(kind);
        EXPECT_FALSE(tab.namesButton.isHidden());
    }
}

TEST_F(SHNtoolTabTest, DoesNothingWithoutFiles)
{
    SHNtoolTab tab(controller);
    tab.executeCommand();
    EXPECT_EQ(jobCount(), 0U);
}

TEST_F(SHNtoolTabTest, AsksBeforeOriginalsGoAndKeepsTheListOnNo)
{
    set(u"warnOnDelete", true);
    const auto tab = makeTab(u"join"_s);
    tab->deleteOriginalsButton.setOn(true);
    prompts.expectDeletionQuestion(u"No"_s);
    tab->executeCommand();
    EXPECT_EQ(jobCount(), 0U);
    EXPECT_EQ(tab->fileNames().size(), 2);
    // A ticked box that does not show counts for nothing.
    tab->shntoolCommandMatrix.selectTitle(u"info"_s);
    tab->executeCommand();
    EXPECT_EQ(jobCount(), 1U);
}

TEST_F(SHNtoolTabTest, ShowsThatAReportIsInTheMaking)
{
    for (const QString &command : {u"info"_s, u"cmp"_s}) {
        SCOPED_TRACE(qPrintable(command));
        const std::size_t before = jobCount();
        makeTab(command)->executeCommand();
        ASSERT_EQ(jobCount(), before + 1);
        const auto row = job(before);
        ASSERT_NE(row, nullptr);
        const bool compares = command == u"cmp";
        EXPECT_EQ(row->title(), compares ? u"shntool compare"_s : u"Running SHNTool Info"_s);
        EXPECT_EQ(row->textField().text, compares ? u"Comparing"_s : u"Running SHNTool Info"_s);
        if (compares) {
            EXPECT_EQ(row->topTextField().text, u"Comparing");
        }
        EXPECT_TRUE(row->progressIndicator().indeterminate);
        EXPECT_TRUE(row->progressIndicator().animated);
    }
}

TEST_F(SHNtoolTabTest, MakesNoCueSheetWithoutAPath)
{
    const auto tab = makeTab(u"cue"_s);
    prompts.expectSavePath(u"cuesheet.cue"_s, u"Save CUE sheet as"_s, std::nullopt);
    tab->executeCommand();
    EXPECT_EQ(jobCount(), 0U);
    EXPECT_TRUE(tab->fileNames().isEmpty());
}

TEST_F(SHNtoolTabTest, StartsWhatDeletesOnceThatIsAgreedTo)
{
    set(u"warnOnDelete", true);
    for (const QString &command : {u"trim"_s, u"pad"_s, u"strip"_s, u"join"_s}) {
        SCOPED_TRACE(qPrintable(command));
        const std::size_t before = jobCount();
        const auto tab = makeTab(command);
        tab->deleteOriginalsButton.setOn(true);
        prompts.expectDeletionQuestion(u"Yes"_s);
        prompts.expectOutputFolder(out.path());
        tab->executeCommand();
        EXPECT_TRUE(tab->fileNames().isEmpty());
        ASSERT_EQ(jobCount(), before + (command == u"pad" || command == u"strip" ? 2 : 1));
        for (std::size_t place = before; place < jobCount(); ++place) {
            const auto edit = job<SHNToolEditTask>(place);
            ASSERT_NE(edit, nullptr);
            EXPECT_TRUE(edit->deleteOriginal());
        }
    }
}

TEST_F(SHNtoolTabTest, AsksAboutNoDeletionThatDoesNotCome)
{
    set(u"warnOnDelete", true);
    // A split keeps its source, and so does a preview.
    const auto split = makeTab(u"split"_s);
    split->deleteOriginalsButton.setOn(true);
    prompts.expectFile(
        {.title = u"Choose file with split point data"_s, .extensions = {u"cue"_s, u"txt"_s}, .option = u"points"_s},
        std::nullopt);
    split->executeCommand();
    const auto preview = makeTab(u"join"_s);
    preview->deleteOriginalsButton.setOn(true);
    preview->previewOnlyButton.setOn(true);
    prompts.expectOutputFolder(out.path());
    preview->executeCommand();
    ASSERT_EQ(jobCount(), 1U);
    EXPECT_NE(job<PreviewTask>(), nullptr);
}

TEST_F(SHNtoolTabTest, HandsEachCommandItsLine)
{
    const QString a = folder.path(u"a.wav"_s);
    const QString b = folder.path(u"b.wav"_s);
    const QString to = out.path();
    const struct {
        QString command;
        std::vector<QStringList> lines;
        QString title;
    } cases[] = {
        {u"len"_s, {{u"len"_s, a, b}}, u"Running shntool LEN"_s},
        {u"info"_s, {{u"info"_s, a, b}}, u"Running SHNTool Info"_s},
        {u"cmp"_s, {{u"cmp"_s, a, b}}, u"shntool compare"_s},
        {u"trim"_s, {{u"trim"_s, u"-d"_s, to, u"-o"_s, u"aiff"_s, u"-O"_s, u"never"_s, a, b}}, u"Running SHNTool Trim"_s},
        {u"pad"_s,
         {{u"pad"_s, u"-d"_s, to, u"-o"_s, u"aiff"_s, u"-O"_s, u"never"_s, a},
          {u"pad"_s, u"-d"_s, to, u"-o"_s, u"aiff"_s, u"-O"_s, u"never"_s, b}},
         u"Running SHNTool Pad"_s},
        {u"strip"_s,
         {{u"strip"_s, u"-d"_s, to, u"-o"_s, u"aiff"_s, u"-O"_s, u"never"_s, a},
          {u"strip"_s, u"-d"_s, to, u"-o"_s, u"aiff"_s, u"-O"_s, u"never"_s, b}},
         u"Running SHNTool Strip"_s},
        {u"join"_s, {{u"join"_s, u"-o"_s, u"aiff"_s, u"-n"_s, u"-d"_s, to, u"-O"_s, u"never"_s, a, b}}, u"Joining Files"_s},
    };
    for (const auto &[command, lines, title] : cases) {
        SCOPED_TRACE(qPrintable(command));
        const std::size_t before = jobCount();
        const auto tab = makeTab(command);
        tab->outputFormatMatrix.selectTitle(u"AIFF"_s);
        if (!tab->outputFormatMatrix.isHidden())
            prompts.expectOutputFolder(to);
        tab->executeCommand();
        EXPECT_TRUE(tab->fileNames().isEmpty());
        ASSERT_EQ(jobCount(), before + lines.size());
        for (std::size_t i = 0; i < lines.size(); ++i) {
            ASSERT_NE(job(before + i), nullptr);
            EXPECT_EQ(job(before + i)->arguments(), lines[i]);
            EXPECT_EQ(job(before + i)->launchPath(), tools.path() + u"/shntool"_s);
            EXPECT_EQ(job(before + i)->title(), title);
        }
    }
}

TEST_F(SHNtoolTabTest, WritesBesideTheFirstFile)
{
    const auto tab = makeTab(u"join"_s, {u"disc1/a.wav"_s, u"disc2/b.wav"_s});
    tab->sourceEncodeButton.setOn(true);
    tab->executeCommand();
    ASSERT_NE(job(), nullptr);
    EXPECT_EQ(job()->arguments().at(5), folder.path(u"disc1"_s));
}

TEST_F(SHNtoolTabTest, MakesNoJobWithoutAFolder)
{
    const auto tab = makeTab(u"trim"_s);
    prompts.expectOutputFolder(std::nullopt);
    tab->executeCommand();
    EXPECT_EQ(jobCount(), 0U);
    EXPECT_TRUE(tab->fileNames().isEmpty());
}

TEST_F(SHNtoolTabTest, SplitsTheFirstFileAtTheChosenPoints)
{
    const QString points = folder.write(u"points.cue"_s, "TRACK 01 AUDIO\nTITLE \"One\"\nINDEX 01 0:00:00\nTRACK 02 AUDIO\nINDEX 01 0:01:00\n");
    const auto tab = makeTab(u"split"_s);
    prompts.expectFile({.title = u"Choose file with split point data"_s, .extensions = {u"cue"_s, u"txt"_s}, .option = u"points"_s}, points);
    prompts.expectOutputFolder(out.path());
    tab->executeCommand();
    ASSERT_EQ(jobCount(), 1U);
    const auto split = job<SHNToolSplitTask>();
    ASSERT_NE(split, nullptr);
    EXPECT_EQ(split->arguments(), (QStringList{u"split"_s, u"-f"_s, points, u"-o"_s, u"flac"_s, u"-d"_s, out.path(), folder.path(u"a.wav"_s)}));
    EXPECT_EQ(split->title(), u"a.wav");
    EXPECT_EQ(split->outputPath(), out.path());
    EXPECT_EQ(split->trackTitleMap(), (QMap<QString, QString>{{u"split-track01.flac"_s, u"01 One.flac"_s},
                                                              {u"split-track02.flac"_s, u"split-track02.flac"_s}}));
}

TEST_F(SHNtoolTabTest, SaysWhyPointsCannotBeRead)
{
    const QString points = folder.write(u"points.txt"_s, "");
    const auto tab = makeTab(u"split"_s);
    prompts.expectFile({.title = u"Choose file with split point data"_s, .extensions = {u"cue"_s, u"txt"_s}, .option = u"points"_s}, points);
    prompts.expectOutputFolder(out.path());
    prompts.expectAsk({.title = u"The split points cannot be read"_s, .message = points + u": it is empty"_s, .buttons = {u"OK"_s}}, u"OK"_s);
    tab->executeCommand();
    EXPECT_EQ(jobCount(), 0U);
}

TEST_F(SHNtoolTabTest, MakesNoSplitWithoutPoints)
{
    const auto tab = makeTab(u"split"_s);
    prompts.expectFile({.title = u"Choose file with split point data"_s, .extensions = {u"cue"_s, u"txt"_s}, .option = u"points"_s}, std::nullopt);
    tab->executeCommand();
    EXPECT_EQ(jobCount(), 0U);
    EXPECT_TRUE(tab->fileNames().isEmpty());
}

TEST_F(SHNtoolTabTest, AsksWhereTheCueSheetGoes)
{
    const auto tab = makeTab(u"cue"_s);
    prompts.expectSavePath(u"cuesheet.cue"_s, u"Save CUE sheet as"_s, out.path(u"x.cue"_s));
    tab->executeCommand();
    const auto sheet = job<SHNToolCueTask>();
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(sheet->arguments(), (QStringList{u"cue"_s, u"-c"_s, folder.path(u"a.wav"_s), folder.path(u"b.wav"_s)}));
    EXPECT_EQ(sheet->title(), u"Creating CUE sheet");
    EXPECT_EQ(sheet->subTitle(), u"Processing");
    EXPECT_EQ(sheet->sourceCount(), 2);
}

TEST_F(SHNtoolTabTest, ShowsWhatItWillMakeAndStartsOnceThatIsAgreedTo)
{
    for (const bool agrees : {false, true}) {
        const auto tab = makeTab(u"strip"_s, {u"a.wav"_s});
        test::writeWav(folder.path(u"a.wav"_s), {.frames = 588});
        tab->previewButton.setOn(true);
        prompts.expectOutputFolder(out.path());
        prompts.expectPanel({.title = u"These files will be made"_s, .fields = {u"outputs"_s}, .buttons = {u"Cancel"_s, u"Start"_s}},
                            [](const Panel &panel) {
                                auto &outputs = test::fieldOf<LinesControl>(panel, u"outputs"_s);
                                EXPECT_TRUE(outputs.isReadOnly());
                                EXPECT_EQ(outputs.text(), u"a-stripped.flac  0:00.01\n");
                            },
                            agrees ? u"Start"_s : u"Cancel"_s);
        tab->executeCommand();
        EXPECT_EQ(jobCount(), agrees ? 1U : 0U);
    }
}

TEST_F(SHNtoolTabTest, DoesNothingWhenThePreviewWasGivenUp)
{
    const auto tab = makeTab(u"strip"_s, {u"a.wav"_s});
    tab->previewButton.setOn(true);
    prompts.expectOutputFolder(out.path());
    prompts.expectGivingUp(u"Looking at what will be made…"_s);
    tab->executeCommand();
    EXPECT_EQ(jobCount(), 0U);
}

TEST_F(SHNtoolTabTest, MakesNothingButAPreviewWhereOnlyThatIsWanted)
{
    const auto tab = makeTab(u"strip"_s, {u"a.wav"_s});
    tab->previewOnlyButton.setOn(true);
    prompts.expectOutputFolder(out.path());
    tab->executeCommand();
    ASSERT_EQ(jobCount(), 1U);
    EXPECT_NE(job<PreviewTask>(), nullptr);
    queue().release();
    settle();
    ASSERT_EQ(windows.size(), 1);
    EXPECT_EQ(windows.front(), u"a-stripped.flac\n\nThis would fail:\n  a.wav: its header does not tell how long it is\n\n");
    EXPECT_EQ(out.list(), QStringList());
}

TEST_F(SHNtoolTabTest, TakesTrackNamesByNotification)
{
    const SHNtoolTab tab(controller);
    const QString name = QString::fromUtf16(NURVTrackNamesEnteredNotification);
    NotificationCenter::instance().post(name, QStringList{u"Intro"_s, u"Song"_s});
    EXPECT_EQ(tab.names(), (QStringList{u"Intro"_s, u"Song"_s}));
    NotificationCenter::instance().post(name, QStringList());
    EXPECT_EQ(tab.names(), std::nullopt);
}

TEST_F(SHNtoolTabTest, ExtendsTooFewNamesByThoseOfFilesFromTheLastNamesPlaceOn)
{
    const QStringList names{u"a.wav"_s, u"b.wav"_s, u"c.wav"_s, u"d.wav"_s, u"e.wav"_s};
    const auto tab = makeTab(u"len"_s, names);
    tab->shnLenMatrix.setSelectedIndex(1);
    tab->trackNamesEntered({u"1"_s, u"2"_s, u"3"_s});
    tab->executeCommand();
    EXPECT_EQ(tab->names(), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"c.wav"_s, u"d.wav"_s, u"e.wav"_s}));
}

TEST_F(SHNtoolTabTest, FindsTheLongestName)
{
    EXPECT_EQ(SHNtoolTab::getMaxTrackNamesLength({}), 0);
    EXPECT_EQ(SHNtoolTab::getMaxTrackNamesLength({u"abc"_s, u"a"_s, u"abcd"_s}), 4);
}

TEST_F(SHNtoolTabTest, ReportsDiscsInTheOrderOfTheirNumbersAsTexts)
{
    const auto tab = makeTab(u"len"_s, {u"x10t1.wav"_s, u"xd10t01.wav"_s, u"xd1t01.wav"_s, u"xd2t01.wav"_s});
    tab->deleteSelectedRows({static_cast<int>(tab->fileNames().indexOf(folder.path(u"x10t1.wav"_s)))});
    tab->shnLenMatrix.setSelectedIndex(2);
    tab->executeCommand();
    ASSERT_EQ(jobCount(), 3U);
    for (const auto &[place, disc] : {std::pair{0, u"1"_s}, std::pair{1, u"10"_s}, std::pair{2, u"2"_s}}) {
        const auto length = job<SHNToolLenTask>(static_cast<std::size_t>(place));
        ASSERT_NE(length, nullptr);
        EXPECT_EQ(length->arguments(), (QStringList{u"len"_s, folder.path(u"xd%1t01.wav"_s.arg(disc))}));
        EXPECT_EQ(length->results(), job<SHNToolLenTask>()->results());
    }
}

TEST_F(SHNtoolTabTest, TellsWhichProgramsItsJobsStart)
{
    const auto tab = makeTab(u"join"_s);
    EXPECT_EQ(tab->neededPrograms().launched, QStringList{u"shntool"_s});
    EXPECT_EQ(tab->neededPrograms().helpers, QStringList{u"flac"_s});
    tab->outputFormatMatrix.selectTitle(u"AIFF"_s);
    EXPECT_EQ(tab->neededPrograms().helpers, QStringList{u"sox"_s});
    tab->shntoolCommandMatrix.selectTitle(u"len"_s);
    EXPECT_EQ(tab->neededPrograms().helpers, QStringList());
}

} // namespace
} // namespace nurv
