// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings/SettingsStore.h"
#include "ui/ElidedLabel.h"
#include "ui/pages/TabPage.h"
#include "ui/WindowFixture.h"

#include <QPushButton>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// What stands beside Execute.
class PlanTest : public ::testing::Test, public WindowFixture {
protected:
    PlanTest() { show(); }
    QString planOf(BaseTab &tab)
    {
        controller.selectTab(tab.label());
        const auto *const label = window.page(tab.label())->findChild<ElidedLabel *>(u"plan"_s);
        EXPECT_EQ(label->isVisible(), !label->line().isEmpty());
        return label->line();
    }
    QString toolTipOf(const BaseTab &tab) const
    {
        return window.page(tab.label())->findChild<QPushButton *>(u"executeButton"_s)->toolTip();
    }
};

} // namespace

TEST_F(PlanTest, OfTheEncodePageFollowsEveryOption)
{
    EXPECT_EQ(planOf(encodeTab), QString()) << "there is nothing to do";
    EXPECT_EQ(toolTipOf(encodeTab), u"Process the files of the list"_s);
    encodeTab.addMatchedFiles({u"/m/1.wav"_s, u"/m/2.wav"_s});
    encodeTab.sourceEncodeButton.setOn(true);
    encodeTab.outputFormatMatrix.selectTitle(u"FLAC"_s);
    encodeTab.flacSlider.setIntegerValue(8);
    EXPECT_EQ(planOf(encodeTab), u"→ FLAC 8, beside each source"_s);
    EXPECT_EQ(toolTipOf(encodeTab), u"2 files → FLAC 8, beside each source"_s);
    encodeTab.flacLaxButton.setOn(true);
    EXPECT_EQ(planOf(encodeTab), u"→ FLAC, lax, beside each source"_s);
    encodeTab.outputFormatMatrix.selectTitle(u"WV"_s);
    encodeTab.sourceEncodeButton.setOn(false);
    EXPECT_EQ(planOf(encodeTab), u"→ WavPack, fast, into a folder of your choice"_s);
    encodeTab.outputFormatMatrix.selectTitle(u"APE"_s);
    encodeTab.deleteOriginalsButton.setOn(true);
    SettingsStore::instance().setValue(u"trashOrDelete"_s, 1);
    SettingsStore::instance().setValue(encodeTab.outputFolderKey(), folder.path(u"Music"_s));
    EXPECT_EQ(planOf(encodeTab), u"→ Monkey's Audio 2000, into Music or another folder, originals to the trash"_s);
    SettingsStore::instance().setValue(u"trashOrDelete"_s, 0);
    EXPECT_EQ(planOf(encodeTab), u"→ Monkey's Audio 2000, into Music or another folder, originals deleted"_s);
    for (const QString &key : {u"trashOrDelete"_s, encodeTab.outputFolderKey()})
        SettingsStore::instance().remove(key);
    encodeTab.clearFiles();
    EXPECT_EQ(planOf(encodeTab), QString());
}

TEST_F(PlanTest, OfTheOtherPages)
{
    for (BaseTab *const tab : std::initializer_list<BaseTab *>{&decodeTab, &lossyTab, &checksumTab, &fixTab, &shntoolTab, &utilTab})
        tab->addMatchedFiles({u"/m/1.flac"_s});
    decodeTab.sourceDecodeButton.setOn(true);
    decodeTab.outputFormatMatrix.selectTitle(u"AIFF"_s);
    EXPECT_EQ(planOf(decodeTab), u"→ AIFF, beside each source"_s);
    lossyTab.sourceEncodeButton.setOn(true);
    lossyTab.outputFormatMatrix.selectTitle(u"LAME MP3"_s);
    lossyTab.mp3Matrix.selectTitle(u"VBR"_s);
    lossyTab.slider.setIntegerValue(2);
    EXPECT_EQ(planOf(lossyTab), u"→ MP3 VBR 2, beside each source"_s);
    lossyTab.outputFormatMatrix.selectTitle(u"Opus"_s);
    lossyTab.opusMatrix.selectTitle(u"CBR"_s);
    lossyTab.comboBox.setIntegerValue(96);
    EXPECT_EQ(planOf(lossyTab), u"→ Opus CBR 96 kbit/s, beside each source"_s);
    checksumTab.commandOptions.setSelectedIndex(0);
    EXPECT_EQ(planOf(checksumTab), u"→ decoded and tested"_s);
    checksumTab.commandOptions.setSelectedIndex(1);
    checksumTab.createChecksumOptions.selectTitle(u"All"_s);
    checksumTab.sourceSaveButton.setOn(true);
    EXPECT_EQ(planOf(checksumTab), u"→ MD5, ST5 and FFP lists, in their folder"_s);
    fixTab.outputFormatMatrix.selectTitle(u"SHN"_s);
    EXPECT_EQ(planOf(fixTab), u"→ a fixed set in Shorten, into a folder of your choice"_s);
    shntoolTab.shntoolCommandMatrix.selectTitle(u"join"_s);
    shntoolTab.outputFormatMatrix.selectTitle(u"FLAC"_s);
    shntoolTab.sourceEncodeButton.setOn(true);
    EXPECT_EQ(planOf(shntoolTab), u"→ joined to one file, FLAC, beside the first file"_s);
    shntoolTab.shntoolCommandMatrix.selectTitle(u"cue"_s);
    EXPECT_EQ(planOf(shntoolTab), u"→ a cue sheet"_s);
    utilTab.utilCommandMatrix.selectTitle(UtilTab::kReplayGain);
    EXPECT_EQ(planOf(utilTab), u"→ replay gain tags"_s);
}

TEST_F(PlanTest, APlanIsCutWhereItFindsNoRoom)
{
    ElidedLabel label;
    label.show();
    label.resize(60, 30);
    label.setLine(u"a line that is longer than sixty pixels can be"_s);
    EXPECT_TRUE(label.text().endsWith(u'…'));
    EXPECT_EQ(label.accessibleName(), label.line());
    label.resize(label.sizeHint().width(), 30);
    EXPECT_EQ(label.text(), label.line());
    EXPECT_EQ(label.minimumSizeHint().width(), 0);
}

} // namespace nurv::test
