// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/WorkerThreads.h"
#include "convert/ConvertFixture.h"
#include "convert/TaggedSource.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QString kOverwriteQuestion =
    u"One of the output files already exists and will be overwritten.  Are you sure you want to continue?"_s;

/// What an archive from a stranger may hold beside its sounds.
class HostileNamesTest : public test::ConvertFixture {
protected:
    HostileNamesTest() { set(u"warnOnDelete", false); }

    [[nodiscard]] QString source(const QString &kind) const
    {
        QString path = folder.path(u"01."_s + kind.toLower());
        if (!QFile::exists(path))
            test::makeTaggedSource(path, kind, {.seconds = 0.2});
        return path;
    }

    /// Presses the button with a link of that name beside the source, to a file, to a folder, and to where
    /// nothing is yet; expects the job to fail by name, and nothing to change.
    template<typename Tab>
    void expectRefusal(Tab &tab, const QString &source, const QString &linkName, const QString &problem)
    {
        for (const QString &target : {u"precious"_s, u"nothing"_s, u"folder"_s}) {
            SCOPED_TRACE(qPrintable(source.section(u'/', -1) + u' ' + linkName + u" to "_s + target));
            endedTasks.clear();
            outside.write(u"precious"_s, "somebody's");
            outside.makeFolder(u"folder"_s);
            const QString link = folder.makeLink(linkName, outside.path(target));
            const QStringList before = folder.list();
            if (linkName.endsWith(u".flac"_s) || (source.endsWith(u".flac"_s) && linkName.startsWith(u"01.flac."_s)))
                prompts.expectAsk(kOverwriteQuestion, {u"No"_s, u"Yes"_s}, u"Yes"_s);
            runBeside(tab, {source});
            ASSERT_TRUE(test::waitUntil([] { return workerThreads::runningCount() == 0; }));
            ASSERT_EQ(endedTasks.size(), 1U);
            EXPECT_TRUE(endedTasks[0]->error());
            EXPECT_TRUE(endedTasks[0]->report().contains(problem)) << qPrintable(endedTasks[0]->report());
            EXPECT_EQ(outside.read(u"precious"_s), "somebody's");
            EXPECT_EQ(outside.list(), QStringList{u"precious"_s});
            EXPECT_TRUE(QFileInfo(link).isSymLink());
            EXPECT_EQ(folder.list(), before);
            folder.remove(linkName);
        }
    }

    test::TestFolder outside;
};

const QString kOutputIsLink = u"its output name is a link"_s;

} // namespace

TEST_F(HostileNamesTest, NoEncoderWritesThroughALink)
{
    for (const QString &kind : {u"WAV"_s, u"AIFF"_s, u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}) {
        EncodeTab tab(controller);
        tab.sourceEncodeButton.setOn(true);
        for (const QString &format : {u"SHN"_s, u"FLAC"_s, u"APE"_s, u"WV"_s, u"TTA"_s, u"M4A"_s}) {
            if (format == kind)
                continue;
            ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
            expectRefusal(tab, source(kind), u"01."_s + format.toLower(), kOutputIsLink);
        }
        folder.remove(u"01."_s + kind.toLower());
    }
}

TEST_F(HostileNamesTest, NoDecoderWritesThroughALink)
{
    for (const QString &kind : {u"FLAC"_s, u"SHN"_s, u"WV"_s, u"TTA"_s, u"APE"_s, u"M4A"_s}) {
        DecodeTab tab(controller);
        tab.sourceDecodeButton.setOn(true);
        for (const QString &format : {u"WAV"_s, u"AIFF"_s}) {
            ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(format));
            expectRefusal(tab, source(kind), u"01."_s + format.toLower(), kOutputIsLink);
        }
        folder.remove(u"01."_s + kind.toLower());
    }
}

TEST_F(HostileNamesTest, NoTemporaryNameOfAProgramMayBeALink)
{
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"FLAC"_s));
    for (const QString &kind : {u"WAV"_s, u"M4A"_s, u"FLAC"_s}) {
        for (const QString &suffix : {u".metadata_edit"_s, u".tmp,fl-ac+en'c"_s})
            expectRefusal(tab, source(kind), u"01.flac"_s + suffix, u"has the name of a temporary file"_s);
        folder.remove(u"01."_s + kind.toLower());
    }
}

TEST_F(HostileNamesTest, NoTemporaryNameOfAProgramMayBeAFile)
{
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"FLAC"_s));
    for (const QString &name : {u"01.flac.metadata_edit"_s, u"01.flac.tmp,fl-ac+en'c"_s}) {
        folder.write(name, "somebody's");
        runBeside(tab, {source(u"M4A"_s)});
        ASSERT_FALSE(endedTasks.empty());
        EXPECT_TRUE(endedTasks.back()->error());
        EXPECT_TRUE(endedTasks.back()->report().contains(name)) << qPrintable(endedTasks.back()->report());
        EXPECT_EQ(folder.read(name), "somebody's");
        EXPECT_FALSE(folder.exists(u"01.flac"_s));
        folder.remove(name);
    }
}

TEST_F(HostileNamesTest, NoLinkThatComesWhileAnEncoderRunsIsWrittenThrough)
{
    const QString victim = outside.write(u"precious"_s, "somebody's");
    const QString link = folder.path(u"01.flac.metadata_edit"_s);
    const QString m4a = source(u"M4A"_s);
    const test::ProgramFolder tools;
    tools.addAllReal();
    const QByteArray flac = QFileInfo(tools.path(u"flac"_s)).canonicalFilePath().toUtf8();
    tools.remove(u"flac"_s);
    tools.addFake(u"flac"_s, "link=" + victim.toUtf8() + ':' + link.toUtf8() + ";exec=" + flac);
    EncodeTab tab(controller);
    tab.sourceEncodeButton.setOn(true);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"FLAC"_s));
    runBeside(tab, {m4a});
    EXPECT_EQ(outside.read(u"precious"_s), "somebody's");
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->report().contains(u"has the name of a temporary file of metaflac"_s))
        << qPrintable(endedTasks[0]->report());
    EXPECT_TRUE(QFileInfo(link).isSymLink());
}

TEST_F(HostileNamesTest, NoFolderOfAnOutputMayBeALink)
{
    EncodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"FLAC"_s));
    tab.originals.keepFoldersButton.setOn(true);
    folder.makeFolder(u"show"_s);
    test::writeWav(folder.path(u"show/01.wav"_s));
    const QString link = out.makeLink(u"show"_s, outside.path());
    prompts.expectOutputFolder(out.path());
    tab.addFiles({folder.path(u"show"_s)});
    tab.executeCommand();
    ASSERT_TRUE(finish());
    ASSERT_EQ(endedTasks.size(), 1U);
    EXPECT_TRUE(endedTasks[0]->report().contains(u"its folder %1 is a link"_s.arg(link)))
        << qPrintable(endedTasks[0]->report());
    EXPECT_EQ(outside.list(), QStringList());
}

TEST_F(HostileNamesTest, NoFileOnTheWayMayBeALink)
{
    // shntool names what it makes by itself: "01.SHN" becomes "01.SHN.wav".
    const QString loud = folder.path(u"01.SHN"_s);
    ASSERT_TRUE(QFile::rename(source(u"SHN"_s), loud));
    DecodeTab tab(controller);
    tab.sourceDecodeButton.setOn(true);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"WAV"_s));
    expectRefusal(tab, loud, u"01.SHN.wav"_s, u"has the name of a file on the way to its output"_s);
}

TEST_F(HostileNamesTest, ListsTakeThePlaceOfLinks)
{
    outside.write(u"shell"_s, "alias");
    folder.makeLink(u"md5sum.md5"_s, outside.path(u"shell"_s));
    EncodeTab shorten(controller);
    shorten.sourceEncodeButton.setOn(true);
    shorten.generateMD5Button.setOn(true);
    ASSERT_TRUE(shorten.outputFormatMatrix.selectTitle(u"SHN"_s));
    runBeside(shorten, {source(u"WAV"_s)});
    EXPECT_EQ(outside.read(u"shell"_s), "alias");
    EXPECT_TRUE(folder.read(u"md5sum.md5"_s).contains(" *01.shn\n")) << folder.read(u"md5sum.md5"_s).constData();

    folder.makeLink(u"fingerprint.ffp.txt"_s, outside.path(u"shell"_s));
    EncodeTab flac(controller);
    flac.sourceEncodeButton.setOn(true);
    flac.generateFFPButton.setOn(true);
    ASSERT_TRUE(flac.outputFormatMatrix.selectTitle(u"FLAC"_s));
    runBeside(flac, {source(u"WAV"_s)});
    EXPECT_EQ(outside.read(u"shell"_s), "alias");
    EXPECT_FALSE(QFileInfo(folder.path(u"fingerprint.ffp.txt"_s)).isSymLink());
    EXPECT_TRUE(folder.read(u"fingerprint.ffp.txt"_s).contains("01.flac:"))
        << folder.read(u"fingerprint.ffp.txt"_s).constData();
}

} // namespace nurv
