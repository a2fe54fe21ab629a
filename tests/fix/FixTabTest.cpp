// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"
#include "fix/FixTab.h"
#include "fix/FixTask.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class FixTabTest : public test::HeldQueueFixture {
protected:
    FixTabTest()
    {
        SettingsStore::instance().remove(u"fixOutputFormat"_s);
        SettingsStore::instance().remove(u"fixFlacLevel"_s);
    }
    /// The one job that the button queues for two files, on a tab with real programs.
    std::shared_ptr<FixTask> queuedBy(FixTab &tab)
    {
        prompts.expectOutputFolder(out.path());
        tab.addMatchedFiles({folder.write(u"a.wav"_s, "x"), folder.write(u"b.wav"_s, "x")});
        tab.executeCommand();
        const auto &rows = queue().panelArray();
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? nullptr : std::dynamic_pointer_cast<FixTask>(rows.back());
    }
};

TEST_F(FixTabTest, BeginsWithFlacAtLevel4)
{
    const FixTab tab(controller);
    EXPECT_EQ(tab.label(), u"fix SBE");
    EXPECT_EQ(tab.outputFormatMatrix.titles(), (QStringList{u"SHN"_s, u"FLAC"_s, u"AIFF"_s, u"WAV"_s}));
    EXPECT_EQ(tab.outputFormatMatrix.selectedTitle(), u"FLAC");
    EXPECT_EQ(tab.flacLevelSlider.integerValue(), 4);
    EXPECT_EQ(tab.shnMd5Option.titles(), (QStringList{u"No MD5"_s, u"1 MD5"_s, u"MD5 by disc*"_s}));
    EXPECT_EQ(tab.shnMd5Option.selectedTitle(), u"No MD5");
    EXPECT_FALSE(tab.deleteOriginalsButton.isOn());
    EXPECT_FALSE(tab.flacFingerprintButton.isOn());
}

TEST_F(FixTabTest, KeepsFormatAndLevel)
{
    {
        FixTab tab(controller);
        tab.outputFormatMatrix.selectTitle(u"AIFF"_s);
        tab.flacLevelSlider.setIntegerValue(8);
    }
    EXPECT_EQ(SettingsStore::instance().integer(u"fixOutputFormat"_s), 2);
    EXPECT_EQ(SettingsStore::instance().integer(u"fixFlacLevel"_s), 8);
}

TEST_F(FixTabTest, ShowsTheListsOfTheFormat)
{
    FixTab tab(controller);
    struct Case {
        QString format;
        bool hasLevel;
        bool hasMd5;
        bool hasFingerprints;
        QString label;
    };
    for (const Case &one : {Case{u"SHN"_s, false, true, false, u"MD5 Options"_s},
                            Case{u"FLAC"_s, true, false, true, u"FLAC Fingerprint"_s}, Case{u"AIFF"_s, false, false, false, {}},
                            Case{u"WAV"_s, false, false, false, {}}}) {
        SCOPED_TRACE(qPrintable(one.format));
        ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(one.format));
        EXPECT_EQ(tab.flacLevelSlider.isEnabled(), one.hasLevel);
        EXPECT_EQ(tab.shnMd5Option.isHidden(), !one.hasMd5);
        EXPECT_EQ(tab.flacFingerprintButton.isHidden(), !one.hasFingerprints);
        EXPECT_EQ(tab.md5Label.isHidden(), one.label.isEmpty());
        if (!one.label.isEmpty()) {
            EXPECT_EQ(tab.md5Label.text(), one.label);
        }
    }
}

TEST_F(FixTabTest, DoesNothingWithoutFiles)
{
    FixTab tab(controller);
    tab.executeCommand();
    EXPECT_TRUE(queue().panelArray().empty());
    EXPECT_TRUE(tab.neededPrograms().launched.isEmpty());
}

TEST_F(FixTabTest, QueuesOneJobForAllFilesAndKeepsTheListUntilItEnds)
{
    FixTab tab(controller);
    const auto task = queuedBy(tab);
    ASSERT_TRUE(task);
    EXPECT_EQ(task->title(), u"Fixing");
    EXPECT_EQ(task->textField().text, u"Fixing");
    EXPECT_EQ(task->sourceCount(), 2);
    EXPECT_FALSE(task->deleteOriginal());
    EXPECT_EQ(tab.fileNames().size(), 2);
}

TEST_F(FixTabTest, AsksBeforeItDeletes)
{
    FixTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    tab.addMatchedFiles({folder.write(u"a.wav"_s, "x")});
    prompts.expectDeletionQuestion(u"No"_s);
    tab.executeCommand();
    EXPECT_TRUE(queue().panelArray().empty()) << "and no folder was asked for";
    prompts.expectDeletionQuestion(u"Yes"_s);
    prompts.expectOutputFolder(std::nullopt);
    tab.executeCommand();
    EXPECT_TRUE(queue().panelArray().empty()) << "without a folder";
    prompts.expectDeletionQuestion(u"Yes"_s);
    const auto task = queuedBy(tab);
    ASSERT_TRUE(task);
    EXPECT_TRUE(task->deleteOriginal());
}

TEST_F(FixTabTest, DoesNotAskWhenThatIsNotWanted)
{
    set(u"warnOnDelete", false);
    FixTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    EXPECT_TRUE(queuedBy(tab)->deleteOriginal());
}

TEST_F(FixTabTest, EnablesWhatADeletionTakes)
{
    FixTab tab(controller);
    EXPECT_FALSE(tab.originals.proveButton.isEnabled());
    EXPECT_FALSE(tab.originals.dropMetadataButton.isEnabled());
    tab.deleteOriginalsButton.setOn(true);
    EXPECT_TRUE(tab.originals.proveButton.isEnabled());
    EXPECT_TRUE(tab.originals.dropMetadataButton.isEnabled());
}

TEST_F(FixTabTest, TellsWhichProgramsItsFormatNeeds)
{
    const test::ProgramFolder tools;
    FixTab tab(controller);
    tab.addMatchedFiles({folder.write(u"a.wav"_s, "RIFF"), folder.write(u"b.wv"_s, "wvpk")});
    const auto needed = [&tab](const QString &format) {
        tab.outputFormatMatrix.selectTitle(format);
        const NeededPrograms programs = tab.neededPrograms();
        return programs.launched + programs.helpers;
    };
    EXPECT_EQ(needed(u"WAV"_s), (QStringList{u"shntool"_s, u"wvunpack"_s}));
    EXPECT_EQ(needed(u"SHN"_s), (QStringList{u"shntool"_s, u"wvunpack"_s, u"shorten"_s}));
    EXPECT_EQ(needed(u"AIFF"_s), (QStringList{u"shntool"_s, u"wvunpack"_s, u"sox"_s}));
    EXPECT_EQ(needed(u"FLAC"_s), (QStringList{u"shntool"_s, u"wvunpack"_s, u"flac"_s}));
    tab.flacFingerprintButton.setOn(true);
    EXPECT_EQ(needed(u"FLAC"_s), (QStringList{u"shntool"_s, u"metaflac"_s, u"wvunpack"_s, u"flac"_s}));
    tab.flacFingerprintButton.setOn(false);
    tab.addMatchedFiles({folder.write(u"c.flac"_s, "fLaC")});
    EXPECT_EQ(needed(u"FLAC"_s), (QStringList{u"shntool"_s, u"metaflac"_s, u"wvunpack"_s, u"flac"_s})) << "for the date";
}

} // namespace
} // namespace nurv
