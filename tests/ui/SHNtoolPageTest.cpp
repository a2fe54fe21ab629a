// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/pages/SHNtoolPage.h"

#include "app/TrackNameInputController.h"
#include "engine/NURVTaskQueue.h"
#include "settings/SettingsStore.h"
#include "support/AudioFixtures.h"
#include "support/WaitUntil.h"
#include "ui/DesktopPrompts.h"
#include "ui/FileListView.h"
#include "ui/PanelDialog.h"
#include "ui/RadioMatrix.h"
#include "ui/TrackNameWindow.h"
#include "ui/WhenOpen.h"
#include "ui/WindowFixture.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

const QStringList kCommands{u"len"_s,   u"info"_s,  u"cmp"_s,  u"trim"_s, u"pad"_s,
                            u"strip"_s, u"split"_s, u"join"_s, u"cue"_s};

/// What other cases of the process have stored is forgotten.
struct UntouchedChoices {
    UntouchedChoices() { forget(); }
    ~UntouchedChoices() { forget(); }
    UntouchedChoices(const UntouchedChoices &) = delete;
    UntouchedChoices &operator=(const UntouchedChoices &) = delete;

    static void forget()
    {
        for (const char16_t *key : {u"shntoolCommandOption", u"shntoolLenOption", u"shntoolOutputFormat",
                                    u"shntoolPreview", u"proveBeforeDeleting", u"dropMetadata", u"warnOnDelete"})
            SettingsStore::instance().remove(QString::fromUtf16(key));
    }
};

class SHNtoolPageTest : public ::testing::Test, public UntouchedChoices, public WindowFixture {
protected:
    SHNtoolPageTest()
    {
        controller.selectTab(u"shntool"_s);
        controller.taskQueue().hold();
        show();
    }

    template<typename Widget = QWidget>
    [[nodiscard]] Widget *part(const QString &objectName) const
    {
        auto *const widget = window.page(u"shntool"_s)->findChild<Widget *>(objectName);
        EXPECT_NE(widget, nullptr) << qPrintable(objectName);
        return widget;
    }
    [[nodiscard]] bool isVisible(const QString &objectName) const { return part(objectName)->isVisible(); }
    void choose(const QString &command)
    {
        part<RadioMatrix>(u"shntoolCommandMatrix"_s)->cell(static_cast<int>(kCommands.indexOf(command)))->click();
        EXPECT_EQ(shntoolTab.shntoolCommandMatrix.selectedTitle(), command);
    }
    /// Presses Alt and the key; a button lets itself be seen pressed for a moment before it counts.
    template<typename Happened>
    void expectFromMnemonic(Qt::Key key, const Happened &happened)
    {
        QTest::keyClick(&window, key, Qt::AltModifier);
        EXPECT_TRUE(waitUntil(happened)) << "Alt+" << static_cast<char>(key);
    }
    /// Where the Tab key goes, from the list of files around.
    [[nodiscard]] QStringList stops() const
    {
        QWidget *const first = window.page(u"shntool"_s)->fileList();
        first->setFocus();
        QStringList names;
        constexpr int kMostStops = 40;
        do {
            // Of a matrix one cell is a stop; the arrows go to the others.
            names.append(QApplication::focusWidget()->objectName().section(u'.', 0, 0));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && names.size() < kMostStops);
        return names;
    }
};

} // namespace

TEST_F(SHNtoolPageTest, ShowsWhatTheCommandUses)
{
    for (const QString &command : kCommands) {
        SCOPED_TRACE(qPrintable(command));
        choose(command);
        const bool isLength = command == u"len";
        const bool isEdit = QStringList{u"trim"_s, u"pad"_s, u"strip"_s, u"split"_s, u"join"_s}.contains(command);
        EXPECT_TRUE(isVisible(u"commandGroup"_s));
        EXPECT_EQ(isVisible(u"lengthGroup"_s), isLength);
        EXPECT_EQ(isVisible(u"formatGroup"_s), isEdit);
        EXPECT_EQ(isVisible(u"outputsGroup"_s), isEdit);
        EXPECT_EQ(isVisible(u"sourceEncodeButton"_s), isEdit);
        EXPECT_EQ(isVisible(u"previewButton"_s), isEdit);
        EXPECT_EQ(isVisible(u"originalsGroup"_s), isEdit && command != u"split");
        for (const QString &name : {u"lengthGroup"_s, u"formatGroup"_s, u"outputsGroup"_s, u"originalsGroup"_s}) {
            if (isVisible(name)) {
                EXPECT_TRUE(part(name)->isEnabled()) << qPrintable(name);
            }
        }
    }
}

TEST_F(SHNtoolPageTest, OffersNamesForSetListsOnly)
{
    choose(u"len"_s);
    for (const int kind : {0, 1, 2}) {
        part<RadioMatrix>(u"shnLenMatrix"_s)->cell(kind)->click();
        EXPECT_EQ(isVisible(u"namesButton"_s), kind != 0);
    }
    choose(u"info"_s);
    EXPECT_FALSE(isVisible(u"namesButton"_s));
}

TEST_F(SHNtoolPageTest, OffersAProofWhereOriginalsGo)
{
    choose(u"join"_s);
    auto *const deletes = part<QCheckBox>(u"deleteOriginalsButton"_s);
    for (const bool isOn : {true, false}) {
        if (deletes->isChecked() != isOn)
            deletes->click();
        EXPECT_EQ(part(u"proveButton"_s)->isEnabled(), isOn);
        EXPECT_EQ(part(u"dropMetadataButton"_s)->isEnabled(), isOn);
    }
}

TEST_F(SHNtoolPageTest, TheNamesWindowKnowsHowManyFilesThereAreAndGivesTheTabItsNames)
{
    shntoolTab.addFiles({folder.write(u"a.wav"_s, "x"), folder.write(u"b.wav"_s, "x"), folder.write(u"c.wav"_s, "x")});
    choose(u"len"_s);
    part<RadioMatrix>(u"shnLenMatrix"_s)->cell(1)->click();
    part<QPushButton>(u"namesButton"_s)->click();
    auto *const names = window.findChild<TrackNameWindow *>();
    ASSERT_NE(names, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(names));
    EXPECT_EQ(names->findChild<QLabel *>(u"nameCount"_s)->text(), u"0 names for 3 files"_s);
    QTest::keyClicks(names->focusWidget(), u"Intro"_s);
    QTest::keyClick(names->focusWidget(), Qt::Key_Return);
    QTest::keyClicks(names->focusWidget(), u"Song"_s);
    EXPECT_EQ(names->findChild<QLabel *>(u"nameCount"_s)->text(), u"2 names for 3 files: 1 missing"_s);
    names->findChild<QPushButton *>(u"okButton"_s)->click();
    EXPECT_FALSE(names->isVisible());
    EXPECT_EQ(shntoolTab.names(), (QStringList{u"Intro"_s, u"Song"_s}));
}

TEST_F(SHNtoolPageTest, KeepsItsChoicesForTheNextStart)
{
    choose(u"len"_s);
    part<RadioMatrix>(u"shnLenMatrix"_s)->cell(2)->click();
    choose(u"strip"_s);
    part<RadioMatrix>(u"outputFormatMatrix"_s)->cell(3)->click();
    part<QCheckBox>(u"previewButton"_s)->click();
    const bool shows = part<QCheckBox>(u"previewButton"_s)->isChecked();
    NURVController next(prompts, services, toolbox());
    SHNtoolTab nextTab(next);
    const SHNtoolPage page(nextTab);
    EXPECT_EQ(page.findChild<RadioMatrix *>(u"shntoolCommandMatrix"_s)->selectedIndex(), kCommands.indexOf(u"strip"_s));
    EXPECT_EQ(page.findChild<RadioMatrix *>(u"shnLenMatrix"_s)->selectedIndex(), 2);
    EXPECT_EQ(page.findChild<RadioMatrix *>(u"outputFormatMatrix"_s)->selectedIndex(), 3);
    EXPECT_EQ(page.findChild<QCheckBox *>(u"previewButton"_s)->isChecked(), shows);
    EXPECT_FALSE(page.findChild<QGroupBox *>(u"lengthGroup"_s)->isVisibleTo(&page));
    EXPECT_TRUE(page.findChild<QGroupBox *>(u"formatGroup"_s)->isVisibleTo(&page));
}

TEST_F(SHNtoolPageTest, ShowsWhatWillBeMadeAndStartsOnceThatIsAgreedTo)
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QString source = writeWav(folder.path(u"a.wav"_s), {.frames = 588});
    folder.write(u"in/b-stripped.flac"_s, "mine");
    const QString taken = writeWav(folder.path(u"in/b.wav"_s), {.frames = 588});
    struct Case {
        QString file;
        QString text;
        bool agrees;
    };
    for (const Case &one :
         {Case{source, u"a-stripped.flac  0:00.01\n"_s, false}, Case{source, u"a-stripped.flac  0:00.01\n"_s, true},
          Case{taken,
               u"b-stripped.flac  0:00.01  exists already\n\nThis would fail:\n"
               "  b-stripped.flac exists already\n"_s,
               false}}) {
        DesktopPrompts desktop;
        NURVController other(desktop, services, toolbox());
        other.taskQueue().hold();
        SHNtoolTab tab(other);
        tab.shntoolCommandMatrix.selectTitle(u"strip"_s);
        tab.outputFormatMatrix.selectTitle(u"FLAC"_s);
        tab.sourceEncodeButton.setOn(true);
        tab.previewButton.setOn(true);
        tab.addMatchedFiles({one.file});
        {
            WhenOpen<PanelDialog> user([&one](PanelDialog &dialog) {
                EXPECT_EQ(dialog.windowTitle(), u"These files will be made"_s);
                auto *const outputs = dialog.findChild<QPlainTextEdit *>(u"outputs"_s);
                EXPECT_EQ(outputs->toPlainText(), one.text);
                EXPECT_TRUE(outputs->isReadOnly());
                QTest::keyClicks(outputs, u"x"_s);
                EXPECT_EQ(outputs->toPlainText(), one.text);
                if (!one.agrees) {
                    QTest::keyClick(&dialog, Qt::Key_Escape);
                    return;
                }
                for (QPushButton *const button : dialog.findChildren<QPushButton *>()) {
                    if (QString(button->text()).remove(u'&') == u"Start") {
                        button->click();
                        return;
                    }
                }
                ADD_FAILURE() << "no button starts it";
            });
            tab.executeCommand();
        }
        EXPECT_EQ(other.taskQueue().panelArray().size(), one.agrees ? 1U : 0U);
    }
    EXPECT_EQ(folder.read(u"in/b-stripped.flac"_s), "mine");
}

TEST_F(SHNtoolPageTest, ItsMnemonicsReachEveryControl)
{
    const std::vector<std::pair<Qt::Key, QString>> commands{
        {Qt::Key_I, u"info"_s},  {Qt::Key_M, u"cmp"_s},  {Qt::Key_T, u"trim"_s}, {Qt::Key_P, u"pad"_s},
        {Qt::Key_S, u"split"_s}, {Qt::Key_N, u"join"_s}, {Qt::Key_C, u"cue"_s},  {Qt::Key_L, u"len"_s}};
    for (const auto &[key, command] : commands) {
        expectFromMnemonic(
            key, [this, &command = command] { return shntoolTab.shntoolCommandMatrix.selectedTitle() == command; });
    }
    expectFromMnemonic(Qt::Key_D, [this] { return shntoolTab.shnLenMatrix.selectedIndex() == 2; });
    expectFromMnemonic(Qt::Key_W, [this] { return shntoolTab.shnLenMatrix.selectedIndex() == 0; });
    // The one beside it takes an arrow.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_TRUE(waitUntil([this] { return shntoolTab.shnLenMatrix.selectedIndex() == 1; }));
    expectFromMnemonic(Qt::Key_K, [this] { return controller.trackNameInputController().isVisible(); });
    window.findChild<TrackNameWindow *>()->close();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    expectFromMnemonic(Qt::Key_P, [this] { return shntoolTab.shntoolCommandMatrix.selectedTitle() == u"pad"; });
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_TRUE(waitUntil([this] { return shntoolTab.shntoolCommandMatrix.selectedTitle() == u"strip"; }));
    const std::vector<std::pair<Qt::Key, QString>> boxes{{Qt::Key_B, u"sourceEncodeButton"_s},
                                                         {Qt::Key_V, u"previewButton"_s},
                                                         {Qt::Key_O, u"deleteOriginalsButton"_s},
                                                         {Qt::Key_Y, u"proveButton"_s},
                                                         {Qt::Key_U, u"dropMetadataButton"_s}};
    for (const auto &[key, name] : boxes) {
        const auto *const box = part<QCheckBox>(name);
        const bool before = box->isChecked();
        expectFromMnemonic(key, [box, before] { return box->isChecked() != before; });
    }
    prompts.expectFilesToAdd(controller, u"shntool"_s, {folder.write(u"a.wav"_s, "x")});
    expectFromMnemonic(Qt::Key_A, [this] { return shntoolTab.fileNames().size() == 1; });
    expectFromMnemonic(Qt::Key_R, [this] { return shntoolTab.fileNames().isEmpty(); });
}

TEST_F(SHNtoolPageTest, TheTabKeyGoesFromAboveToBelow)
{
    shntoolTab.addFiles({folder.write(u"a.wav"_s, "x")});
    const QStringList buttons{u"addButton"_s, u"clearButton"_s, u"executeButton"_s};
    const auto expectStops = [this, &buttons](const QStringList &options) {
        QStringList wanted = QStringList{u"fileList"_s} + options + buttons;
        QStringList reached = stops();
        // What follows are the parts of the window around the page.
        EXPECT_EQ(reached.first(std::min(reached.size(), wanted.size())), wanted) << qPrintable(reached.join(u' '));
    };
    choose(u"info"_s);
    expectStops({u"shntoolCommandMatrix"_s});
    choose(u"len"_s);
    expectStops({u"shntoolCommandMatrix"_s, u"shnLenMatrix"_s});
    part<RadioMatrix>(u"shnLenMatrix"_s)->cell(2)->click();
    expectStops({u"shntoolCommandMatrix"_s, u"shnLenMatrix"_s, u"namesButton"_s});
    choose(u"split"_s);
    expectStops({u"shntoolCommandMatrix"_s, u"outputFormatMatrix"_s, u"sourceEncodeButton"_s, u"previewButton"_s});
    choose(u"trim"_s);
    expectStops({u"shntoolCommandMatrix"_s, u"outputFormatMatrix"_s, u"sourceEncodeButton"_s, u"previewButton"_s,
                 u"deleteOriginalsButton"_s});
    part<QCheckBox>(u"deleteOriginalsButton"_s)->click();
    expectStops({u"shntoolCommandMatrix"_s, u"outputFormatMatrix"_s, u"sourceEncodeButton"_s, u"previewButton"_s,
                 u"deleteOriginalsButton"_s, u"proveButton"_s, u"dropMetadataButton"_s});
    // Within the formats, the arrows.
    part<RadioMatrix>(u"outputFormatMatrix"_s)->cell(1)->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_TRUE(waitUntil([this] { return shntoolTab.outputFormatMatrix.selectedTitle() != u"FLAC"; }));
}

} // namespace nurv::test
