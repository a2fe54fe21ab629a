// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"

#include "process/ChildProcess.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kTemporary = u".tmp,fl-ac+en'c"_s;

class KilledConversionTest : public test::ConvertFixture {
protected:
    /// What the tab does when outputs beside the sources may be replaced.
    void runReplacing(const QString &source)
    {
        EncodeTab tab(controller);
        tab.sourceEncodeButton.setOn(true);
        prompts.expectAsk(u"One of the output files already exists and will be overwritten.  "
                          "Are you sure you want to continue?"_s,
                          {u"No"_s, u"Yes"_s}, u"Yes"_s);
        runBeside(tab, {source});
    }

    test::ProgramFolder tools;
};

TEST_F(KilledConversionTest, LeavesNoHalfMadeOutput)
{
    tools.addFake(u"flac"_s, "append=@-1:half;signal=11");
    EncodeTab encode(controller);
    run(encode, {test::writeWav(folder.path(u"a.wav"_s)), test::writeAiff(folder.path(u"b.aiff"_s))});
    DecodeTab decode(controller);
    run(decode, {folder.write(u"c.flac"_s, "fLaC")});
    EXPECT_EQ(endedTasks.size(), 3U);
    for (const auto &task : endedTasks)
        EXPECT_TRUE(task->error());
    EXPECT_TRUE(out.list().isEmpty()) << qPrintable(out.list().join(u' '));
    EXPECT_EQ(folder.list(), (QStringList{u"a.wav"_s, u"b.aiff"_s, u"c.flac"_s}));
}

TEST_F(KilledConversionTest, LeavesNothingOfTheRealEncoder)
{
    tools.addReal(u"flac"_s);
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 120});
    EncodeTab tab(controller);
    tab.flacSlider.setIntegerValue(8);
    prompts.expectOutputFolder(out.path());
    tab.addFile(wav);
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return out.exists(u"a.flac"_s); }));
    queue().cancelAllTasks();
    children::terminateAll(std::chrono::milliseconds(500), false);
    ASSERT_TRUE(finish());
    EXPECT_EQ(endedTasks.at(0)->textField().text, u"Canceled");
    EXPECT_TRUE(out.list().isEmpty()) << qPrintable(out.list().join(u' '));
    EXPECT_TRUE(folder.exists(u"a.wav"_s));
}

TEST_F(KilledConversionTest, KeepsAnOutputThatWasThereBefore)
{
    tools.addFake(u"flac"_s, "signal=9");
    out.write(u"a.flac"_s, "precious");
    EncodeTab tab(controller);
    run(tab, {test::writeAiff(folder.path(u"a.aiff"_s))});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(out.read(u"a.flac"_s), "precious");
}

TEST_F(KilledConversionTest, KeepsASourceThatWasToBeReplacedAndRemovesTheWorkFile)
{
    const QString work = folder.path(u"a.flac"_s) + kTemporary;
    tools.addFake(u"flac"_s, "append=" + work.toUtf8() + ":half;signal=15");
    const QString source = folder.write(u"a.flac"_s, "precious");
    runReplacing(source);
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(folder.list(), QStringList{u"a.flac"_s});
    EXPECT_EQ(folder.read(u"a.flac"_s), "precious");
}

TEST_F(KilledConversionTest, RemovesNothingWhenTheProgramEndsByItself)
{
    tools.addFake(u"flac"_s, "append=@-1:as it is;exit=1");
    EncodeTab tab(controller);
    run(tab, {test::writeWav(folder.path(u"a.wav"_s))});
    EXPECT_EQ(out.read(u"a.flac"_s), "as it is");
}

} // namespace
} // namespace nurv
