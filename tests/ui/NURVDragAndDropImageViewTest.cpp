// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/NURVDragAndDropImageView.h"

#include "support/TestFolder.h"
#include "ui/WindowFixture.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class NURVDragAndDropImageViewTest : public ::testing::Test {
protected:
    NURVDragAndDropImageViewTest() { well.resize(120, 120); }
    [[nodiscard]] bool takesDragOf(const QMimeData &data)
    {
        QDragEnterEvent enter(well.rect().center(), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&well, &enter);
        return enter.isAccepted();
    }

    TestFolder folder;
    NURVDragAndDropImageView well;
    QSignalSpy dropped{&well, &NURVDragAndDropImageView::fileDropped};
};

} // namespace

TEST_F(NURVDragAndDropImageViewTest, TakesOneFile)
{
    const QString cover = folder.write(u"cover – é.png"_s, "picture");
    EXPECT_TRUE(dropOn(&well, {cover}));
    ASSERT_EQ(dropped.size(), 1);
    EXPECT_EQ(dropped.at(0).at(0).toString(), cover);
}

TEST_F(NURVDragAndDropImageViewTest, RefusesTwoFilesAndFolders)
{
    const QString cover = folder.write(u"cover.png"_s, "picture");
    const QString back = folder.write(u"back.png"_s, "picture");
    EXPECT_FALSE(dropOn(&well, {cover, back}));
    EXPECT_FALSE(dropOn(&well, {folder.path(QString())}));
    EXPECT_FALSE(dropOn(&well, {cover, folder.path(QString())}));
    EXPECT_TRUE(dropped.isEmpty());
}

TEST_F(NURVDragAndDropImageViewTest, RefusesWhatIsNoFileOfThisMachine)
{
    QMimeData text;
    text.setText(u"/tmp/cover.png"_s);
    EXPECT_FALSE(takesDragOf(text));
    QMimeData page;
    page.setUrls({QUrl(u"https://example.org/cover.png"_s)});
    EXPECT_FALSE(takesDragOf(page));
    QMimeData mixed;
    mixed.setUrls({QUrl::fromLocalFile(folder.write(u"cover.png"_s, "picture")), QUrl(u"https://example.org/cover.png"_s)});
    EXPECT_FALSE(takesDragOf(mixed));
}

TEST_F(NURVDragAndDropImageViewTest, OffersToCopyAndNeverToMove)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(folder.write(u"cover.png"_s, "picture"))});
    QDragEnterEvent enter(well.rect().center(), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(&well, &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
}

} // namespace nurv::test
