// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/NeededPrograms.h"

#include "base/WorkerThreads.h"
#include "convert/ConvertFixture.h"
#include "convert/TaggedSource.h"
#include "programs/ExternalPrograms.h"

#include <QDir>
#include <QSet>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using Names = QSet<QString>;

Names toldBy(const BaseTab &tab)
{
    const NeededPrograms programs = tab.neededPrograms();
    return Names(programs.launched.begin(), programs.launched.end())
           + Names(programs.helpers.begin(), programs.helpers.end());
}

/// Programs that write down that they were started, and no others along PATH, so that
/// nobody starts one unseen.
class NeededProgramsTest : public test::ConvertFixture {
protected:
    NeededProgramsTest() : m_formerPath(qgetenv("PATH"))
    {
        set(u"warnOnDelete", false);
        for (const ExternalProgram &program : externalPrograms()) {
            if (QDir(QString::fromLocal8Bit(NURV_BUILT_PROGRAMS)).exists(program.name))
                tools.addLogged(program.name, logOf(program.name));
        }
    }
    ~NeededProgramsTest() override { qputenv("PATH", m_formerPath); }

    /// Puts the file on the list, looks at what the tab tells, and then at what really starts.
    template<typename Tab>
    void expectTrueWords(Tab &tab, const QString &source, const QString &format)
    {
        SCOPED_TRACE(qPrintable(QFileInfo(source).fileName() + u" to "_s + format));
        for (const ExternalProgram &program : externalPrograms())
            QFile::remove(logOf(program.name));
        endedTasks.clear();
        ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
        tab.addMatchedFiles({source});
        const Names told = toldBy(tab);
        EXPECT_TRUE(queue().panelArray().empty() || queue().taskCount() == 0) << "asking queues nothing";
        EXPECT_EQ(started(), Names()) << "asking starts nothing";
        qputenv("PATH", QFile::encodeName(tools.path()));
        run(tab, {});
        ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
        qputenv("PATH", m_formerPath);
        for (const std::shared_ptr<NURVTask> &task : endedTasks)
            EXPECT_FALSE(task->error()) << qPrintable(task->report());
        EXPECT_FALSE(endedTasks.empty());
        EXPECT_EQ(told, started());
        for (const QString &name : out.list())
            out.remove(name);
    }
    /// Makes a file whose tags, if its kind has a place for any, have to be copied.
    QString makeSource(const QString &kind, int channels = 2)
    {
        const QString source = folder.path(u"Track 01."_s + kind.toLower());
        test::makeTaggedSource(source, kind,
                               {.bits = 16, .channels = channels, .seconds = 0.5, .extensible = channels > 2});
        if (kind == u"TTA") {
            // ID3v1: "TAG", 30 bytes of title, and what else makes 128 bytes.
            QFile file(source);
            EXPECT_TRUE(file.open(QIODevice::Append));
            file.write(QByteArray("TAGTitle").leftJustified(128, '\0'));
        }
        return source;
    }
    [[nodiscard]] QString logOf(const QString &program) const { return m_logs.path(program + u".log"_s); }
    [[nodiscard]] Names started() const
    {
        Names names;
        for (const ExternalProgram &program : externalPrograms()) {
            if (QFileInfo::exists(logOf(program.name)))
                names.insert(program.name);
        }
        return names;
    }

    test::ProgramFolder tools;

private:
    test::TestFolder m_logs;
    QByteArray m_formerPath;
};

std::string nameOf(const ::testing::TestParamInfo<const char *> &info)
{
    return info.param;
}

class EncodingNeedsTest : public NeededProgramsTest, public ::testing::WithParamInterface<const char *> {};

TEST_P(EncodingNeedsTest, AreToldAsTheyAre)
{
    const QString source = makeSource(QString::fromLatin1(GetParam()));
    EncodeTab tab(controller);
    for (const QString &format : {u"SHN"_s, u"FLAC"_s, u"APE"_s, u"WV"_s, u"TTA"_s, u"M4A"_s})
        expectTrueWords(tab, source, format);
}

INSTANTIATE_TEST_SUITE_P(EverySource, EncodingNeedsTest,
                         ::testing::Values("WAV", "AIFF", "FLAC", "SHN", "WV", "TTA", "APE", "M4A"), nameOf);

class DecodingNeedsTest : public NeededProgramsTest, public ::testing::WithParamInterface<const char *> {};

TEST_P(DecodingNeedsTest, AreToldAsTheyAre)
{
    const QString source = makeSource(QString::fromLatin1(GetParam()));
    DecodeTab tab(controller);
    for (const QString &format : {u"WAV"_s, u"AIFF"_s})
        expectTrueWords(tab, source, format);
}

INSTANTIATE_TEST_SUITE_P(EverySource, DecodingNeedsTest, ::testing::Values("FLAC", "SHN", "WV", "TTA", "APE", "M4A"),
                         nameOf);

TEST_F(NeededProgramsTest, FollowTheShapeOfASource)
{
    EncodeTab tab(controller);
    expectTrueWords(tab, makeSource(u"AIFF"_s, 6), u"FLAC"_s);
}

TEST_F(NeededProgramsTest, HoldThoseOfTheListAfterTheBatch)
{
    EncodeTab tab(controller);
    tab.generateFFPButton.setOn(true);
    expectTrueWords(tab, makeSource(u"WAV"_s), u"FLAC"_s);
    tab.generateMD5Button.setOn(true);
    expectTrueWords(tab, makeSource(u"WAV"_s), u"SHN"_s);
}

TEST_F(NeededProgramsTest, AreThoseOfAllFilesTogether)
{
    EncodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"FLAC"_s));
    tab.addMatchedFiles({folder.write(u"a.wav"_s, ""), folder.write(u"b.tta"_s, ""), folder.write(u"c.shn"_s, "")});
    EXPECT_EQ(toldBy(tab), (Names{u"flac"_s, u"ttaenc"_s, u"metaflac"_s, u"shntool"_s}));
    EXPECT_EQ(tab.fileNames().size(), 3);
    EXPECT_TRUE(queue().panelArray().empty());
    tab.clearFiles();
    EXPECT_EQ(toldBy(tab), Names());
}

} // namespace
} // namespace nurv
