// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ScriptedPrompts.h"
#include "checksum/ChecksumFixture.h"
#include "checksum/ChecksumTab.h"
#include "support/AudioFixtures.h"
#include "support/ProgramFolder.h"

using namespace Qt::StringLiterals;

namespace nurv {
namespace {

const QByteArray kDigestOfAbc = "900150983cd24fb0d6963f7d28e17f72";

/// Where the tab writes lists, and what it makes of that which stands there.
class ListPlacesTest : public ::testing::Test {
protected:
    ListPlacesTest()
    {
        NURVController::registerDefaults(toolbox());
        for (const QString &key : {u"checksumFileUsesOutputDirName"_s, u"ffpExtension"_s})
            SettingsStore::instance().remove(key);
        tools.addAllReal();
        tab.commandOptions.setSelectedIndex(ChecksumTab::CreateList);
        tab.sourceSaveButton.setOn(true);
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::taskEnded, &controller,
                         [this](const std::shared_ptr<NURVTask> &task) { ended.push_back(task); });
        QObject::connect(&controller.taskQueue(), &NURVTaskQueue::outputWindowRequested, &controller,
                         [this](const QString &text, const QString &) { windows.append(text); });
    }
    void begin(const QString &kind, const QStringList &files)
    {
        ended.clear();
        windows.clear();
        tab.createChecksumOptions.selectTitle(kind);
        tab.addMatchedFiles(files);
        tab.executeCommand();
    }
    void create(const QString &kind, const QStringList &files)
    {
        begin(kind, files);
        EXPECT_TRUE(test::waitUntil([this] { return controller.taskQueue().taskCount() == 0; }));
    }
    void expectRefusal(const QString &name, const QString &reason)
    {
        prompts.expectAsk(Alert{.title = name + u" cannot be the list"_s, .message = reason, .buttons = {u"OK"_s}}, u"OK"_s);
    }
    /// What stands behind the first two lines.
    [[nodiscard]] QByteArray entriesOf(const QString &name) const
    {
        const QByteArray text = folder.read(name);
        return text.sliced(text.indexOf("\n\n") + 2);
    }

    test::TestFolder folder;
    test::ProgramFolder tools;
    test::ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
    ChecksumTab tab{controller};
    std::vector<std::shared_ptr<NURVTask>> ended;
    QStringList windows;
};

TEST_F(ListPlacesTest, AListLeavesItselfOutWhenItIsMadeOnceMore)
{
    const QStringList files{folder.write(u"a.txt"_s, "abc"), folder.write(u"md5sum.md5"_s, "old"), folder.write(u"other.md5"_s, "abc")};
    create(u"MD5"_s, files);
    EXPECT_EQ(entriesOf(u"md5sum.md5"_s), kDigestOfAbc + " *a.txt\n" + kDigestOfAbc + " *other.md5\n");
    tab.sourceSaveButton.setOn(false);
    prompts.expectSavePath(u"md5sum.md5"_s, u"Save md5 as..."_s, files[1]);
    create(u"MD5"_s, files);
    EXPECT_EQ(entriesOf(u"md5sum.md5"_s), kDigestOfAbc + " *a.txt\n" + kDigestOfAbc + " *other.md5\n");
}

TEST_F(ListPlacesTest, NoListTakesThePlaceOfTheOnlyFile)
{
    const QString list = folder.write(u"md5sum.md5"_s, "precious");
    expectRefusal(u"md5sum.md5"_s, u"It is one of the files that are to be listed."_s);
    create(u"MD5"_s, {list});
    EXPECT_EQ(folder.read(u"md5sum.md5"_s), "precious");
}

TEST_F(ListPlacesTest, NoListBesideItsFilesHasTheNameOfASound)
{
    SettingsStore::instance().setValue(u"ffpExtension"_s, u"flac"_s);
    const QStringList files{test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1}),
                            test::writeFlac(folder.path(u"fingerprint.flac"_s), {.seconds = 0.1})};
    const QByteArray before = folder.read(u"fingerprint.flac"_s);
    expectRefusal(u"fingerprint.flac"_s, u"It is one of the files that are to be listed."_s);
    create(u"FFP"_s, files);
    expectRefusal(u"fingerprint.flac"_s, u"Its name is that of a sound file."_s);
    tab.clearFiles();
    create(u"FFP"_s, {files[0]});
    expectRefusal(u"fingerprint.flac"_s, u"It is one of the files that are to be listed."_s);
    tab.clearFiles();
    create(u"All"_s, files);
    EXPECT_EQ(folder.read(u"fingerprint.flac"_s), before);
    EXPECT_EQ(folder.list(), (QStringList{u"a.flac"_s, u"fingerprint.flac"_s}));
}

TEST_F(ListPlacesTest, SingleListsBesideTheirFilesReplaceOlderOnes)
{
    const QString flac = test::writeFlac(folder.path(u"a.flac"_s), {.seconds = 0.1});
    for (const auto &[kind, name] : {std::pair{u"MD5"_s, u"md5sum.md5"_s}, std::pair{u"ST5"_s, u"checksum.st5"_s},
                                     std::pair{u"FFP"_s, u"fingerprint.ffp.txt"_s}}) {
        folder.write(name, "old");
        create(kind, {flac});
        EXPECT_TRUE(entriesOf(name).contains("a.flac")) << qPrintable(name);
    }
}

TEST_F(ListPlacesTest, ThreeListsInOneGoAskBeforeTheyReplaceOlderOnes)
{
    const QStringList files{folder.write(u"a.txt"_s, "abc"), folder.write(u"md5sum.md5"_s, "old")};
    const auto question = [](const QString &title) { return Alert{.title = title, .message = {}, .buttons = {u"No"_s, u"Yes"_s}}; };
    prompts.expectAsk(question(u"md5sum.md5 exists already.  Do you want to replace it?"_s), u"No"_s);
    create(u"All"_s, files);
    EXPECT_EQ(folder.read(u"md5sum.md5"_s), "old");
    EXPECT_TRUE(tab.fileNames().isEmpty());
    folder.write(u"checksum.st5"_s, "old");
    prompts.expectAsk(question(u"md5sum.md5, checksum.st5 exist already.  Do you want to replace them?"_s), u"Yes"_s);
    create(u"All"_s, files);
    EXPECT_EQ(entriesOf(u"md5sum.md5"_s), kDigestOfAbc + " *a.txt\n") << "and it does not list itself";
    tab.replaceListsButton.setOn(true);
    folder.write(u"md5sum.md5"_s, "old");
    create(u"All"_s, files);
    EXPECT_EQ(entriesOf(u"md5sum.md5"_s), kDigestOfAbc + " *a.txt\n");
}

TEST_F(ListPlacesTest, ACanceledSt5JobKeepsTheOlderList)
{
    tools.remove(u"shntool"_s);
    tools.addFake(u"shntool"_s, "create=" + folder.path(u"waits"_s).toUtf8() + ";out=01  [shntool]  a.wav\\n;wait-file="
                                    + folder.path(u"go-on"_s).toUtf8() + ";out=02  [shntool]  b.wav\\n");
    folder.write(u"checksum.st5"_s, "old");
    begin(u"ST5"_s, {folder.write(u"a.wav"_s, "x"), folder.write(u"b.wav"_s, "x")});
    ASSERT_TRUE(test::waitUntil([this] { return folder.exists(u"waits"_s); }));
    controller.taskQueue().panelArray()[0]->cancelTask();
    folder.write(u"go-on"_s, "");
    ASSERT_TRUE(test::waitUntil([this] { return controller.taskQueue().taskCount() == 0; }));
    EXPECT_EQ(folder.read(u"checksum.st5"_s), "old");
    EXPECT_EQ(ended.at(0)->textField().text, u"Canceled");
    EXPECT_TRUE(ended.at(0)->outcome().output.isEmpty());
}

TEST_F(ListPlacesTest, TheWindowOfAnSt5JobNamesTheFilesThatAreMissing)
{
    const QStringList files{test::writeWav(folder.path(u"a.wav"_s), {.seconds = 0.2}), folder.write(u"b.wav"_s, "no sound"),
                            folder.path(u"gone.wav"_s)};
    create(u"ST5"_s, files);
    ASSERT_EQ(windows.size(), 1);
    EXPECT_TRUE(windows[0].startsWith(u"2 of 3 files are not in the list\nb.wav is not in the list\ngone.wav is not in the list\n"
                                      "shntool [hash]: warning: "_s))
        << qPrintable(windows[0]);
    EXPECT_TRUE(ended.at(0)->error());
    EXPECT_EQ(entriesOf(u"checksum.st5"_s).count('\n'), 1);
    create(u"ST5"_s, {files[1]});
    EXPECT_TRUE(windows.value(0).startsWith(u"1 of 1 file is not in the list\nb.wav is not in the list\n"_s)) << qPrintable(windows.value(0));
}

} // namespace
} // namespace nurv
