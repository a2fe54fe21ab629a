// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/DecodeFlacTask.h"

#include "convert/ConvertFixture.h"
#include "programs/Transcript.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class DecodeFlacTaskTest : public test::ConvertFixture {
protected:
    [[nodiscard]] QString taggedFlac(const QString &name) const
    {
        const QString path = test::writeFlac(folder.path(name));
        EXPECT_EQ(test::runProgram(u"metaflac"_s, {u"--set-tag=TITLE=Über uns"_s, u"--set-tag=ARTIST=The Band"_s,
                                                   u"--set-tag=ALBUM=Live"_s, u"--set-tag=TRACKNUMBER=7"_s,
                                                   u"--set-tag=TRACKTOTAL=12"_s, u"--set-tag=GENRE=Jazz"_s, path})
                      .exitStatus,
                  0);
        return path;
    }

    test::ProgramFolder tools;
};

TEST_F(DecodeFlacTaskTest, CopiesTagsToAiff)
{
    const QString source = taggedFlac(u"a.flac"_s);
    tools.addReal(u"flac"_s);
    DecodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"AIFF"_s));
    run(tab, {source});
    const QMap<QString, QString> tags = test::ffprobeTags(out.path(u"a.aiff"_s));
    EXPECT_EQ(tags.value(u"title"_s), u"Über uns");
    EXPECT_EQ(tags.value(u"artist"_s), u"The Band");
    EXPECT_EQ(tags.value(u"album"_s), u"Live");
    EXPECT_EQ(tags.value(u"track"_s), u"7/12");
    EXPECT_EQ(tags.value(u"genre"_s), u"Jazz");
    EXPECT_TRUE(test::sameSound(source, out.path(u"a.aiff"_s)));
    EXPECT_EQ(endedTasks.at(0)->topTextField().text, u"Complete");
    EXPECT_TRUE(outputWindows.isEmpty());
}

TEST_F(DecodeFlacTaskTest, LeavesAnAiffFileAloneThatItMayNotReplace)
{
    const QString source = taggedFlac(u"a.flac"_s);
    test::writeAiff(out.path(u"a.aiff"_s));
    const QByteArray before = out.read(u"a.aiff"_s);
    tools.addReal(u"flac"_s);
    DecodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"AIFF"_s));
    run(tab, {source});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_EQ(out.read(u"a.aiff"_s), before);
}

TEST_F(DecodeFlacTaskTest, CopiesNoTagsToWav)
{
    const QString source = taggedFlac(u"a.flac"_s);
    tools.addReal(u"flac"_s);
    DecodeTab tab(controller);
    run(tab, {source});
    EXPECT_FALSE(test::ffprobeTags(out.path(u"a.wav"_s)).contains(u"title"_s));
    EXPECT_FALSE(out.read(u"a.wav"_s).contains("The Band"));
    EXPECT_TRUE(test::sameSound(source, out.path(u"a.wav"_s)));
}

TEST_F(DecodeFlacTaskTest, CopiesNoTagsToAnExtensionInCapitals)
{
    const QString source = taggedFlac(u"a.flac"_s);
    const QString output = out.path(u"a.AIFF"_s);
    const auto task =
        std::make_shared<DecodeFlacTask>(source, &queue(), tools.addReal(u"flac"_s),
                                         QStringList{u"-d"_s, u"--force-aiff-format"_s, source, u"-o"_s, output});
    queue().addTask(task);
    ASSERT_TRUE(finish());
    EXPECT_TRUE(test::sameSound(source, output));
    EXPECT_FALSE(out.read(u"a.AIFF"_s).contains("The Band"));
}

TEST_F(DecodeFlacTaskTest, ShowsTheFiguresOfARecordedRun)
{
    const QString goOn = folder.path(u"go-on"_s);
    tools.addFake(u"flac"_s, "replay=" + test::transcriptPath(u"flac-decode"_s).toUtf8()
                                 + ";until-read;out=\\b\\b97% complete;wait-file=" + goOn.toUtf8());
    DecodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addFile(folder.path(u"a.flac"_s));
    tab.executeCommand();
    const auto task = queuedConversions().at(0);
    ASSERT_TRUE(test::waitUntil([&] { return task->topTextField().text == u"Decoding Flac: 97.000000%"; }));
    EXPECT_EQ(task->progressIndicator().value, 97.0);
    EXPECT_EQ(task->textField().text, u"a.flac");
    folder.write(u"go-on"_s, "");
    EXPECT_TRUE(finish());
}

TEST_F(DecodeFlacTaskTest, RefusesADamagedFileAndLeavesNoOutput)
{
    const QString whole = test::writeFlac(folder.path(u"whole.flac"_s), {.seconds = 5});
    const QString source = folder.write(u"cut.flac"_s, folder.read(u"whole.flac"_s).first(60'000));
    tools.addReal(u"flac"_s);
    DecodeTab tab(controller);
    run(tab, {source});
    EXPECT_TRUE(endedTasks.at(0)->error());
    EXPECT_TRUE(out.list().isEmpty());
    EXPECT_TRUE(outputWindows.value(0).contains(u"cut.flac: ERROR"_s)) << qPrintable(outputWindows.join(u'|'));
}

TEST_F(DecodeFlacTaskTest, KeepsWhatCanBeDecodedThroughErrors)
{
    const test::SoundShape shape{.seconds = 5};
    test::writeFlac(folder.path(u"whole.flac"_s), shape);
    QByteArray bytes = folder.read(u"whole.flac"_s);
    const qsizetype middle = bytes.size() / 2;
    for (qsizetype at = middle; at < middle + 40; ++at)
        bytes[at] = static_cast<char>(bytes[at] ^ 0x5A);
    const QString source = folder.write(u"damaged.flac"_s, bytes);
    tools.addReal(u"flac"_s);
    set(u"warnOnDelete", false);
    DecodeTab tab(controller);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {source});
    EXPECT_EQ(out.list(), QStringList()) << "without the option nothing is made of it";
    EXPECT_TRUE(endedTasks.at(0)->error());

    tab.decodeFlacThroughErrors.setOn(true);
    tab.deleteOriginalsButton.setOn(true);
    run(tab, {source});
    ASSERT_EQ(out.list(), QStringList{u"damaged.wav"_s});
    const QByteArray made = out.read(u"damaged.wav"_s);
    const QByteArray original = test::wavBytes(shape);
    ASSERT_EQ(made.size(), original.size()) << "what is lost is silent";
    EXPECT_NE(made, original);
    // All but the frame that is damaged and its neighbours.
    constexpr qsizetype kAround = qsizetype{3} * 4096 * 4;
    const qsizetype firstWrong = std::mismatch(made.begin(), made.end(), original.begin()).first - made.begin();
    const qsizetype lastWrong = made.size() - (std::mismatch(made.rbegin(), made.rend(), original.rbegin()).first - made.rbegin());
    EXPECT_GT(firstWrong, made.size() / 4);
    EXPECT_LE(lastWrong - firstWrong, kAround);
    EXPECT_TRUE(folder.exists(u"damaged.flac"_s)) << "the source is more than what could be decoded of it";
    EXPECT_TRUE(outputWindows.last().contains(u"damaged.flac: "_s)) << qPrintable(outputWindows.last());
}

} // namespace
} // namespace nurv
