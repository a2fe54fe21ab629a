// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/FileListView.h"

#include "support/WaitUntil.h"
#include "ui/pages/TabPage.h"
#include "ui/TextWidth.h"
#include "ui/WindowFixture.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QHeaderView>
#include <QImage>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class FileListViewTest : public ::testing::Test, public WindowFixture {
protected:
    FileListViewTest() { controller.selectTab(u"decode"_s); }

    /// A tab that knows more of its files than their names.
    class SizesTab final : public BaseTab {
    public:
        explicit SizesTab(NURVController &owner) : BaseTab(owner, u"sizes"_s) {}
        [[nodiscard]] QStringList columnTitles() const override { return {u"Name"_s, u"Size"_s}; }
        [[nodiscard]] QString columnText(int row, int column) const override
        {
            return column == 1 ? QString::number(factor * QFileInfo(fileNames().at(row)).size()) : QString();
        }

        int factor = 1;
        int selections = 0;

    protected:
        void selectionChanged() override { ++selections; }
    };

    FileListView *list = window.page(u"decode"_s)->fileList();

    QString text(int row) const { return list->model()->index(row, 0).data().toString(); }
    QStringList submenu() const
    {
        Q_EMIT list->fileListContextMenu()->aboutToShow();
        QStringList titles;
        for (const QAction *const action : list->fileListContextMenuFilterSubMenu()->actions())
            titles.append(action->text());
        return titles;
    }
};

} // namespace

TEST_F(FileListViewTest, ShowsLastPathComponentsWithTheWholePathAsToolTip)
{
    decodeTab.addFiles({folder.write(u"d/b10.flac"_s, "x"), folder.write(u"d/b2.flac"_s, "x")});
    ASSERT_EQ(list->model()->rowCount(), 2);
    EXPECT_EQ(text(0), u"b2.flac"_s);
    EXPECT_EQ(text(1), u"b10.flac"_s);
    EXPECT_EQ(list->model()->index(1, 0).data(Qt::ToolTipRole).toString(), folder.path(u"d/b10.flac"_s));
}

TEST_F(FileListViewTest, ShowsNoHeadsOverNamesAlone)
{
    EXPECT_EQ(list->model()->columnCount(), 1);
    EXPECT_TRUE(list->isHeaderHidden());
}

TEST_F(FileListViewTest, ShowsTheOtherColumnsOfItsTab)
{
    SizesTab tab(controller);
    FileListView view(tab);
    EXPECT_FALSE(view.isHeaderHidden());
    tab.addMatchedFiles({folder.write(u"a.flac"_s, "xx"), folder.write(u"b.flac"_s, "xxx")});
    const QAbstractItemModel &model = *view.model();
    ASSERT_EQ(model.columnCount(), 2);
    EXPECT_EQ(model.headerData(1, Qt::Horizontal), u"Size"_s);
    EXPECT_EQ(model.index(0, 0).data(), u"a.flac"_s);
    EXPECT_EQ(model.index(0, 1).data(), u"2"_s);
    EXPECT_EQ(model.index(1, 1).data(), u"3"_s);
    EXPECT_EQ(model.index(1, 1).data(Qt::ToolTipRole), folder.path(u"b.flac"_s));
    int changes = 0;
    QObject::connect(&model, &QAbstractItemModel::dataChanged, &view, [&changes] { ++changes; });
    tab.factor = 10;
    Q_EMIT tab.columnTextsChanged();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(model.index(1, 1).data(), u"30"_s);
}

TEST_F(FileListViewTest, TellsItsTabWhichRowsAreSelected)
{
    SizesTab tab(controller);
    FileListView view(tab);
    tab.addMatchedFiles({folder.write(u"a.flac"_s, "x"), folder.write(u"b.flac"_s, "x"), folder.write(u"c.flac"_s, "x")});
    tab.selections = 0;
    view.selectionModel()->select(view.model()->index(2, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    view.selectionModel()->select(view.model()->index(0, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    EXPECT_EQ(tab.selectedRows(), (QList<int>{0, 2}));
    EXPECT_EQ(tab.selections, 2);
    view.deleteSelectedRows();
    EXPECT_EQ(tab.fileNames(), QStringList{folder.path(u"b.flac"_s)});
    EXPECT_EQ(tab.selectedRows(), QList<int>());
    EXPECT_FALSE(view.selectionModel()->hasSelection());
}

TEST_F(FileListViewTest, ShowsNamesThatLookLikeMarkupAsTheyAre)
{
    decodeTab.addFiles({folder.write(u"<b>loud<i>.flac"_s, "x")});
    EXPECT_EQ(text(0), u"<b>loud<i>.flac"_s);
    const QString toolTip = list->model()->index(0, 0).data(Qt::ToolTipRole).toString();
    EXPECT_TRUE(toolTip.contains(u"&lt;b&gt;loud"_s)) << toolTip.toStdString();
}

TEST_F(FileListViewTest, ShowsDirectionMarksAndControlCharacters)
{
    decodeTab.addFiles({folder.write(u"a\u202Enhs.\x1b[2J.flac"_s, "x")});
    const QString shown = u"a\\u{202E}nhs.\\x1B[2J.flac"_s;
    EXPECT_EQ(text(0), shown);
    const QModelIndex index = list->model()->index(0, 0);
    EXPECT_EQ(index.data(Qt::ToolTipRole).toString(), folder.path(shown));
    EXPECT_EQ(index.data(Qt::AccessibleDescriptionRole).toString(), folder.path(shown));
}

TEST_F(FileListViewTest, KeepsTheColumnOfShortNamesAtLeast211Wide)
{
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x")});
    EXPECT_EQ(list->header()->sectionSize(0), 211);
}

TEST_F(FileListViewTest, WidensTheColumnToElevenTenthsOfTheWidestName)
{
    const QString name = u"A rather long name of a concert, first night, second set (audience).flac"_s;
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x"), folder.write(name, "x"), folder.write(u"bb.flac"_s, "x")});
    const double widest = QFontMetricsF(list->font()).horizontalAdvance(name);
    ASSERT_GT(widest, 211.0);
    EXPECT_NEAR(list->header()->sectionSize(0), 1.1 * widest, 1.0);
}

TEST_F(FileListViewTest, AnEmptyListNeedsNoRoomForTheNamesThatWereThere)
{
    decodeTab.addFiles({folder.write(QString(200, u'x') + u".flac"_s, "x")});
    ASSERT_GT(list->header()->sectionSize(0), 400);
    decodeTab.clearFiles();
    EXPECT_EQ(list->header()->sectionSize(0), 211);
}

TEST_F(FileListViewTest, FindsTheWidestOfThousandsOfNames)
{
    QStringList names;
    for (int number = 0; number < 5000; ++number)
        names.append(u"Track %1 - %2.flac"_s.arg(number).arg(QString(number % 37, number % 2 == 0 ? u'i' : u'W')));
    const QFontMetricsF metrics(list->font());
    double widest = 0.0;
    for (const QString &name : names)
        widest = std::max(widest, metrics.horizontalAdvance(name));
    EXPECT_DOUBLE_EQ(widestText(names, list->font()), widest);
}

TEST_F(FileListViewTest, TakesFilesAndFoldersDroppedOnIt)
{
    folder.write(u"album/b10.flac"_s, "x");
    folder.write(u"album/deep/b2.flac"_s, "x");
    folder.write(u"album/.DS_Store"_s, "x");
    show();
    ASSERT_TRUE(dropOn(list->viewport(), {folder.path(u"album"_s), folder.write(u"one.shn"_s, "x")}));
    ASSERT_TRUE(waitUntil([&] { return list->model()->rowCount() == 3; }));
    EXPECT_EQ(decodeTab.fileNames().size(), 3);
}

TEST_F(FileListViewTest, RefusesADragWithoutFiles)
{
    QMimeData data;
    data.setText(u"no file"_s);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list->viewport(), &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST_F(FileListViewTest, DrawsAHintOnlyWhileItIsEmpty)
{
    show();
    const QImage empty = list->viewport()->grab().toImage();
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x")});
    handleWaitingEvents();
    decodeTab.clearFiles();
    handleWaitingEvents();
    EXPECT_EQ(list->viewport()->grab().toImage(), empty);
    // Around its centre stand two lines: more than the background's one colour.
    const QImage hint = empty.copy(QRect(empty.rect().center() - QPoint(60, 30), QSize(120, 60)));
    int lines = 0;
    bool wasBlank = true;
    for (int y = 0; y < hint.height(); ++y) {
        bool isBlank = true;
        for (int x = 0; x < hint.width() && isBlank; ++x)
            isBlank = hint.pixel(x, y) == empty.pixel(3, 3);
        lines += wasBlank && !isBlank ? 1 : 0;
        wasBlank = isBlank;
    }
    EXPECT_GE(lines, 2);
}

TEST_F(FileListViewTest, RebuildsTheExtensionMenuOnEachOpening)
{
    decodeTab.addFiles({folder.write(u"a.flac"_s, "x"), folder.write(u"b.FLAC"_s, "x"), folder.write(u"c.shn"_s, "x")});
    EXPECT_EQ(submenu(), (QStringList{u"FLAC"_s, u"flac"_s, u"shn"_s}));
    list->fileListContextMenuFilterSubMenu()->actions().at(1)->trigger();
    EXPECT_EQ(submenu(), (QStringList{u"FLAC"_s, u"shn"_s}));
    EXPECT_EQ(text(0), u"b.FLAC"_s);
}

TEST_F(FileListViewTest, NamesTheItemsOfTheContextMenuAsUsersKnowThem)
{
    const QList<QAction *> actions = list->fileListContextMenu()->actions();
    ASSERT_EQ(actions.size(), 2);
    EXPECT_EQ(actions.at(0)->text(), u"Delete selected file(s)"_s);
    EXPECT_EQ(actions.at(1)->text(), u"Delete files with extension:"_s);
}

TEST_F(FileListViewTest, TheDeleteKeyTakesTheSelectedFilesOffTheList)
{
    decodeTab.addFiles(
        {folder.write(u"a.flac"_s, "x"), folder.write(u"b.flac"_s, "x"), folder.write(u"c.flac"_s, "x")});
    show();
    list->setFocus();
    list->setCurrentIndex(list->model()->index(0, 0));
    QTest::keyClick(list, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(list, Qt::Key_Delete);
    ASSERT_EQ(decodeTab.fileNames().size(), 1);
    EXPECT_EQ(text(0), u"c.flac"_s);
    EXPECT_FALSE(list->selectionModel()->hasSelection());
    EXPECT_TRUE(folder.exists(u"a.flac"_s));
}

} // namespace nurv::test
