// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagFixtures.h"
#include "support/WaitUntil.h"
#include "tagging/TagFiles.h"
#include "ui/AlbumArtWell.h"
#include "ui/FileListView.h"
#include "WindowFixture.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class TagsPageTest : public ::testing::Test, public WindowFixture {
protected:
    TagsPageTest()
    {
        tagsTab.previewButton.setOn(false);
        controller.selectTab(u"Tags"_s);
        show();
    }
    void add(const QStringList &paths)
    {
        tagsTab.addMatchedFiles(paths);
        tagsTab.finishReading();
    }
    template<typename Widget>
    [[nodiscard]] Widget *onPage(const QString &name) const
    {
        return find<QWidget>(u"tagsPage"_s)->findChild<Widget *>(name);
    }
};

TEST_F(TagsPageTest, ShowsNewFilesSelectedAndWritesWhatIsTyped)
{
    const QString path = writeTaggableFlac(folder, u"a.flac"_s);
    auto *const button = onPage<QPushButton>(u"executeButton"_s);
    EXPECT_FALSE(button->isEnabled());
    add({path});
    EXPECT_TRUE(button->isEnabled());
    EXPECT_EQ(onPage<FileListView>(u"fileList"_s)->selectionModel()->selectedRows().size(), 1);
    auto *const title = onPage<QLineEdit>(u"titleText"_s);
    title->setFocus();
    QTest::keyClicks(title, u"Song"_s);
    QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(*tagFiles::read(path)->titleText(), u"Song");
    EXPECT_EQ(onPage<QLabel>(u"note"_s)->text(), u"The tags of 1 file were written.");
}

TEST_F(TagsPageTest, SaysVariousAndFollowsTheSelection)
{
    const QStringList paths{writeTaggableFlac(folder, u"a.flac"_s), writeTaggableFlac(folder, u"b.flac"_s)};
    for (const QString &path : paths) {
        TagsObject record;
        record.setArtistText(path.right(6));
        tagFiles::write(path, record, false);
    }
    add(paths);
    auto *const artist = onPage<QLineEdit>(u"artistText"_s);
    EXPECT_EQ(artist->text(), QString());
    EXPECT_EQ(artist->placeholderText(), u"various");
    EXPECT_FALSE(onPage<QLineEdit>(u"titleText"_s)->isEnabled());
    auto *const list = onPage<FileListView>(u"fileList"_s);
    list->selectionModel()->setCurrentIndex(list->model()->index(1, 0),
                                            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    EXPECT_EQ(tagsTab.selectedRows(), QList<int>{1});
    tagsTab.finishReading();
    EXPECT_EQ(artist->text(), u"b.flac");
    EXPECT_EQ(artist->placeholderText(), QString());
    list->clearSelection();
    EXPECT_FALSE(onPage<QPushButton>(u"executeButton"_s)->isEnabled());
}

TEST_F(TagsPageTest, TheCueSheetIsOfferedOnThisPageAlone)
{
    auto *const action = find<QAction>(u"loadCueSheetAction"_s);
    EXPECT_EQ(action->text().remove(u'&'), u"Load Tags From CUE Sheet...");
    EXPECT_TRUE(action->isEnabled());
    controller.selectTab(u"decode"_s);
    EXPECT_FALSE(action->isEnabled());
    controller.selectTab(u"Tags"_s);
    EXPECT_TRUE(action->isEnabled());
}

TEST_F(TagsPageTest, TheWellTakesADropAndAPasteAndGivesThePictureBack)
{
    add({writeTaggableFlac(folder, u"a.flac"_s)});
    auto *const well = onPage<QLabel>(u"albumArtImageView"_s);
    EXPECT_EQ(well->text(), u"No picture");
    const QString image = folder.write(u"c.png"_s, encodedPicture(picture(300, 150, Qt::red), "png"));
    ASSERT_TRUE(dropOn(well, {image}));
    handleWaitingEvents();
    tagsTab.finishReading();
    ASSERT_TRUE(tagsTab.albumArtImageView.picture());
    EXPECT_TRUE(waitUntil([&] { return !well->pixmap(Qt::ReturnByValue).isNull(); }));
    EXPECT_EQ(well->accessibleDescription(), u"PNG of 300 × 150");
    onPage<QPushButton>(u"removePictureButton"_s)->click();
    EXPECT_FALSE(tagsTab.albumArtImageView.picture());
    EXPECT_EQ(well->text(), u"No picture");
    QGuiApplication::clipboard()->setImage(imageOf(picture(20, 10, Qt::blue)));
    well->setFocus();
    QTest::keyClick(well, Qt::Key_V, Qt::ControlModifier);
    tagsTab.finishReading();
    ASSERT_TRUE(tagsTab.albumArtImageView.picture());
    EXPECT_EQ(tagsTab.albumArtImageView.picture()->size(), QSize(20, 10));
}

TEST_F(TagsPageTest, ThePreviousTagsAreOfferedOnceThereAreSome)
{
    auto *const button = onPage<QPushButton>(u"usePreviousTagsButton"_s);
    EXPECT_FALSE(button->isVisible());
    add({writeTaggableFlac(folder, u"a.flac"_s)});
    tagsTab.albumText.setText(u"Al"_s);
    tagsTab.executeCommand();
    EXPECT_TRUE(button->isVisible());
    tagsTab.albumText.setText({});
    button->click();
    EXPECT_EQ(onPage<QLineEdit>(u"albumText"_s)->text(), u"Al");
}

} // namespace

} // namespace nurv::test
