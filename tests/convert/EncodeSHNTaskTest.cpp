// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeSHNTask.h"

#include "convert/ConvertFixture.h"
#include "convert/ShortenFixture.h"
#include "programs/Transcript.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class EncodeSHNTaskTest : public test::ConvertFixture {
protected:
    EncodeSHNTaskTest() { set(u"encodeOutputFormat", 0); }

    test::ProgramFolder tools;
};

TEST_F(EncodeSHNTaskTest, ConvertsWavAndFlacSources)
{
    const QString wav = test::writeWav(folder.path(u"a b.wav"_s));
    const QString flac = test::writeFlac(folder.path(u"c.flac"_s));
    tools.addReal(u"shntool"_s);
    tools.addReal(u"shorten"_s);
    EncodeTab tab(controller);
    run(tab, {wav, flac});
    EXPECT_EQ(out.list(), (QStringList{u"a b.shn"_s, u"c.shn"_s}));
    EXPECT_TRUE(test::sameSound(wav, out.path(u"a b.shn"_s)));
    EXPECT_TRUE(test::sameSound(flac, out.path(u"c.shn"_s)));
    for (const auto &task : endedTasks)
        EXPECT_EQ(task->topTextField().text,
                  task->title() == u"c.flac" ? u"Complete; not proven"_s : u"Complete"_s);
    EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
}

TEST_F(EncodeSHNTaskTest, ShowsFiguresAndReportsLinesTwice)
{
    const QString goOn = folder.path(u"go-on"_s);
    tools.addFake(u"shntool"_s, "out=Converting [a.wav] : ;until-read;out=\\b\\b 45% ;wait-file=" + goOn.toUtf8()
                                    + ";out=100% OK\\n;exit=1");
    EncodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addFile(folder.path(u"a.wav"_s));
    tab.executeCommand();
    const auto task = queuedConversions().at(0);
    ASSERT_TRUE(test::waitUntil([&] { return task->progressIndicator().value == 45.0; }));
    EXPECT_EQ(task->topTextField().text, u"Encoding to SHN: 45.000000%");
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(outputWindows, QStringList{u"Converting [a.wav] Converting [a.wav] :  45% 100% OK\n100% OK\n\n"_s});
}

TEST_F(EncodeSHNTaskTest, FailsWithoutAnEncoder)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    tools.addReal(u"shntool"_s);
    tools.addFake(u"shorten"_s, "exit=1");
    EncodeTab tab(controller);
    run(tab, {wav});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_TRUE(out.list().isEmpty());
    EXPECT_TRUE(outputWindows.value(0).contains(u"ERROR"_s));
}

TEST_F(EncodeSHNTaskTest, LeavesAnExistingOutputInPlace)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s));
    out.write(u"a.shn"_s, "precious");
    tools.addReal(u"shntool"_s);
    tools.addReal(u"shorten"_s);
    EncodeTab tab(controller);
    run(tab, {wav});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(out.read(u"a.shn"_s), "precious");
}

} // namespace
} // namespace nurv
