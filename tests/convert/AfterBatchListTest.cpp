// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/ConvertFixture.h"
#include "convert/ShortenFixture.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

using AfterBatchListTest = test::ConvertFixture;

test::ProgramResult md5sumCheck(const QString &folder, const QString &list)
{
    return test::runProgram(u"sh"_s,
                            {u"-c"_s, u"cd \"$1\" && LC_ALL=C.UTF-8 exec md5sum -c \"$2\""_s, u"sh"_s, folder, list});
}

TEST_F(AfterBatchListTest, ListsAllShortenOutputsInOneFile)
{
    const test::ProgramFolder tools;
    const QString wav = test::writeWav(folder.path(u"b.wav"_s));
    tools.addReal(u"shntool"_s);
    tools.addReal(u"shorten"_s);
    EncodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"SHN"_s));
    tab.generateMD5Button.setOn(true);
    run(tab, {wav, test::writeWav(folder.path(u"a 1.wav"_s))});
    EXPECT_EQ(out.list(), (QStringList{u"a 1.shn"_s, u"b.shn"_s, u"md5sum.md5"_s}));
    const test::ProgramResult checked = md5sumCheck(out.path(), u"md5sum.md5"_s);
    EXPECT_EQ(checked.exitStatus, 0) << checked.errors.constData();
    EXPECT_EQ(checked.output, "a 1.shn: OK\nb.shn: OK\n");
    EXPECT_TRUE(outputWindows.isEmpty()) << qPrintable(outputWindows.join(u'\n'));
}

TEST_F(AfterBatchListTest, PutsTheListBesideTheFirstSourceWhenOutputsAreSpread)
{
    const test::ProgramFolder tools;
    const QString wav = test::writeWav(folder.path(u"cd1/a.wav"_s));
    tools.addReal(u"shntool"_s);
    tools.addReal(u"shorten"_s);
    set(u"checksumFileUsesOutputDirName", true);
    EncodeTab tab(controller);
    ASSERT_TRUE(tab.outputFormatMatrix.selectTitle(u"SHN"_s));
    tab.generateMD5Button.setOn(true);
    tab.sourceEncodeButton.setOn(true);
    runBeside(tab, {wav, test::writeWav(folder.path(u"cd2/b.wav"_s))});
    const QString list = QString::fromUtf8(folder.read(u"cd1/cd1.md5"_s));
    EXPECT_EQ(list.count(u" *"_s), 2);
    EXPECT_TRUE(list.contains(u" *a.shn\n"_s));
    EXPECT_TRUE(list.contains(u" *b.shn\n"_s));
    EXPECT_FALSE(folder.exists(u"cd2/cd2.md5"_s));
}

TEST_F(AfterBatchListTest, ListsTheFingerprintsOfEveryFolder)
{
    EncodeTab tab(controller);
    tab.generateFFPButton.setOn(true);
    tab.sourceEncodeButton.setOn(true);
    runBeside(tab, {test::writeWav(folder.path(u"cd1/b.wav"_s), {.seed = 4}),
                    test::writeWav(folder.path(u"cd1/a.wav"_s), {.seed = 5}),
                    test::writeWav(folder.path(u"cd2/a.wav"_s), {.seed = 6})});
    for (const QString &disc : {u"cd1"_s, u"cd2"_s}) {
        QByteArray expected;
        for (const QString &name : {u"a.flac"_s, u"b.flac"_s}) {
            if (folder.exists(disc + u'/' + name))
                expected +=
                    name.toUtf8() + ':'
                    + test::runProgram(u"metaflac"_s, {u"--show-md5sum"_s, folder.path(disc + u'/' + name)}).output;
        }
        EXPECT_EQ(folder.read(disc + u"/fingerprint.ffp.txt"_s).split('\n').mid(2).join('\n'), expected);
    }
}

TEST_F(AfterBatchListTest, ListsWhatIsThereAlsoWhenAJobFailed)
{
    EncodeTab tab(controller);
    tab.generateFFPButton.setOn(true);
    run(tab, {test::writeWav(folder.path(u"good.wav"_s)), folder.write(u"bad.wav"_s, "no sound")});
    const QByteArray list = out.read(u"fingerprint.ffp.txt"_s);
    EXPECT_TRUE(list.contains("good.flac:"));
    EXPECT_TRUE(list.contains("FLAC__METADATA_CHAIN"));
}

} // namespace
} // namespace nurv
