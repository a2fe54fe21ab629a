// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PreferencesWindow.h"

#include "app/SettingsTable.h"
#include "preferences/PreferencesController.h"
#include "settings/SettingsStore.h"
#include "support/WaitUntil.h"
#include "ui/PreferencesPage.h"
#include "ui/WindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// What earlier cases of the process have stored is forgotten.
struct UntouchedSettings {
    UntouchedSettings()
    {
        for (const Setting &setting : settingsTable(toolbox()))
            SettingsStore::instance().remove(setting.key);
        SettingsStore::instance().remove(u"window/preferencesGeometry"_s);
    }
};

class PreferencesWindowTest : public ::testing::Test, public UntouchedSettings, public WindowFixture {
protected:
    void open()
    {
        window.findChild<QAction *>(u"preferencesAction"_s)->trigger();
        ASSERT_NE(window.preferencesWindow(), nullptr);
        ASSERT_TRUE(waitUntil([this] { return QApplication::activeWindow() == window.preferencesWindow(); }));
    }
    [[nodiscard]] PreferencesWindow &preferences() const { return *window.preferencesWindow(); }
    template<typename Widget>
    [[nodiscard]] Widget *part(const QString &objectName) const
    {
        return preferences().findChild<Widget *>(objectName);
    }
    /// Presses Alt and the key; a button lets itself be seen pressed for a moment before it counts.
    template<typename Happened>
    void expectFromMnemonic(Qt::Key key, const Happened &happened)
    {
        QTest::keyClick(&preferences(), key, Qt::AltModifier);
        EXPECT_TRUE(waitUntil(happened)) << "Alt+" << static_cast<char>(key);
    }
    void showMetadata()
    {
        QTest::keyClick(&preferences(), Qt::Key_M, Qt::AltModifier);
        ASSERT_EQ(preferences().preferencesTab()->currentIndex(), 1);
    }
    /// All that a page says, with the mnemonics.
    [[nodiscard]] QStringList textsOf(const QWidget &page) const
    {
        QStringList texts{preferences().preferencesTab()->tabText(0), preferences().preferencesTab()->tabText(1),
                          part<QPushButton>(u"closeButton"_s)->text()};
        for (const QLabel *const label : page.findChildren<QLabel *>()) {
            if (label->buddy() != nullptr)
                texts.append(label->text());
        }
        for (const QAbstractButton *const button : page.findChildren<QAbstractButton *>())
            texts.append(button->text());
        return texts;
    }

    SettingsStore &store = SettingsStore::instance();
};

QChar mnemonicOf(const QString &text)
{
    const qsizetype mark = text.indexOf(u'&');
    return mark < 0 || mark + 1 >= text.size() ? QChar() : text.at(mark + 1).toLower();
}

} // namespace

TEST_F(PreferencesWindowTest, OpensFromTheMenuBesideTheMainWindow)
{
    show();
    const auto *const action = window.findChild<QAction *>(u"preferencesAction"_s);
    EXPECT_FALSE(action->shortcut().isEmpty());
    EXPECT_EQ(action->menuRole(), QAction::PreferencesRole);
    open();
    EXPECT_FALSE(preferences().isModal());
    EXPECT_EQ(preferences().preferencesTab()->tabText(0).remove(u'&'), u"General"_s);
    EXPECT_EQ(preferences().preferencesTab()->tabText(1).remove(u'&'), u"Metadata"_s);
    EXPECT_EQ(preferences().preferencesTab()->currentIndex(), 0);
}

TEST_F(PreferencesWindowTest, OpensByTheControllerAndThenIsTheSameWindow)
{
    show();
    controller.showPreferencePanel();
    PreferencesWindow *const first = window.preferencesWindow();
    ASSERT_NE(first, nullptr);
    first->hide();
    controller.showPreferencePanel();
    EXPECT_EQ(window.preferencesWindow(), first);
    EXPECT_TRUE(first->isVisible());
}

TEST_F(PreferencesWindowTest, ClosesByEscapeAndKeepsWhatWasChanged)
{
    show();
    open();
    expectFromMnemonic(Qt::Key_A, [this] { return !store.boolean(u"warnOnDelete"_s); });
    QTest::keyClick(&preferences(), Qt::Key_Escape);
    EXPECT_FALSE(preferences().isVisible());
    EXPECT_TRUE(window.isVisible());
    EXPECT_FALSE(store.boolean(u"warnOnDelete"_s));
}

TEST_F(PreferencesWindowTest, IsWorkedByKeysAlone)
{
    show();
    open();
    QTest::keyClick(&preferences(), Qt::Key_J, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), part<QSpinBox>(u"maxThreadsStepper"_s));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 3);
    expectFromMnemonic(Qt::Key_T, [this] { return store.integer(u"trashOrDelete"_s) == 1; });
    expectFromMnemonic(Qt::Key_D, [this] { return store.integer(u"trashOrDelete"_s) == 0; });
    expectFromMnemonic(Qt::Key_P, [this] { return store.integer(u"proveBeforeDeleting"_s) == 0; });
    expectFromMnemonic(Qt::Key_O, [this] { return !store.boolean(u"warnOnFilesSkipped"_s); });
    expectFromMnemonic(Qt::Key_K, [this] { return store.integer(u"keepFolders"_s) == 1; });
    showMetadata();
    expectFromMnemonic(Qt::Key_N, [this] { return store.boolean(u"checksumFileUsesOutputDirName"_s); });
    expectFromMnemonic(Qt::Key_L, [this] { return store.integer(u"dropMetadata"_s) == 1; });
    QTest::keyClick(&preferences(), Qt::Key_X, Qt::AltModifier);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(store.string(u"incomingSurroundOrder"_s), u"L C R LS RS LFE (FILM)"_s);
    expectFromMnemonic(Qt::Key_C, [this] { return !preferences().isVisible(); });
}

TEST_F(PreferencesWindowTest, TheExampleFollowsEveryKeyInTheLine)
{
    show();
    open();
    showMetadata();
    QTest::keyClick(&preferences(), Qt::Key_S, Qt::AltModifier);
    auto *const line = part<QLineEdit>(u"shnlenTrackListingFormat"_s);
    ASSERT_EQ(QApplication::focusWidget(), line);
    line->selectAll();
    QTest::keyClicks(line, u"%nam"_s);
    EXPECT_EQ(part<QLabel>(u"currentFormat"_s)->text(), u"%nam"_s);
    QTest::keyClick(line, Qt::Key_E);
    EXPECT_EQ(part<QLabel>(u"currentFormat"_s)->text(), u"FileName"_s);
    QTest::keyClicks(line, u" <b>%time</b>"_s);
    EXPECT_EQ(part<QLabel>(u"currentFormat"_s)->text(), u"FileName <b>01:00:00</b>"_s);
    EXPECT_EQ(part<QLabel>(u"currentFormat"_s)->textFormat(), Qt::PlainText);
}

TEST_F(PreferencesWindowTest, SaysBesideTheFieldWhyAnEndingIsRefused)
{
    show();
    open();
    showMetadata();
    auto *const ending = part<QLineEdit>(u"ffpExtension"_s);
    auto *const objection = part<QLabel>(u"ffpExtensionObjection"_s);
    EXPECT_FALSE(objection->isVisible());
    const int width = preferences().width();
    ending->selectAll();
    QTest::keyClicks(ending, u"a/b"_s);
    EXPECT_TRUE(objection->isVisible());
    EXPECT_EQ(objection->text(), u"The ending must not contain \"/\": it is the end of a name, not a path. \"a\" stays."_s);
    EXPECT_EQ(ending->accessibleDescription(), objection->text());
    EXPECT_EQ(store.string(u"ffpExtension"_s), u"a"_s);
    EXPECT_EQ(preferences().width(), width);
    QTest::keyClick(ending, Qt::Key_Escape);
    EXPECT_EQ(ending->text(), u"a"_s);
    EXPECT_FALSE(preferences().isVisible());
}

TEST_F(PreferencesWindowTest, TakesNoNumberOfJobsAboveTheMost)
{
    show();
    open();
    auto *const jobs = part<QSpinBox>(u"maxThreadsStepper"_s);
    jobs->setFocus();
    jobs->selectAll();
    QTest::keyClicks(jobs, u"300"_s);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 30);
    jobs->selectAll();
    QTest::keyClicks(jobs, u"0"_s);
    QTest::keyClick(jobs, Qt::Key_Tab);
    EXPECT_EQ(jobs->value(), 1);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 1);
}

TEST_F(PreferencesWindowTest, ShowsWhatIsChangedElsewhere)
{
    show();
    open();
    store.setValue(u"maxThreads"_s, 12);
    store.setValue(u"proveBeforeDeleting"_s, 0);
    encodeTab.originals.keepFoldersButton.setOn(true);
    EXPECT_EQ(part<QSpinBox>(u"maxThreadsStepper"_s)->value(), 12);
    EXPECT_FALSE(part<QCheckBox>(u"proveButton"_s)->isChecked());
    EXPECT_TRUE(part<QCheckBox>(u"keepFoldersButton"_s)->isChecked());
}

TEST_F(PreferencesWindowTest, AChangeHereShowsOnTheTabs)
{
    show();
    open();
    expectFromMnemonic(Qt::Key_P, [this] { return !encodeTab.originals.proveButton.isOn(); });
    EXPECT_FALSE(fixTab.originals.proveButton.isOn());
}

TEST_F(PreferencesWindowTest, IsAsHighAsItsPageAndKeepsItsUpperEdgeAndWidth)
{
    show();
    open();
    const QRect before = preferences().geometry();
    const auto fits = [this] {
        const auto *const page = qobject_cast<PreferencesPage *>(preferences().preferencesTab()->currentWidget());
        return page->viewport()->height() == page->heightFor(page->viewport()->width());
    };
    EXPECT_TRUE(waitUntil(fits));
    showMetadata();
    EXPECT_TRUE(waitUntil(fits));
    EXPECT_EQ(preferences().geometry().topLeft(), before.topLeft());
    EXPECT_EQ(preferences().width(), before.width());
    QTest::keyClick(&preferences(), Qt::Key_G, Qt::AltModifier);
    EXPECT_TRUE(waitUntil([this, &before] { return preferences().geometry() == before; }));
}

TEST_F(PreferencesWindowTest, RemembersItsPlace)
{
    show();
    open();
    preferences().move(137, 91);
    preferences().resize(preferences().width() + 40, preferences().height());
    const QRect left = preferences().geometry();
    preferences().close();
    PreferencesController controls;
    PreferencesWindow next(controls);
    next.show();
    EXPECT_TRUE(waitUntil([&] { return next.geometry() == left; })) << next.geometry().x() << ' ' << next.geometry().width();
}

TEST_F(PreferencesWindowTest, EveryControlHasANameAndAMnemonicOfItsOwn)
{
    show();
    open();
    for (int index = 0; index < 2; ++index) {
        const QWidget &page = *preferences().preferencesTab()->widget(index);
        QList<QChar> mnemonics;
        for (const QString &text : textsOf(page)) {
            const QChar mnemonic = mnemonicOf(text);
            EXPECT_FALSE(mnemonic.isNull()) << qPrintable(text);
            EXPECT_FALSE(mnemonics.contains(mnemonic)) << qPrintable(text);
            mnemonics.append(mnemonic);
        }
        for (const QWidget *const widget : page.findChildren<QWidget *>()) {
            if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().startsWith(u"qt_"_s) || widget->inherits("QComboBoxListView"))
                continue;
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << qPrintable(widget->objectName()) << widget->metaObject()->className();
        }
    }
}

TEST_F(PreferencesWindowTest, CutsNoText)
{
    show();
    open();
    for (int index = 0; index < 2; ++index) {
        preferences().preferencesTab()->setCurrentIndex(index);
        handleWaitingEvents();
        for (const QWidget *const widget : preferences().preferencesTab()->widget(index)->findChildren<QWidget *>()) {
            const bool hasText = qobject_cast<const QLabel *>(widget) || qobject_cast<const QAbstractButton *>(widget)
                                 || qobject_cast<const QComboBox *>(widget);
            if (!hasText || !widget->isVisible())
                continue;
            const auto *const label = qobject_cast<const QLabel *>(widget);
            const int needed = label && label->wordWrap() ? label->heightForWidth(label->width()) : widget->sizeHint().height();
            EXPECT_GE(widget->height(), needed) << qPrintable(widget->objectName());
            if (!label || !label->wordWrap()) {
                EXPECT_GE(widget->width(), widget->sizeHint().width()) << qPrintable(widget->objectName());
            }
        }
    }
}

TEST_F(PreferencesWindowTest, ClosesWithTheApplication)
{
    show();
    open();
    window.prepareToQuit();
    EXPECT_FALSE(preferences().isVisible());
}

} // namespace nurv::test
