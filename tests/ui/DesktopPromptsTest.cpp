// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DesktopPrompts.h"

#include "settings/SettingsStore.h"
#include "support/TestFolder.h"
#include "ui/WhenOpen.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

class DesktopPromptsTest : public ::testing::Test {
protected:
    DesktopPromptsTest() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    TestFolder folder;
    DesktopPrompts prompts;
};

QPushButton *buttonOf(const QMessageBox &box, const QString &text)
{
    for (QAbstractButton *const button : box.buttons()) {
        if (QString(button->text()).remove(u'&') == text)
            return qobject_cast<QPushButton *>(button);
    }
    ADD_FAILURE() << "no button " << text.toStdString();
    return nullptr;
}

} // namespace

TEST_F(DesktopPromptsTest, AnAlertShowsItsTextsAndReturnsTheChosenButton)
{
    WhenOpen<QMessageBox> user([](QMessageBox &box) {
        EXPECT_EQ(box.text(), u"Tasks in Progress"_s);
        EXPECT_EQ(box.informativeText(), u"There are 3 tasks"_s);
        EXPECT_EQ(box.defaultButton()->text(), u"&No"_s);
        QTest::mouseClick(buttonOf(box, u"Yes"_s), Qt::LeftButton);
    });
    EXPECT_EQ(prompts.ask(
                  {.title = u"Tasks in Progress"_s, .message = u"There are 3 tasks"_s, .buttons = {u"No"_s, u"Yes"_s}}),
              u"Yes"_s);
}

TEST_F(DesktopPromptsTest, ReturnPressesTheDefaultButtonAlsoWhenThatIsYes)
{
    WhenOpen<QMessageBox> user([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Return); });
    EXPECT_EQ(prompts.ask({.title = u"Delete?"_s, .message = {}, .buttons = {u"Yes"_s, u"No"_s}}), u"Yes"_s);
}

TEST_F(DesktopPromptsTest, ReturnChangesNothingInAWarning)
{
    const Alert warning{.title = u"Delete?"_s, .message = {}, .buttons = {u"Yes"_s, u"No"_s}, .isWarning = true};
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        WhenOpen<QMessageBox> user([key](QMessageBox &box) {
            EXPECT_EQ(box.icon(), QMessageBox::Warning);
            QTest::keyClick(&box, key);
        });
        EXPECT_EQ(prompts.ask(warning), u"No"_s);
    }
    WhenOpen<QMessageBox> user([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Y, Qt::AltModifier); });
    EXPECT_EQ(prompts.ask(warning), u"Yes"_s) << "by its mnemonic";
}

TEST_F(DesktopPromptsTest, ABoxIsWideEnoughForItsTitle)
{
    QApplication::setApplicationDisplayName(u"Nurv Audio Workbench"_s);
    WhenOpen<QMessageBox> user([](QMessageBox &box) {
        EXPECT_GT(box.width(), box.fontMetrics().horizontalAdvance(box.windowTitle()) + 100);
        box.accept();
    });
    static_cast<void>(prompts.ask({.title = u"No"_s, .message = {}, .buttons = {u"OK"_s}}));
    QApplication::setApplicationDisplayName({});
}

TEST_F(DesktopPromptsTest, EscapeChoosesWhatChangesNothing)
{
    WhenOpen<QMessageBox> user([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(prompts.ask({.title = u"Delete?"_s, .message = {}, .buttons = {u"Yes"_s, u"No"_s}}), u"No"_s);
}

TEST_F(DesktopPromptsTest, AnAlertShowsMarkupAsItIs)
{
    WhenOpen<QMessageBox> user([](QMessageBox &box) {
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        const QList<QLabel *> labels = box.findChildren<QLabel *>();
        int shown = 0;
        for (const QLabel *const label : labels) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << qPrintable(label->objectName());
            shown += label->text().startsWith(u"<b>"_s) ? 1 : 0;
        }
        EXPECT_EQ(shown, 2);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_EQ(prompts.ask({.title = u"<b>x</b>.flac"_s, .message = u"<b>y</b>.flac"_s, .buttons = {u"OK"_s}}), u"OK"_s);
}

TEST_F(DesktopPromptsTest, AnAlertShowsDirectionMarksAndControlCharacters)
{
    WhenOpen<QMessageBox> user([](QMessageBox &box) {
        EXPECT_EQ(box.text(), u"gnp\\u{202E}wav"_s);
        EXPECT_EQ(box.informativeText(), u"two\nlines\\x1B[2J"_s);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_EQ(prompts.ask({.title = u"gnp\u202Ewav"_s, .message = u"two\nlines\x1b[2J"_s, .buttons = {u"OK"_s}}),
              u"OK"_s);
}

TEST_F(DesktopPromptsTest, TheFileChooserHasItsTitleAndButtonAndTakesSeveralFiles)
{
    folder.write(u"a.flac"_s, "x");
    folder.write(u"b.flac"_s, "x");
    WhenOpen<QFileDialog> user([this](QFileDialog &dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Choose files for processing"_s);
        EXPECT_EQ(dialog.labelText(QFileDialog::Accept), u"Add Files"_s);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFiles);
        dialog.setDirectory(folder.path());
        dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(u"\"a.flac\" \"b.flac\""_s);
        dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->click();
    });
    QStringList chosen = prompts.chooseFiles({.title = u"Choose files for processing"_s, .buttonText = u"Add Files"_s});
    chosen.sort();
    EXPECT_EQ(chosen, (QStringList{folder.path(u"a.flac"_s), folder.path(u"b.flac"_s)}));
}

TEST_F(DesktopPromptsTest, TheChooserOfOneFileOffersFilesOfItsTypes)
{
    folder.write(u"a.cue"_s, "x");
    WhenOpen<QFileDialog> user([this](QFileDialog &dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Choose file with split point data"_s);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(dialog.nameFilters(), QStringList{u"CUE and TXT files (*.cue *.CUE *.txt *.TXT)"_s});
        dialog.setDirectory(folder.path());
        dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(u"a.cue"_s);
        dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->click();
    });
    EXPECT_EQ(prompts.chooseFile({.title = u"Choose file with split point data"_s, .extensions = {u"cue"_s, u"txt"_s}}),
              folder.path(u"a.cue"_s));
}

TEST_F(DesktopPromptsTest, TheSaveChooserAsksBeforeAFileIsReplaced)
{
    folder.write(u"old.txt"_s, "x");
    WhenOpen<QFileDialog> user([this](QFileDialog &dialog) {
        EXPECT_FALSE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
        dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(folder.path(u"old.txt"_s));
        WhenOpen<QMessageBox> doubtful([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
        dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
        dialog.reject();
    });
    EXPECT_EQ(prompts.chooseSavePath({.title = u"Save output"_s}), std::nullopt);
}

TEST_F(DesktopPromptsTest, AChooserWithAMemoryOpensWhereItWasLeft)
{
    const QString out = folder.makeFolder(u"out"_s);
    const FileChooser chooser{.title = u"Choose output directory"_s, .folderKey = u"window/outputFolder/test"_s};
    const QString other = folder.makeFolder(u"other"_s);
    const auto choose = [&](const FileChooser &opened, const QString &path) {
        WhenOpen<QFileDialog> user([&](QFileDialog &dialog) {
            dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
            dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->click();
        });
        EXPECT_EQ(prompts.chooseFolder(opened), path);
    };
    choose(chooser, out);
    choose({.title = chooser.title}, other);
    QString opensAt;
    const auto openAndCancel = [&](const FileChooser &opened) {
        WhenOpen<QFileDialog> user([&](QFileDialog &dialog) {
            opensAt = dialog.directory().absolutePath();
            dialog.reject();
        });
        EXPECT_EQ(prompts.chooseFolder(opened), std::nullopt);
    };
    openAndCancel(chooser);
    EXPECT_EQ(opensAt, out);
    // What is not there any more is no place to open at.
    ASSERT_TRUE(QDir().rmdir(out));
    openAndCancel(chooser);
    EXPECT_NE(opensAt, out);
    SettingsStore::instance().remove(chooser.folderKey);
}

TEST_F(DesktopPromptsTest, TheFolderChooserReturnsAFolder)
{
    folder.makeFolder(u"out"_s);
    WhenOpen<QFileDialog> user([this](QFileDialog &dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Choose output directory"_s);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::Directory);
        dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(folder.path(u"out"_s));
        dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->click();
    });
    EXPECT_EQ(prompts.chooseFolder({.title = u"Choose output directory"_s, .buttonText = {}}), folder.path(u"out"_s));
}

TEST_F(DesktopPromptsTest, ACancelledChooserReturnsNothing)
{
    {
        WhenOpen<QFileDialog> user([](QFileDialog &dialog) { dialog.reject(); });
        EXPECT_EQ(prompts.chooseFolder({.title = u"Choose output directory"_s, .buttonText = {}}), std::nullopt);
    }
    WhenOpen<QFileDialog> user([](QFileDialog &dialog) { dialog.reject(); });
    EXPECT_TRUE(prompts.chooseFiles({.title = u"Choose files for processing"_s, .buttonText = {}}).isEmpty());
}

TEST_F(DesktopPromptsTest, TheSaveChooserStartsWithTheSuggestedName)
{
    WhenOpen<QFileDialog> user([this](QFileDialog &dialog) {
        EXPECT_EQ(dialog.windowTitle(), u"Save output"_s);
        auto *const name = dialog.findChild<QLineEdit *>(u"fileNameEdit"_s);
        EXPECT_EQ(name->text(), u"report.txt"_s);
        name->setText(folder.path(u"other.txt"_s));
        dialog.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
    });
    EXPECT_EQ(prompts.chooseSavePath({.title = u"Save output"_s, .suggestedName = u"report.txt"_s}), folder.path(u"other.txt"_s));
}

TEST_F(DesktopPromptsTest, WaitsForWorkOnAnotherThreadWhileTheWindowLives)
{
    std::thread::id worker;
    bool timerRan = false;
    std::atomic<bool> mayEnd = false;
    QTimer::singleShot(0, qApp, [&] {
        timerRan = true;
        mayEnd = true;
    });
    EXPECT_TRUE(prompts.waitFor(u"Working…"_s, [&](const std::function<bool()> &isUnwanted) {
        worker = std::this_thread::get_id();
        while (!mayEnd)
            std::this_thread::yield();
        EXPECT_FALSE(isUnwanted());
    }));
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_TRUE(timerRan);
}

TEST_F(DesktopPromptsTest, WorkCanBeGivenUp)
{
    WhenOpen<QProgressDialog> user([](QProgressDialog &dialog) {
        EXPECT_EQ(dialog.labelText(), u"Working…");
        QTest::mouseClick(dialog.findChild<QPushButton *>(), Qt::LeftButton);
    });
    bool wasTold = false;
    EXPECT_FALSE(prompts.waitFor(u"Working…"_s, [&](const std::function<bool()> &isUnwanted) {
        while (!isUnwanted())
            std::this_thread::yield();
        wasTold = true;
    }));
    EXPECT_TRUE(wasTold) << "it has ended when the call returns";
}

} // namespace nurv::test
