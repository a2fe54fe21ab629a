// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"
#include "convert/ShortenFixture.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class SharedOutputTest : public test::ConvertFixture {
protected:
    /// Of the two jobs the first made its output, and the second left it alone and
    /// says from which source it comes.
    void expectFirstOnly(const QString &first, const QString &second, const QString &output)
    {
        ASSERT_EQ(tasks.size(), 2U);
        EXPECT_EQ(tasks[0]->topTextField().text, u"Complete");
        EXPECT_TRUE(test::sameSound(first, output));
        EXPECT_EQ(tasks[1]->topTextField().text, u"Error");
        const QString report = tasks[1]->report();
        EXPECT_TRUE(report.contains(first)) << qPrintable(report);
        EXPECT_TRUE(report.contains(second)) << qPrintable(report);
        EXPECT_TRUE(QFile::exists(second));
        EXPECT_EQ(tasks[1]->outcome().output, QString()) << "it is not what this job has made";
    }
    template<typename Tab>
    void runInto(Tab &tab, const QStringList &sources, const QString &outputFolder)
    {
        prompts.expectOutputFolder(outputFolder);
        tab.addMatchedFiles(sources);
        tab.executeCommand();
        tasks = queuedConversions();
        EXPECT_TRUE(finish());
    }

    std::vector<std::shared_ptr<ConversionTask>> tasks;
};

class SharedOutputByThreadsTest : public SharedOutputTest, public ::testing::WithParamInterface<int> {
protected:
    SharedOutputByThreadsTest()
    {
        NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification), GetParam());
    }
};

TEST_P(SharedOutputByThreadsTest, EncodesOnlyTheFirstOfTwoSources)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 5, .seed = 1});
    const QString aiff = test::writeAiff(folder.path(u"a.aiff"_s), {.seconds = 5, .seed = 2});
    EncodeTab tab(controller);
    runInto(tab, {aiff, wav}, out.path());
    expectFirstOnly(aiff, wav, out.path(u"a.flac"_s));
    EXPECT_EQ(out.list(), QStringList{u"a.flac"_s});
}

TEST_P(SharedOutputByThreadsTest, EncodesOnlyTheFirstAlsoWhenOutputsMayBeReplaced)
{
    const QString wav = test::writeWav(folder.path(u"a.wav"_s), {.seconds = 5, .seed = 1});
    const QString aiff = test::writeAiff(folder.path(u"a.aiff"_s), {.seconds = 5, .seed = 2});
    folder.write(u"a.flac"_s, "old");
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    prompts.expectAsk(u"One of the output files already exists and will be overwritten.  "
                      "Are you sure you want to continue?"_s,
                      {u"No"_s, u"Yes"_s}, u"Yes"_s);
    tab.addMatchedFiles({aiff, wav});
    tab.executeCommand();
    tasks = queuedConversions();
    ASSERT_TRUE(finish());
    expectFirstOnly(aiff, wav, folder.path(u"a.flac"_s));
}

TEST_P(SharedOutputByThreadsTest, DecodesOnlyTheFirstOfTwoSources)
{
    const test::ProgramFolder tools;
    tools.addReal(u"flac"_s);
    tools.addReal(u"shntool"_s);
    const QString other = test::writeWav(folder.path(u"other.wav"_s), {.seed = 3});
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 5});
    const QString shn = test::writeShorten(tools, other, folder.path(u"a.shn"_s));
    DecodeTab tab(controller);
    runInto(tab, {flac, shn}, out.path());
    expectFirstOnly(flac, shn, out.path(u"a.wav"_s));
}

INSTANTIATE_TEST_SUITE_P(JobsAtOnce, SharedOutputByThreadsTest, ::testing::Values(1, 4));

TEST_F(SharedOutputTest, WaitsForNoOtherBatchButRefusesItsOutput)
{
    const test::ProgramFolder tools;
    const QString goOn = folder.path(u"go-on"_s);
    tools.addFake(u"flac"_s, "append=@-1:made;wait-file=" + goOn.toUtf8());
    const QString alias = folder.makeLink(u"alias"_s, out.path());
    const QString first = test::writeWav(folder.path(u"cd1/a.wav"_s));
    const QString second = test::writeWav(folder.path(u"cd2/a.wav"_s));
    EncodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addFile(first);
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return out.exists(u"a.flac"_s) && out.read(u"a.flac"_s) == "made"; }));
    prompts.expectOutputFolder(alias);
    tab.addFile(second);
    tab.executeCommand();
    ASSERT_TRUE(test::waitUntil([&] { return queue().taskCount() == 1; }));
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->error());
    EXPECT_TRUE(endedTasks[0]->report().contains(first)) << qPrintable(endedTasks[0]->report());
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(out.read(u"a.flac"_s), "made");
    // Once the first batch is through, the file is free again.
    runInto(tab, {second}, out.path());
    EXPECT_EQ(out.read(u"a.flac"_s), "mademade") << "its program was started";
}

TEST_F(SharedOutputTest, ReplacesNoOtherFileOfTheListEvenWhenOutputsMayBeReplaced)
{
    const QString aiff = test::writeAiff(folder.path(u"a.aiff"_s), {.seed = 1});
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s), {.seed = 2});
    const QByteArray sound = test::decodedMd5(flac);
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    prompts.expectAsk(u"One of the output files already exists and will be overwritten.  "
                      "Are you sure you want to continue?"_s,
                      {u"No"_s, u"Yes"_s}, u"Yes"_s);
    tab.addMatchedFiles({aiff, flac});
    tab.executeCommand();
    tasks = queuedConversions();
    ASSERT_TRUE(finish());
    ASSERT_EQ(tasks.size(), 2U);
    EXPECT_TRUE(tasks[0]->error());
    EXPECT_TRUE(tasks[0]->report().contains(u"is another file of the list"_s)) << qPrintable(tasks[0]->report());
    EXPECT_FALSE(tasks[1]->error()) << "it is encoded in place";
    EXPECT_EQ(test::decodedMd5(flac), sound);
}

TEST_F(SharedOutputTest, KeepsNamesApartThatOnlyLookTheSame)
{
    const QString composed = u"Caf\u00e9"_s;
    const QString decomposed = u"Cafe\u0301"_s;
    const QString first = test::writeWav(folder.path(composed + u".wav"_s), {.seed = 1});
    const QString second = test::writeWav(folder.path(decomposed + u".wav"_s), {.seed = 2});
    EncodeTab tab(controller);
    runInto(tab, {first, second}, out.path());
    EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
    EXPECT_TRUE(test::sameSound(first, out.path(composed + u".flac"_s)));
    EXPECT_TRUE(test::sameSound(second, out.path(decomposed + u".flac"_s)));
}

} // namespace
} // namespace nurv
