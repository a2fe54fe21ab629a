// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeSHNTask.h"

#include "convert/ConvertFixture.h"
#include "convert/ShortenFixture.h"
#include "programs/Transcript.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class DecodeSHNTaskTest : public test::ConvertFixture {
protected:
    test::ProgramFolder tools;
};

TEST_F(DecodeSHNTaskTest, DecodesToWavByteForByte)
{
    const QString wav = test::writeWav(folder.path(u"sound.wav"_s));
    const QString source = test::writeShorten(tools, wav, folder.path(u"a.shn"_s));
    tools.addReal(u"shntool"_s);
    DecodeTab tab(controller);
    run(tab, {source});
    EXPECT_EQ(endedTasks.at(0)->topTextField().text, u"Complete; not proven") << "no checksum tells of its end";
    EXPECT_EQ(out.read(u"a.wav"_s), folder.read(u"sound.wav"_s));
    EXPECT_EQ(endedTasks.at(0)->results(), nullptr);
    EXPECT_TRUE(outputWindows.isEmpty());
}

TEST_F(DecodeSHNTaskTest, ShowsTheFiguresOfARecordedRun)
{
    const QString goOn = folder.path(u"go-on"_s);
    tools.addFake(u"shntool"_s, "replay=" + test::transcriptPath(u"shntool-conv-wav"_s).toUtf8()
                                    + ";until-read;out=\\b 97% ;wait-file=" + goOn.toUtf8());
    DecodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addFile(folder.path(u"a.shn"_s));
    tab.executeCommand();
    const auto task = queuedConversions().at(0);
    ASSERT_TRUE(test::waitUntil([&] { return task->topTextField().text == u"Decoding SHN: 97.000000%"; }));
    EXPECT_EQ(task->progressIndicator().value, 97.0);
    folder.write(u"go-on"_s, "");
    EXPECT_TRUE(finish());
}

TEST_F(DecodeSHNTaskTest, KeepsWhatItMadeWhenSomebodyHasTakenItsName)
{
    // shntool names what it makes by itself: "01.SHN" becomes "01.SHN.wav", which the job calls "01.wav".
    folder.write(u"01.SHN"_s, "a source");
    const QByteArray theirs = out.path(u"01.wav"_s).toUtf8();
    tools.addFake(u"shntool"_s, "append=" + out.path(u"01.SHN.wav"_s).toUtf8() + ":the sound;append=" + theirs
                                    + ":somebody's");
    DecodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    set(u"warnOnDelete", false);
    run(tab, {folder.path(u"01.SHN"_s)});
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->error());
    EXPECT_TRUE(endedTasks[0]->report().contains(
        u"its output stays as 01.SHN.wav, since it could not get its name: File exists"_s))
        << qPrintable(endedTasks[0]->report());
    EXPECT_EQ(out.read(u"01.wav"_s), "somebody's");
    EXPECT_EQ(out.read(u"01.SHN.wav"_s), "the sound");
    EXPECT_TRUE(folder.exists(u"01.SHN"_s));
    EXPECT_TRUE(endedTasks[0]->outcome().output.isEmpty());
}

TEST_F(DecodeSHNTaskTest, ReportsEverythingWhenItFails)
{
    tools.addFake(u"shntool"_s, "out=\\b\\bConverting [a.shn] :  0% ;until-read;out=ERROR\\n;exit=1");
    DecodeTab tab(controller);
    run(tab, {folder.path(u"a.shn"_s)});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(outputWindows, QStringList{u"Converting [a.shn] :  0% ERROR\n\n"_s});
}

} // namespace
} // namespace nurv
