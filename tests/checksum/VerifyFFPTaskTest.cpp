// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/VerifyFFPTask.h"

#include "checksum/VerifyListFixture.h"
#include "support/TestProgram.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class VerifyFFPTaskTest : public test::VerifyListFixture {
protected:
    VerifyFFPTaskTest()
    { tools.addAllReal(); }
    [[nodiscard]] QByteArray entryOf(const QString &name) const
    {
        const auto result = test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, folder.path(name)});
        EXPECT_EQ(result.exitStatus, 0);
        return QFileInfo(name).fileName().toUtf8() + ':' + result.output;
    }

    test::ProgramFolder tools;
};

TEST_F(VerifyFFPTaskTest, DecodesEveryFileWhoseFingerprintFits)
{
    test::writeFlac(folder.path(u"b.flac"_s), {.seconds = 0.3});
    test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.3, .seed = 2});
    const auto task = verify<VerifyFFPTask>(
        folder.write(u"show.ffp.txt"_s, ";fingerprints\n\n" + entryOf(u"b.flac"_s) + entryOf(u"a.flac"_s)));
    EXPECT_TRUE(report.startsWith(u"Verify FFP: show.ffp.txt\nb.flac : OK\na.flac : OK\n\nVerify Flac Files in show.ffp.txt\n"_s))
        << qPrintable(report);
    EXPECT_FALSE(task->error());
    EXPECT_EQ(statesOf(*task), (std::vector{State::Ok, State::Ok}));
    // The tests come in the order of the paths.
    EXPECT_LT(report.lastIndexOf(u"a.flac: "_s), report.lastIndexOf(u"b.flac: "_s));
    EXPECT_TRUE(statuses.contains(u"Verifying FLAC File"_s)) << qPrintable(statuses.join(u'|'));
}

TEST_F(VerifyFFPTaskTest, KeepsTheLastLinesOfAFlacThatIsDone)
{
    test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.3});
    const QByteArray entry = entryOf(u"a.flac"_s);
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "out=a.flac: testing, 42% complete;until-read;out=\\b\\b;until-read;out=ok \\n");
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, entry));
    EXPECT_TRUE(report.endsWith(u"Verify Flac Files in l.ffp\na.flac: testing, 100% complete\na.flac: ok\n"_s))
        << qPrintable(report);
    EXPECT_FALSE(task->error());
    EXPECT_TRUE(statuses.contains(u"Verifying a.flac: 42.000000%"_s)) << qPrintable(statuses.join(u'|'));
}

TEST_F(VerifyFFPTaskTest, SeesDamageBehindAFingerprintThatFits)
{
    test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 2.0});
    const QByteArray entry = entryOf(u"a.flac"_s);
    QByteArray bytes = folder.read(u"a.flac"_s);
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    folder.write(u"a.flac"_s, bytes);
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, entry));
    EXPECT_TRUE(report.contains(u"a.flac : OK\n"_s));
    EXPECT_TRUE(report.contains(u"ERROR"_s)) << qPrintable(report);
    EXPECT_TRUE(report.endsWith(u"1 of 1 file is damaged\n"_s)) << qPrintable(report);
    EXPECT_TRUE(task->error());
    EXPECT_EQ(statesOf(*task), std::vector{State::Damaged});
}

TEST_F(VerifyFFPTaskTest, PutsTheErrorTextBeforeTheName)
{
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, "gone.flac:0123456789abcdef0123456789abcdef\n"));
    const QString line = report.section(u"Verify FFP: l.ffp\n"_s, 1);
    EXPECT_TRUE(line.contains(u"FLAC__METADATA_CHAIN"_s)) << qPrintable(report);
    EXPECT_TRUE(report.contains(u" : gone.flac\n"_s)) << qPrintable(report);
    EXPECT_FALSE(report.contains(u"Verify Flac Files"_s));
    EXPECT_EQ(statesOf(*task), std::vector{State::Missing});
    EXPECT_TRUE(task->error());
}

TEST_F(VerifyFFPTaskTest, NeverFindsANameWithAFolderTheSame)
{
    test::writeFlac(folder.path(u"cd2/t01.flac"_s), {.seconds = 0.2});
    const QByteArray signature = entryOf(u"cd2/t01.flac"_s).split(':').last();
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, "cd2/t01.flac:" + signature + "t01.flac:" + signature.toUpper()));
    EXPECT_TRUE(report.startsWith(u"Verify FFP: l.ffp\ncd2/t01.flac : did not match fingerprint file\n"_s)) << qPrintable(report);
    EXPECT_EQ(statesOf(*task), (std::vector{State::Different, State::Missing}));
}

TEST_F(VerifyFFPTaskTest, DoesNotWaitForAPipe)
{
    ASSERT_EQ(::mkfifo(QFile::encodeName(folder.path(u"a.flac"_s)).constData(), 0600), 0);
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, "a.flac:0123456789abcdef0123456789abcdef\n"));
    EXPECT_EQ(statesOf(*task), std::vector{State::Unreadable}) << qPrintable(report);
    EXPECT_TRUE(task->error());
}

TEST_F(VerifyFFPTaskTest, VouchesForNoFileWithoutAFingerprint)
{
    test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.3});
    QByteArray bytes = folder.read(u"a.flac"_s);
    folder.write(u"a.flac"_s, bytes.replace(26, 16, QByteArray(16, '\0')));
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, "a.flac:" + QByteArray(32, '0') + '\n'));
    EXPECT_TRUE(report.contains(u"a.flac : OK\n"_s)) << qPrintable(report);
    EXPECT_TRUE(task->error());
    ASSERT_EQ(task->outcome().listedFiles.size(), 1U);
    EXPECT_EQ(task->outcome().listedFiles[0].detail, u"its encoder stored none");
}

TEST_F(VerifyFFPTaskTest, CountsAllLinesForItsProgress)
{
    for (const QString &name : {u"a.flac"_s, u"b.flac"_s, u"c.flac"_s})
        test::writeFlac(folder.path(name), {.seconds = 0.1});
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "out=ok\\n");
    QList<double> shown;
    QObject::connect(&queue, &NURVTaskQueue::rowChanged, &queue, [&](int row) {
        const auto &job = queue.panelArray()[static_cast<std::size_t>(row)];
        if (job->topTextField().text.startsWith(u"Verifying c"_s) && (shown.isEmpty() || shown.last() != job->progressIndicator().value))
            shown.append(job->progressIndicator().value);
    });
    verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, ";h\n\n" + entryOf(u"a.flac"_s) + entryOf(u"b.flac"_s) + entryOf(u"c.flac"_s)));
    // Two of six lines, the empty one behind the last line end included, were done when the third began, and three when it
    // ended.
    ASSERT_EQ(shown.size(), 2);
    EXPECT_NEAR(shown[0], 200.0 / 6.0, 0.001);
    EXPECT_EQ(shown[1], 50.0);
}

TEST_F(VerifyFFPTaskTest, DecodesNoFurtherFileWhenItIsCanceled)
{
    QByteArray list;
    for (const QString &name : {u"a.flac"_s, u"b.flac"_s, u"c.flac"_s}) {
        test::writeFlac(folder.path(name), {.seconds = 0.1});
        list += entryOf(name);
    }
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "log=" + folder.path(u"runs"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8()
                                 + ";out=ok\\n");
    const auto results = std::make_shared<NURVTaskResults>();
    const auto task = std::make_shared<VerifyFFPTask>(&queue, folder.write(u"l.ffp"_s, list), results);
    results->addTaskInSet(*task);
    queue.addTask(task);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"runs"_s); }));
    task->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(results->results(*task), u"Verify FFP: l.ffp\na.flac : OK\nb.flac : OK\nc.flac : OK\n\nVerify Flac Files in l.ffp\n"
                                       "a.flac: testing, 100% complete\na.flac: ok\ncanceled before 2 of 3 files were decoded\n");
    EXPECT_EQ(folder.read(u"runs"_s).count('\n'), 1);
    EXPECT_EQ(task->textField().text, u"Canceled");
}

TEST_F(VerifyFFPTaskTest, ComparesItsListToTheEndAndDecodesNothingWhenItIsCanceledBefore)
{
    const QByteArray entry = "a.flac:0123456789abcdef0123456789abcdef\n";
    folder.write(u"a.flac"_s, "abc");
    tools.remove(u"metaflac"_s);
    tools.addFake(u"metaflac"_s, "log=" + folder.path(u"runs"_s).toUtf8() + ";wait-file=" + folder.path(u"go-on"_s).toUtf8()
                                     + ";out=0123456789abcdef0123456789abcdef\\n");
    const auto results = std::make_shared<NURVTaskResults>();
    const auto task = std::make_shared<VerifyFFPTask>(&queue, folder.write(u"l.ffp"_s, entry.repeated(3)), results);
    results->addTaskInSet(*task);
    queue.addTask(task);
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"runs"_s); }));
    task->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(finish());
    EXPECT_EQ(results->results(*task), u"Verify FFP: l.ffp\na.flac : OK\na.flac : OK\na.flac : OK\n\nVerify Flac Files in l.ffp\n"
                                       "canceled before 3 of 3 files were decoded\n");
    EXPECT_EQ(folder.read(u"runs"_s).count('\n'), 3);
}

TEST_F(VerifyFFPTaskTest, FindsAFileUnreadableWhoseDecoderWasEnded)
{
    test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1});
    const QByteArray entry = entryOf(u"a.flac"_s);
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "signal=9");
    const auto task = verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, entry));
    EXPECT_EQ(statesOf(*task), std::vector{State::Unreadable});
    EXPECT_EQ(task->outcome().listedFiles[0].detail, u"flac was ended by signal 9 (Killed) while working on a.flac");
}

TEST_F(VerifyFFPTaskTest, FailsForAListThatIsEmptyOrCannotBeRead)
{
    EXPECT_TRUE(verify<VerifyFFPTask>(folder.write(u"l.ffp"_s, ""))->error());
    EXPECT_EQ(report, u"Verify FFP: l.ffp\nthe list is empty\n");
    EXPECT_TRUE(verify<VerifyFFPTask>(folder.path(u"gone.ffp"_s))->error());
}

} // namespace
} // namespace nurv
