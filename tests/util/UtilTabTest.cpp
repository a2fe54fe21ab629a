// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/UtilFixture.h"

#include "app/TextControl.h"
#include "support/LogLines.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const Alert kScanQuestion{.title = u"You have chosen \"DVD Audio Disc.\" This will scan the files in the list for format "
                                   u"information. Are you sure you want to continue?"_s,
                          .message = {},
                          .buttons = {u"Yes"_s, u"No"_s}};
/// `found`: the format of the last file of a.wav and b.wav.
Alert mismatch(const QString &found)
{
    return {.title = u"The Files in the list must match in sample rate, bit depth and number of channels."_s,
            .message = u"b.wav: %1. Before it: 44100 Hz, 16 bits, 2 channels."_s.arg(found),
            .buttons = {u"OK"_s}};
}

class UtilTabTest : public test::UtilFixture {
protected:
    void choose(const QString &command) { EXPECT_TRUE(tab.utilCommandMatrix.selectTitle(command)); }
    void chooseDisc(const QString &answer = u"Yes"_s)
    {
        prompts.expectAsk(kScanQuestion, answer);
        choose(UtilTab::kDvdAudioDisc);
        prompts.verify();
    }
    [[nodiscard]] QStringList row(int place) const
    {
        QStringList texts;
        for (int column = 0; column < tab.columnTitles().size() + 1; ++column)
            texts.append(tab.columnText(place, column));
        return texts;
    }
    void expectPrefix(const std::optional<QString> &prefix)
    {
        prompts.expectPanel({.title = u"Batch Rename"_s,
                             .message = u"Enter the Prefix that you want the files to start with:"_s,
                             .fields = {u"prefix"_s}},
                            [prefix](const Panel &panel) {
                                EXPECT_EQ(test::fieldOf<TextControl>(panel, u"prefix"_s).text(), QString());
                                if (prefix)
                                    test::fieldOf<TextControl>(panel, u"prefix"_s).setText(*prefix);
                            },
                            prefix ? u"OK"_s : u"Cancel"_s);
    }
    void expectPreview(const QString &names, const QString &button)
    {
        prompts.expectPanel({.title = u"These files will be renamed"_s,
                             .fields = {u"names"_s},
                             .buttons = {u"Cancel"_s, u"Rename"_s}},
                            [names](const Panel &panel) {
                                EXPECT_EQ(test::fieldOf<LinesControl>(panel, u"names"_s).text(), names);
                            },
                            button);
    }
    QString wav(const QString &name, const test::SoundShape &shape = {})
    {
        return test::writeWav(folder.path(name), shape);
    }
};

TEST_F(UtilTabTest, DoesNothingWithoutACommandOrWithoutFiles)
{
    EXPECT_EQ(tab.command(), QString());
    EXPECT_EQ(tab.utilCommandMatrix.selectedIndex(), -1);
    tab.addMatchedFiles({u"/m/a.wav"_s});
    tab.executeCommand();
    EXPECT_EQ(tab.fileNames().size(), 1);
    for (const QString &command : {UtilTab::kReplayGain, UtilTab::kDeEmphasis, UtilTab::kBatchRename}) {
        tab.clearFiles();
        choose(command);
        tab.executeCommand();
        EXPECT_EQ(queue().taskCount(), 0);
    }
}

TEST_F(UtilTabTest, ShowsTheOptionsOfItsCommand)
{
    struct Row {
        QString command;
        bool hasGains, hasOneTrack, hasRename, hasTotals;
    };
    for (const Row &row : {Row{UtilTab::kReplayGain, true, false, false, false},
                           Row{UtilTab::kCdExtraction, false, true, false, false},
                           Row{UtilTab::kBatchRename, false, false, true, false},
                           Row{UtilTab::kDvdAudioDisc, false, false, false, true},
                           Row{UtilTab::kDeEmphasis, false, false, false, false}}) {
        SCOPED_TRACE(qPrintable(row.command));
        tab.setCommand(row.command);
        EXPECT_EQ(tab.replayGainMatrix.isHidden(), !row.hasGains);
        EXPECT_EQ(tab.oneTrackButton.isHidden(), !row.hasOneTrack);
        EXPECT_EQ(tab.renamePreviewButton.isHidden(), !row.hasRename);
        EXPECT_EQ(tab.undoRenameButton.isHidden(), !row.hasRename);
        for (const LabelControl *label : {&tab.totalTimeLabel, &tab.totalTimeField, &tab.totalSizeLabel, &tab.totalSizeField})
            EXPECT_EQ(label->isHidden(), !row.hasTotals);
    }
}

TEST_F(UtilTabTest, AsksBeforeItScansForADisc)
{
    choose(UtilTab::kReplayGain);
    chooseDisc(u"No"_s);
    EXPECT_EQ(tab.utilCommandMatrix.selectedTitle(), UtilTab::kReplayGain);
    EXPECT_EQ(tab.command(), UtilTab::kReplayGain);
    EXPECT_EQ(tab.columnTitles().size(), 1);
    chooseDisc();
    EXPECT_EQ(tab.command(), UtilTab::kDvdAudioDisc);
    EXPECT_EQ(tab.columnTitles(), (QStringList{u"fileName"_s, u"length (min)"_s, u"sample rate"_s, u"bit depth"_s}));
    choose(UtilTab::kDeEmphasis);
    EXPECT_EQ(tab.columnTitles().size(), 1);
    EXPECT_TRUE(tab.totalTimeField.isHidden());
}

TEST_F(UtilTabTest, ADeclinedFirstChoiceLeavesNone)
{
    chooseDisc(u"No"_s);
    EXPECT_EQ(tab.utilCommandMatrix.selectedIndex(), -1);
    EXPECT_EQ(tab.command(), QString());
}

TEST_F(UtilTabTest, AFurtherClickOnTheDiscDeselectsItAndNothingElse)
{
    tools.addAllReal();
    tab.addMatchedFiles({wav(u"a.wav"_s)});
    chooseDisc();
    tab.commandClick();
    EXPECT_EQ(tab.utilCommandMatrix.selectedIndex(), -1);
    EXPECT_EQ(tab.command(), QString());
    EXPECT_EQ(tab.columnTitles().size(), 4);
    EXPECT_EQ(tab.fileNames().size(), 1);
    chooseDisc();
    EXPECT_EQ(tab.command(), UtilTab::kDvdAudioDisc) << "the choice was forgotten";
    choose(UtilTab::kReplayGain);
    tab.commandClick();
    EXPECT_EQ(tab.command(), UtilTab::kReplayGain) << "of no other command";
}

TEST_F(UtilTabTest, TheChoiceRevertsAfterTheClick)
{
    tab.setRevertDelay(1);
    prompts.expectAsk(kScanQuestion, u"No"_s);
    choose(UtilTab::kDvdAudioDisc);
    EXPECT_EQ(tab.utilCommandMatrix.selectedTitle(), UtilTab::kDvdAudioDisc);
    EXPECT_TRUE(test::waitUntil([this] { return tab.utilCommandMatrix.selectedIndex() == -1; }));
}

TEST_F(UtilTabTest, TellsFormatsAndTotalsOfTheFilesOfADisc)
{
    tools.addAllReal();
    tab.addMatchedFiles({wav(u"a.wav"_s, {.rate = 48000, .bits = 24, .seconds = 65.5}),
                         test::writeFlac(folder.path(u"b.FLAC"_s), {.rate = 48000, .bits = 24, .seconds = 60.25})});
    int changes = 0;
    QObject::connect(&tab, &BaseTab::columnTextsChanged, [&changes] { ++changes; });
    chooseDisc();
    EXPECT_GT(changes, 0);
    EXPECT_EQ(row(0), (QStringList{{}, u"1:05"_s, u"48000"_s, u"24"_s, {}}));
    EXPECT_EQ(row(1), (QStringList{{}, u"1:00"_s, u"48000"_s, u"24"_s, {}}));
    EXPECT_EQ(row(2), (QStringList{{}, {}, {}, {}, {}}));
    EXPECT_EQ(tab.totalTimeField.text(), u"2:05");
    EXPECT_EQ(tab.totalSizeField.text(), u"36.22 MB");
    tab.addMatchedFiles({wav(u"c.wav"_s, {.rate = 48000, .bits = 24, .seconds = 1.0})});
    EXPECT_EQ(tab.totalTimeField.text(), u"2:06") << "files that come are looked at, too";
    tab.deleteSelectedRows({0});
    EXPECT_EQ(row(0), (QStringList{{}, u"1:00"_s, u"48000"_s, u"24"_s, {}}));
    EXPECT_EQ(tab.totalTimeField.text(), u"1:01");
    tab.clearFiles();
    EXPECT_EQ(tab.totalTimeField.text(), QString());
    EXPECT_EQ(tab.totalSizeField.text(), QString());
}

TEST_F(UtilTabTest, ClearsAListOfSeveralFormats)
{
    tools.addAllReal();
    chooseDisc();
    const std::pair<test::SoundShape, QString> others[] = {{{.rate = 48000}, u"48000 Hz, 16 bits, 2 channels"_s},
                                                           {{.bits = 24}, u"44100 Hz, 24 bits, 2 channels"_s},
                                                           {{.channels = 1}, u"44100 Hz, 16 bits, 1 channel"_s}};
    for (const auto &[other, found] : others) {
        prompts.expectAsk(mismatch(found), u"OK"_s);
        tab.addMatchedFiles({wav(u"a.wav"_s), wav(u"b.wav"_s, other)});
        prompts.verify();
        EXPECT_EQ(tab.fileNames(), QStringList());
        EXPECT_EQ(tab.totalTimeField.text(), QString());
    }
}

TEST_F(UtilTabTest, KeepsFilesThatComeWhileItTellsThatOthersDoNotMatch)
{
    tools.addAllReal();
    chooseDisc();
    const QString late = wav(u"late.wav"_s, {.rate = 96000});
    prompts.duringNextQuestion([&] { tab.addMatchedFiles({late}); });
    prompts.expectAsk(mismatch(u"48000 Hz, 16 bits, 2 channels"_s), u"OK"_s);
    tab.addMatchedFiles({wav(u"a.wav"_s), wav(u"b.wav"_s, {.rate = 48000})});
    EXPECT_EQ(tab.fileNames(), QStringList(late));
    EXPECT_EQ(row(0).at(2), u"96000");
}

TEST_F(UtilTabTest, KeepsTheListOfAScanThatWasGivenUp)
{
    tools.addAllReal();
    chooseDisc();
    prompts.expectGivingUp(u"Looking at the formats of the files…"_s);
    const QString path = wav(u"a.wav"_s);
    tab.addMatchedFiles({path});
    EXPECT_EQ(tab.fileNames(), QStringList(path));
    EXPECT_EQ(row(0).at(2), QString());
    EXPECT_EQ(tab.totalTimeField.text(), QString());
}

TEST_F(UtilTabTest, ClearsAListWithAnAiffFileWithoutAWord)
{
    tools.addAllReal();
    chooseDisc();
    for (const QString &name : {u"b.aiff"_s, u"b.AIF"_s}) {
        tab.addMatchedFiles({wav(u"a.wav"_s), test::writeAiff(folder.path(name))});
        EXPECT_EQ(tab.fileNames(), QStringList());
    }
    tab.addMatchedFiles({wav(u"a.wav"_s), folder.write(u"notes.txt"_s, "no sound")});
    EXPECT_EQ(tab.fileNames(), QStringList());
    EXPECT_EQ(prompts.shownAlerts().size(), 1) << "the question about the scan";
}

TEST_F(UtilTabTest, RunsOneMetaflacForAllFlacFiles)
{
    const QString log = folder.path(u"log"_s);
    setFake(u"metaflac"_s, "log=" + log.toUtf8());
    const QStringList flacs{folder.write(u"a.flac"_s, "x"), folder.write(u"b.FLAC"_s, "x"), folder.write(u"d.flac"_s, "x")};
    const auto jobs = execute(UtilTab::kReplayGain, flacs + QStringList(folder.write(u"c.wav"_s, "x")));
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs.front()->title(), u"Adding FLAC replay gain");
    EXPECT_EQ(jobs.front()->results(), nullptr);
    EXPECT_EQ(tab.fileNames(), QStringList());
    tab.replayGainMatrix.selectTitle(u"Remove"_s);
    EXPECT_EQ(execute(UtilTab::kReplayGain, flacs).front()->title(), u"Removing FLAC replay gain");
    EXPECT_EQ(QString::fromUtf8(folder.read(u"log"_s)),
              u"--add-replay-gain\t%1\n--remove-replay-gain\t%1\n"_s.arg(flacs.join(u'\t')));
}

TEST_F(UtilTabTest, TellsWhenNoFileIsOfTheCommandsKind)
{
    const auto expectError = [this](const QString &message) {
        prompts.expectAsk({.title = u"Error"_s, .message = message, .buttons = {u"OK"_s}}, u"OK"_s);
    };
    expectError(u"No Flac files in file list"_s);
    EXPECT_TRUE(execute(UtilTab::kReplayGain, {folder.write(u"a.wav"_s, "x")}).empty());
    EXPECT_EQ(tab.fileNames(), QStringList());
    prompts.expectOutputFolder(out.path());
    expectError(u"No Wav/Aiff files in file list"_s);
    EXPECT_TRUE(execute(UtilTab::kDeEmphasis, {folder.write(u"a.flac"_s, "x")}).empty());
    EXPECT_EQ(tab.fileNames(), QStringList());
}

TEST_F(UtilTabTest, NamesWhatSoxMakes)
{
    const QString log = folder.path(u"log"_s);
    setFake(u"sox"_s, "log=" + log.toUtf8() + ";exit=2");
    prompts.expectOutputFolder(out.path());
    const QStringList sources{folder.write(u"song.wav"_s, "x"), folder.write(u"x.y.AIFF"_s, "x"),
                              folder.write(u"z.aif"_s, "x")};
    EXPECT_EQ(execute(UtilTab::kDeEmphasis, sources + QStringList(folder.write(u"c.flac"_s, "x"))).size(), 3U);
    const QStringList lines = QString::fromUtf8(folder.read(u"log"_s)).split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), 3);
    for (const auto &[source, name] : {std::pair(sources.at(0), u"song-deemph.wav"_s),
                                       std::pair(sources.at(1), u"x.y-deemph.AIFF"_s),
                                       std::pair(sources.at(2), u"z-deemph.aif"_s)})
        EXPECT_TRUE(lines.contains(u"-S\t%1\t%2\tdeemph"_s.arg(source, out.path(name)))) << qPrintable(name);
}

TEST_F(UtilTabTest, MakesNothingWithoutAFolder)
{
    tools.addAllReal();
    for (const QString &command : {UtilTab::kDeEmphasis, UtilTab::kDvdAudioDisc}) {
        tab.setCommand(command);
        tab.addMatchedFiles({wav(u"a.wav"_s)});
        prompts.expectOutputFolder(std::nullopt);
        tab.executeCommand();
        EXPECT_EQ(queue().taskCount(), 0);
        EXPECT_EQ(tab.fileNames().size(), 1) << "the list stays";
    }
}

TEST_F(UtilTabTest, RenamesWhatIsInTheListAndLogsIt)
{
    const QStringList sources{folder.write(u"a.flac"_s, "1"), folder.write(u"b.wav"_s, "2")};
    expectPrefix(u"Disc1-"_s);
    expectPreview(u"a.flac → Disc1-01.flac\nb.wav → Disc1-02.wav"_s, u"Rename"_s);
    const test::LogLines log;
    execute(UtilTab::kBatchRename, sources);
    EXPECT_EQ(log.of(u"nurv.util"_s),
              (QStringList{u"renaming %1 to %2"_s.arg(sources.at(0), folder.path(u"Disc1-01.flac"_s)),
                           u"renaming %1 to %2"_s.arg(sources.at(1), folder.path(u"Disc1-02.wav"_s))}));
    EXPECT_EQ(folder.list(), (QStringList{u"Disc1-01.flac"_s, u"Disc1-02.wav"_s}));
    EXPECT_EQ(tab.fileNames(), QStringList());
    EXPECT_TRUE(tab.undoRenameButton.isEnabled());
    tab.undoRename();
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"b.wav"_s}));
    EXPECT_FALSE(tab.undoRenameButton.isEnabled());
}

TEST_F(UtilTabTest, RenamesNothingWhenOneNameIsTaken)
{
    const QStringList sources{folder.write(u"a.flac"_s, "1"), folder.write(u"b.wav"_s, "2")};
    folder.write(u"Disc1-02.wav"_s, "mine");
    expectPrefix(u"Disc1-"_s);
    prompts.expectAsk({.title = u"Error"_s,
                       .message = u"File at \"%1\" already exists"_s.arg(folder.path(u"Disc1-02.wav"_s)),
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    execute(UtilTab::kBatchRename, sources);
    EXPECT_EQ(folder.list(), (QStringList{u"Disc1-02.wav"_s, u"a.flac"_s, u"b.wav"_s}));
    EXPECT_EQ(tab.fileNames(), sources) << "the list stays";
}

TEST_F(UtilTabTest, ClearsTheListWithoutAPrefix)
{
    for (const std::optional<QString> &prefix : {std::optional<QString>(), std::optional(QString())}) {
        expectPrefix(prefix);
        execute(UtilTab::kBatchRename, {folder.write(u"a.flac"_s, "1")});
        prompts.verify();
        EXPECT_EQ(tab.fileNames(), QStringList());
        EXPECT_EQ(folder.list(), QStringList(u"a.flac"_s));
    }
}

TEST_F(UtilTabTest, KeepsTheListWhenThePreviewIsDeclinedOrThePrefixIsNoName)
{
    const QStringList sources{folder.write(u"a.flac"_s, "1")};
    expectPrefix(u"x"_s);
    expectPreview(u"a.flac → x01.flac"_s, u"Cancel"_s);
    execute(UtilTab::kBatchRename, sources);
    EXPECT_EQ(tab.fileNames(), sources);
    expectPrefix(u"x/y"_s);
    prompts.expectAsk({.title = u"Error"_s, .message = u"A name cannot hold \"/\"."_s, .buttons = {u"OK"_s}}, u"OK"_s);
    execute(UtilTab::kBatchRename, sources);
    EXPECT_EQ(tab.fileNames(), sources);
    tab.renamePreviewButton.setOn(false);
    expectPrefix(u"x"_s);
    execute(UtilTab::kBatchRename, sources);
    EXPECT_EQ(folder.list(), QStringList(u"x01.flac"_s));
}

TEST_F(UtilTabTest, TellsWhichFilesWereNotRenamed)
{
    const QStringList sources{folder.write(u"a.flac"_s, "1"), folder.write(u"b.wav"_s, "2")};
    expectPrefix(u"x"_s);
    expectPreview(u"a.flac → x01.flac\nb.wav → x02.wav"_s, u"Rename"_s);
    prompts.expectAsk({.title = u"Some files were not renamed"_s,
                       .message = sources.at(0) + u": No such file or directory"_s,
                       .buttons = {u"OK"_s}},
                      u"OK"_s);
    tab.setCommand(UtilTab::kBatchRename);
    tab.addMatchedFiles(sources);
    folder.remove(u"a.flac"_s);
    tab.executeCommand();
    EXPECT_EQ(folder.list(), QStringList(u"x02.wav"_s));
}

TEST_F(UtilTabTest, KnowsWhichProgramsItNeeds)
{
    tab.addMatchedFiles({u"/m/a.wav"_s});
    tab.setCommand(UtilTab::kDeEmphasis);
    EXPECT_EQ(tab.neededPrograms().launched, QStringList(u"sox"_s));
    tab.setCommand(UtilTab::kReplayGain);
    EXPECT_EQ(tab.neededPrograms().launched, QStringList(u"metaflac"_s));
    tab.setCommand(UtilTab::kDvdAudioDisc);
    EXPECT_EQ(tab.neededPrograms().launched, (QStringList{u"dvda"_s, u"mkisofs"_s}));
    EXPECT_EQ(tab.neededPrograms().helpers, QStringList(u"genisoimage"_s));
    tab.setCommand(UtilTab::kBatchRename);
    EXPECT_EQ(tab.neededPrograms().launched, QStringList());
}

} // namespace
} // namespace nurv
