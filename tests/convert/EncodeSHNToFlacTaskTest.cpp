// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/EncodeSHNToFlacTask.h"

#include "convert/ConvertFixture.h"
#include "convert/ShortenFixture.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

class EncodeSHNToFlacTaskTest : public test::ConvertFixture {
protected:
    /// What a Monkey's Audio file holds besides its sound: an APEv2 tag at its end.
    [[nodiscard]] static QByteArray apeTag(const QByteArray &key, const QByteArray &value)
    {
        const auto number = [](qsizetype n) {
            QByteArray bytes;
            for (int shift = 0; shift < 32; shift += 8)
                bytes.append(static_cast<char>((n >> shift) & 0xff));
            return bytes;
        };
        const QByteArray item = number(value.size()) + number(0) + key + '\0' + value;
        return item + "APETAGEX" + number(2000) + number(item.size() + 32) + number(1) + number(0)
               + QByteArray(8, '\0');
    }

    test::ProgramFolder tools;
};

TEST_F(EncodeSHNToFlacTaskTest, MakesFlacFromShortenThroughThePipeOfShntool)
{
    const QString wav = test::writeWav(folder.path(u"sound.wav"_s));
    const QString source = test::writeShorten(tools, wav, folder.path(u"it's \"a\" 100% b.shn"_s));
    for (const QString &tool : {u"shntool"_s, u"flac"_s})
        tools.addReal(tool);
    EncodeTab tab(controller);
    tab.flacSlider.setIntegerValue(8);
    tab.flacVerifyButton.setOn(true);
    run(tab, {source});
    EXPECT_EQ(endedTasks.at(0)->topTextField().text, u"Complete; not proven") << "no checksum tells of its end";
    EXPECT_TRUE(test::sameSound(wav, out.path(u"it's \"a\" 100% b.flac"_s)));
    EXPECT_TRUE(outputWindows.isEmpty());
}

TEST_F(EncodeSHNToFlacTaskTest, MakesFlacWithLax)
{
    const QString wav = test::writeWav(folder.path(u"sound.wav"_s));
    const QString source = test::writeShorten(tools, wav, folder.path(u"a.shn"_s));
    for (const QString &tool : {u"shntool"_s, u"flac"_s})
        tools.addReal(tool);
    EncodeTab tab(controller);
    tab.flacLaxButton.setOn(true);
    run(tab, {source});
    EXPECT_TRUE(test::sameSound(wav, out.path(u"a.flac"_s)));
}

TEST_F(EncodeSHNToFlacTaskTest, ShowsTheFigureAsTheToolWroteIt)
{
    const QString goOn = folder.path(u"go-on"_s);
    tools.addFake(u"shntool"_s, "out=\\b\\b\\b\\b\\b  7% ;wait-file=" + goOn.toUtf8());
    EncodeTab tab(controller);
    prompts.expectOutputFolder(out.path());
    tab.addFile(folder.path(u"a.Ape"_s));
    tab.executeCommand();
    const auto task = queuedConversions().at(0);
    ASSERT_TRUE(test::waitUntil([&] { return task->progressIndicator().value == 7.0; }));
    EXPECT_EQ(task->topTextField().text, u"Encoding APE to Flac:   7%");
    folder.write(u"go-on"_s, "");
    EXPECT_TRUE(finish());
}

TEST_F(EncodeSHNToFlacTaskTest, CopiesTheTagsOfMonkeysAudioAndKeepsOthers)
{
    const QString made = test::writeFlac(folder.path(u"made.flac"_s));
    ASSERT_EQ(test::runProgram(u"metaflac"_s, {u"--set-tag=ARTIST=Kept"_s, made}).exitStatus, 0);
    // 16-bit stereo, no sound: enough of a head for a reader of tags.
    const QString source = folder.write(u"a.ape"_s, "MAC " + QByteArray(512, '\0') + apeTag("Title", "Ünder"));
    tools.addFake(u"shntool"_s, "copy=" + made.toUtf8() + ':' + out.path(u"a.flac"_s).toUtf8());
    tools.addReal(u"metaflac"_s);
    EncodeTab tab(controller);
    run(tab, {source});
    const QStringList tags = test::metaflacTags(out.path(u"a.flac"_s));
    EXPECT_TRUE(tags.contains(u"TITLE=Ünder"_s)) << qPrintable(tags.join(u'|'));
    EXPECT_TRUE(tags.contains(u"ARTIST=Kept"_s));
}

TEST_F(EncodeSHNToFlacTaskTest, CopiesNoTagsForShorten)
{
    const QString made = test::writeFlac(folder.path(u"made.flac"_s));
    const QString source = folder.write(u"a.shn"_s, "ajkg\x02");
    tools.addFake(u"shntool"_s, "copy=" + made.toUtf8() + ':' + out.path(u"a.flac"_s).toUtf8());
    EncodeTab tab(controller);
    run(tab, {source});
    EXPECT_EQ(out.read(u"a.flac"_s), folder.read(u"made.flac"_s));
}

} // namespace
} // namespace nurv
