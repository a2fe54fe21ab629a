// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/FileIntake.h"
#include "settings/SettingsStore.h"
#include "support/WaitUntil.h"
#include "ui/ElidedLabel.h"
#include "ui/EmptyListPanel.h"
#include "ui/FileListView.h"
#include "ui/pages/TabPage.h"
#include "ui/RecentFolders.h"
#include "ui/WindowFixture.h"

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace nurv::test {

namespace {

/// What an empty list offers, and what is said of files that are not for it.
class EmptyListTest : public ::testing::Test, public WindowFixture {
protected:
    EmptyListTest()
    {
        controller.selectTab(u"encode"_s);
        encodeTab.setRefusalMessageDelay(0);
        show();
    }
    ~EmptyListTest() override { SettingsStore::instance().remove(u"window/recentFolders"_s); }
    template<typename Widget>
    [[nodiscard]] Widget *part(const QString &objectName) const
    {
        return page->findChild<Widget *>(objectName);
    }
    [[nodiscard]] QStringList recentFolders() const
    {
        auto *const menu = part<QMenu>(u"recentFoldersMenu"_s);
        Q_EMIT menu->aboutToShow();
        QStringList titles;
        for (const QAction *const action : menu->actions())
            titles.append(action->text());
        return titles;
    }

    TabPage *page = window.page(u"encode"_s);
    EmptyListPanel *panel = part<EmptyListPanel>(u"emptyListPanel"_s);
};

} // namespace

TEST_F(EmptyListTest, OffersToFillItWhileItIsEmpty)
{
    EXPECT_TRUE(panel->isVisible());
    prompts.expectFilesToAdd(controller, u"encode"_s, {folder.write(u"a.wav"_s, "x")});
    QTest::mouseClick(part<QPushButton>(u"emptyAddFilesButton"_s), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return encodeTab.fileNames().size() == 1; }));
    EXPECT_FALSE(panel->isVisible());
    encodeTab.clearFiles();
    EXPECT_TRUE(panel->isVisible());
    EXPECT_GE(panel->y(), static_cast<int>(page->fileList()->hintBottom())) << "it would lie on the hint";
    window.resize(window.width(), 260);
    handleWaitingEvents();
    EXPECT_EQ(panel->isVisible(), panel->geometry().bottom() < page->fileList()->viewport()->height());
}

TEST_F(EmptyListTest, OffersTheFoldersThatFilesCameFromLately)
{
    EXPECT_THAT(recentFolders(), ElementsAre(u"None yet"_s));
    folder.write(u"one/a.wav"_s, "x");
    folder.write(u"t&o/b.wav"_s, "x");
    for (const QString &name : {u"one"_s, u"t&o"_s}) {
        page->addPaths({folder.path(name)});
        ASSERT_TRUE(waitUntil([this] { return !page->isAddingFiles(); }));
    }
    page->addPaths({folder.write(u"three/c.wav"_s, "x")});
    ASSERT_TRUE(waitUntil([this] { return encodeTab.fileNames().size() == 3; }));
    // Nothing came of this one.
    prompts.expectAsk(u"Some files types were not recognized by this tab and were skipped"_s, {u"OK"_s}, u"OK"_s);
    page->addPaths({folder.write(u"notes/x.odt"_s, "x")});
    ASSERT_TRUE(waitUntil([this] { return prompts.unaskedCount() == 0 && !page->isAddingFiles(); }));
    EXPECT_THAT(recentFolders(),
                ElementsAre(folder.path(u"three"_s), folder.path(u"t&&o"_s), folder.path(u"one"_s)));
    ASSERT_TRUE(QDir(folder.path(u"one"_s)).removeRecursively());
    EXPECT_EQ(recentFolders().size(), 2);

    encodeTab.clearFiles();
    part<QMenu>(u"recentFoldersMenu"_s)->actions().at(1)->trigger();
    ASSERT_TRUE(waitUntil([this] { return encodeTab.fileNames().size() == 1; }));
    EXPECT_EQ(encodeTab.fileNames().first(), folder.path(u"t&o/b.wav"_s));
    EXPECT_EQ(recentFolders().first(), folder.path(u"t&&o"_s));
}

TEST_F(EmptyListTest, KeepsSoManyFolders)
{
    RecentFolders folders;
    FileIntake intake;
    intake.accept(u"/a"_s);
    for (int number = 0; number < 20; ++number) {
        intake.given = {{.name = {}, .path = folder.makeFolder(QString::number(number)), .isFolder = true}};
        folders.note(intake);
    }
    EXPECT_EQ(folders.paths().size(), RecentFolders::kMost);
    EXPECT_EQ(folders.paths().first(), folder.path(u"19"_s));
    folders.forget();
    EXPECT_THAT(folders.paths(), IsEmpty());
}

TEST_F(EmptyListTest, SaysOnWhichPageFilesBelongAndTakesThemThere)
{
    auto *const elsewhere = part<QWidget>(u"elsewhere"_s);
    const QString list = folder.write(u"show/show.md5"_s, "x");
    prompts.expectAsk(u"File types not supported by this tab"_s, {u"OK"_s}, u"OK"_s);
    ASSERT_TRUE(dropOn(page->fileList()->viewport(), {list}));
    ASSERT_TRUE(waitUntil([&] { return elsewhere->isVisible(); }));
    EXPECT_EQ(part<ElidedLabel>(u"elsewhereLabel"_s)->line(), u"show.md5 belongs on the page “Checksum”."_s);
    QTest::mouseClick(part<QPushButton>(u"elsewhereButton"_s), Qt::LeftButton);
    EXPECT_EQ(controller.selectedTabViewItem(), u"checksum"_s);
    ASSERT_TRUE(waitUntil([&] { return checksumTab.fileNames() == QStringList(list); }));
    EXPECT_FALSE(elsewhere->isVisibleTo(page));
    EXPECT_EQ(prompts.unaskedCount(), 0);
}

TEST_F(EmptyListTest, SaysNothingOfFilesThatNoPageTakesAndWhereSomeWereTaken)
{
    auto *const elsewhere = part<QWidget>(u"elsewhere"_s);
    prompts.expectAsk(u"File types not supported by this tab"_s, {u"OK"_s}, u"OK"_s);
    page->addPaths({folder.write(u"a.odt"_s, "x")});
    ASSERT_TRUE(waitUntil([this] { return prompts.unaskedCount() == 0 && !page->isAddingFiles(); }));
    EXPECT_FALSE(elsewhere->isVisible());
    prompts.expectAsk(u"Some files types were not recognized by this tab and were skipped"_s, {u"OK"_s}, u"OK"_s);
    page->addPaths({folder.write(u"both/a.md5"_s, "x"), folder.write(u"both/a.wav"_s, "x")});
    ASSERT_TRUE(waitUntil([this] { return encodeTab.fileNames().size() == 1; }));
    EXPECT_FALSE(elsewhere->isVisible());
}

} // namespace nurv::test
