// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "preferences/PreferencesController.h"

#include "app/NURVController.h"
#include "app/ScriptedPrompts.h"
#include "app/SettingsTable.h"
#include "base/NotificationCenter.h"
#include "desktop/NullDesktopServices.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskQueue.h"
#include "settings/SettingsStore.h"
#include "toolbox/Toolbox.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace nurv::test {

namespace {

/// What earlier cases of the process have stored is forgotten.
struct UntouchedSettings {
    UntouchedSettings()
    {
        for (const Setting &setting : settingsTable(toolbox()))
            SettingsStore::instance().remove(setting.key);
    }
};

class PreferencesControllerTest : public ::testing::Test {
protected:
    PreferencesControllerTest()
    {
        NotificationCenter::instance().subscribe(QString::fromUtf16(NURVMaxThreadsChangedNotification), &context,
                                                 [this](const QVariant &limit, const QVariantMap &) { told.append(limit.toInt()); });
    }

    UntouchedSettings untouched;
    ScriptedPrompts prompts;
    NullDesktopServices services;
    NURVController controller{prompts, services, toolbox()};
    SettingsStore &store = SettingsStore::instance();
    QObject context;
    QList<int> told;
    PreferencesController preferences;
};

/// A job that runs until it is told to end.
class PatientTask final : public NURVTask {
public:
    explicit PatientTask(NURVTaskQueue &queue) : NURVTask(&queue) {}
    void finish()
    {
        stopTask();
        reportCompletion();
    }
};

} // namespace

TEST_F(PreferencesControllerTest, ShowsTheSettingsOfTheRegistry)
{
    EXPECT_EQ(preferences.maxThreadsStepper.integerValue(), 2);
    EXPECT_EQ(preferences.maxThreadsStepper.minimum(), 1);
    EXPECT_EQ(preferences.maxThreadsStepper.maximum(), 256);
    EXPECT_EQ(preferences.trashOrDelete.selectedIndex(), 0);
    EXPECT_TRUE(preferences.warnOnDeleteButton.isOn());
    EXPECT_TRUE(preferences.warnSkipFilesButton.isOn());
    EXPECT_TRUE(preferences.proveButton.isOn());
    EXPECT_FALSE(preferences.dropMetadataButton.isOn());
    EXPECT_FALSE(preferences.keepFoldersButton.isOn());
    EXPECT_FALSE(preferences.namedAfterFolderButton.isOn());
    EXPECT_EQ(preferences.ffpExtension.text(), u"ffp.txt"_s);
    EXPECT_EQ(preferences.shnlenTrackListingFormat.text(), u"%number. %name %time"_s);
    EXPECT_EQ(preferences.currentFormat.text(), u"01. FileName 01:00:00"_s);
    EXPECT_EQ(preferences.surroundOrder.selectedTitle(), u"L R C LFE LS RS (STANDARD)"_s);
    EXPECT_EQ(preferences.preferencesTab.selectedTitle(), u"General"_s);
    EXPECT_TRUE(told.isEmpty()) << "nothing has changed";
}

TEST_F(PreferencesControllerTest, StoresEveryControlAtOnce)
{
    preferences.maxThreadsStepper.setIntegerValue(7);
    EXPECT_EQ(store.integer(u"maxThreads"_s), 7);
    preferences.trashOrDelete.setSelectedIndex(1);
    EXPECT_EQ(store.integer(u"trashOrDelete"_s), 1);
    preferences.warnOnDeleteButton.setOn(false);
    EXPECT_FALSE(store.boolean(u"warnOnDelete"_s));
    preferences.warnSkipFilesButton.setOn(false);
    EXPECT_FALSE(store.boolean(u"warnOnFilesSkipped"_s));
    preferences.proveButton.setOn(false);
    EXPECT_EQ(store.integer(u"proveBeforeDeleting"_s), 0);
    preferences.dropMetadataButton.setOn(true);
    EXPECT_EQ(store.integer(u"dropMetadata"_s), 1);
    preferences.keepFoldersButton.setOn(true);
    EXPECT_EQ(store.integer(u"keepFolders"_s), 1);
    preferences.namedAfterFolderButton.setOn(true);
    EXPECT_TRUE(store.boolean(u"checksumFileUsesOutputDirName"_s));
    preferences.ffpExtension.setText(u"ffp"_s);
    EXPECT_EQ(store.string(u"ffpExtension"_s), u"ffp"_s);
    preferences.shnlenTrackListingFormat.setText(u"%number %name"_s);
    EXPECT_EQ(store.string(u"shntoolNamesFormat"_s), u"%number %name"_s);
    preferences.surroundOrder.setSelectedIndex(1);
    EXPECT_EQ(store.string(u"incomingSurroundOrder"_s), u"L C R LS RS LFE (FILM)"_s);
}

TEST_F(PreferencesControllerTest, FindsEverythingAgainAtTheNextStart)
{
    preferences.maxThreadsStepper.setIntegerValue(9);
    preferences.trashOrDelete.setSelectedIndex(1);
    preferences.warnOnDeleteButton.setOn(false);
    preferences.namedAfterFolderButton.setOn(true);
    preferences.ffpExtension.setText(u"fp"_s);
    preferences.surroundOrder.setSelectedIndex(2);
    ASSERT_TRUE(store.sync());
    store.reload();
    const PreferencesController next;
    EXPECT_EQ(next.maxThreadsStepper.integerValue(), 9);
    EXPECT_EQ(next.trashOrDelete.selectedIndex(), 1);
    EXPECT_FALSE(next.warnOnDeleteButton.isOn());
    EXPECT_TRUE(next.namedAfterFolderButton.isOn());
    EXPECT_EQ(next.ffpExtension.text(), u"fp"_s);
    EXPECT_EQ(next.surroundOrder.selectedIndex(), 2);
}

TEST_F(PreferencesControllerTest, FollowsChangesThatAreMadeElsewhere)
{
    store.setValue(u"maxThreads"_s, 5);
    store.setValue(u"trashOrDelete"_s, 1);
    store.setValue(u"warnOnDelete"_s, false);
    store.setValue(u"warnOnFilesSkipped"_s, false);
    store.setValue(u"checksumFileUsesOutputDirName"_s, true);
    store.setValue(u"proveBeforeDeleting"_s, 0);
    store.setValue(u"ffpExtension"_s, u"ffp"_s);
    store.setValue(u"shntoolNamesFormat"_s, u"%name (%time)"_s);
    store.setValue(u"incomingSurroundOrder"_s, u"C L R LS RS LFE (AAC)"_s);
    EXPECT_EQ(preferences.maxThreadsStepper.integerValue(), 5);
    EXPECT_EQ(preferences.trashOrDelete.selectedIndex(), 1);
    EXPECT_FALSE(preferences.warnOnDeleteButton.isOn());
    EXPECT_FALSE(preferences.warnSkipFilesButton.isOn());
    EXPECT_TRUE(preferences.namedAfterFolderButton.isOn());
    EXPECT_FALSE(preferences.proveButton.isOn());
    EXPECT_EQ(preferences.ffpExtension.text(), u"ffp"_s);
    EXPECT_EQ(preferences.shnlenTrackListingFormat.text(), u"%name (%time)"_s);
    EXPECT_EQ(preferences.currentFormat.text(), u"FileName (01:00:00)"_s);
    EXPECT_EQ(preferences.surroundOrder.selectedIndex(), 3);
    EXPECT_EQ(told, QList<int>{5}) << "the queue must know it, too";
}

TEST_F(PreferencesControllerTest, ShowsTheTrashForAValueThatCannotBeRead)
{
    store.setValue(u"trashOrDelete"_s, u"maybe"_s);
    EXPECT_EQ(preferences.trashOrDelete.selectedIndex(), 1);
    EXPECT_EQ(store.string(u"trashOrDelete"_s), u"maybe"_s) << "looking at it changes nothing";
    store.setValue(u"trashOrDelete"_s, 7);
    EXPECT_EQ(preferences.trashOrDelete.selectedIndex(), 1);
    preferences.trashOrDelete.setSelectedIndex(0);
    EXPECT_EQ(store.integer(u"trashOrDelete"_s), 0);
}

TEST_F(PreferencesControllerTest, TellsTheNumberOfJobsAtOnce)
{
    preferences.maxThreadsStepper.setIntegerValue(4);
    preferences.maxThreadsStepper.setIntegerValue(3);
    EXPECT_EQ(told, (QList<int>{4, 3}));
}

TEST_F(PreferencesControllerTest, MoreJobsAtOnceStartWhenTheNextOneEnds)
{
    NURVTaskQueue &queue = controller.taskQueue();
    std::vector<std::shared_ptr<PatientTask>> tasks;
    for (int number = 0; number < 8; ++number) {
        tasks.push_back(std::make_shared<PatientTask>(queue));
        queue.addTask(tasks.back());
    }
    const auto active = [&tasks] {
        return std::count_if(tasks.begin(), tasks.end(), [](const auto &task) { return task->isActive() && !task->isDone(); });
    };
    EXPECT_EQ(active(), 2);
    preferences.maxThreadsStepper.setIntegerValue(4);
    EXPECT_EQ(active(), 2);
    tasks[0]->finish();
    EXPECT_EQ(active(), 4);
    for (const auto &task : tasks) {
        if (!task->isDone())
            task->finish();
    }
}

TEST_F(PreferencesControllerTest, TheExampleFollowsTheFieldAtEveryKey)
{
    const QString typed = u"%time-%name"_s;
    QStringList examples;
    for (qsizetype length = 1; length <= typed.size(); ++length) {
        preferences.shnlenTrackListingFormat.setText(typed.first(length));
        examples.append(preferences.currentFormat.text());
    }
    EXPECT_EQ(examples, (QStringList{u"%"_s, u"%t"_s, u"%ti"_s, u"%tim"_s, u"01:00:00"_s, u"01:00:00-"_s, u"01:00:00-%"_s,
                                     u"01:00:00-%n"_s, u"01:00:00-%na"_s, u"01:00:00-%nam"_s, u"01:00:00-FileName"_s}));
}

TEST_F(PreferencesControllerTest, RefusesAnEndingThatIsNoneAndKeepsTheOldOne)
{
    EXPECT_TRUE(preferences.ffpExtensionObjection.isHidden());
    const QList<std::pair<QString, QString>> refused{
        {QString(), u"The ending must not be empty. \"ffp.txt\" stays."_s},
        {u"   "_s, u"The ending must not be empty. \"ffp.txt\" stays."_s},
        {u"../ffp"_s, u"The ending must not contain \"/\": it is the end of a name, not a path. \"ffp.txt\" stays."_s},
        {u"/etc/ffp"_s, u"The ending must not contain \"/\": it is the end of a name, not a path. \"ffp.txt\" stays."_s},
        {u".ffp"_s, u"The ending must not begin with a dot: one is put before it. \"ffp.txt\" stays."_s},
        {u"ffp "_s, u"The ending must not begin or end with a blank. \"ffp.txt\" stays."_s},
        {u"a\tb"_s, u"The ending must be one line of plain text. \"ffp.txt\" stays."_s},
        {QString(65, u'x'), u"The ending is too long for a file name. \"ffp.txt\" stays."_s},
    };
    for (const auto &[text, sentence] : refused) {
        preferences.ffpExtension.setText(text);
        EXPECT_EQ(preferences.ffpExtensionObjection.text(), sentence) << qPrintable(text);
        EXPECT_FALSE(preferences.ffpExtensionObjection.isHidden()) << qPrintable(text);
        EXPECT_EQ(preferences.ffpExtension.text(), text) << "what was typed can be mended";
        EXPECT_EQ(store.string(u"ffpExtension"_s), u"ffp.txt"_s) << qPrintable(text);
    }
    preferences.ffpExtension.setText(QString(64, u'x'));
    EXPECT_TRUE(preferences.ffpExtensionObjection.isHidden());
    EXPECT_EQ(store.string(u"ffpExtension"_s), QString(64, u'x'));
}

TEST_F(PreferencesControllerTest, RefusesAPatternWithoutALine)
{
    for (const QString &text : {QString(), u"  "_s, u"/"_s, u"//"_s, u"////"_s, u"a\nb"_s}) {
        preferences.shnlenTrackListingFormat.setText(text);
        EXPECT_FALSE(preferences.namesFormatObjection.isHidden()) << qPrintable(text);
        EXPECT_TRUE(preferences.namesFormatObjection.text().startsWith(u"The line must "_s)) << qPrintable(text);
        EXPECT_EQ(store.string(u"shntoolNamesFormat"_s), u"%number. %name %time"_s) << qPrintable(text);
        EXPECT_EQ(preferences.currentFormat.text(), u"01. FileName 01:00:00"_s) << qPrintable(text);
    }
}

TEST_F(PreferencesControllerTest, ForgetsWhatCouldNotBeTakenWhenTheWindowCloses)
{
    preferences.ffpExtension.setText(QString());
    preferences.shnlenTrackListingFormat.setText(u"/"_s);
    preferences.windowWillClose();
    EXPECT_EQ(preferences.ffpExtension.text(), u"ffp.txt"_s);
    EXPECT_EQ(preferences.shnlenTrackListingFormat.text(), u"%number. %name %time"_s);
    EXPECT_TRUE(preferences.ffpExtensionObjection.isHidden());
    EXPECT_TRUE(preferences.namesFormatObjection.isHidden());
}

TEST_F(PreferencesControllerTest, SaysWhatIsWrongWithAStoredTextThatNobodyCouldType)
{
    store.setValue(u"ffpExtension"_s, u"lists/ffp"_s);
    const PreferencesController next;
    EXPECT_EQ(next.ffpExtension.text(), u"lists/ffp"_s);
    EXPECT_EQ(next.ffpExtensionObjection.text(),
              u"The ending must not contain \"/\": it is the end of a name, not a path."_s);
}

TEST_F(PreferencesControllerTest, HasTwoPagesAndStartsWithTheFirst)
{
    EXPECT_EQ(PreferencesController::toolbarDefaultItemIdentifiers(), (QStringList{u"General"_s, u"Metadata"_s}));
    EXPECT_EQ(PreferencesController::toolbarAllowedItemIdentifiers(), PreferencesController::toolbarDefaultItemIdentifiers());
    EXPECT_EQ(PreferencesController::toolbarSelectableItemIdentifiers(), PreferencesController::toolbarDefaultItemIdentifiers());
    preferences.showPreferencesTab(u"Metadata"_s);
    EXPECT_EQ(preferences.preferencesTab.selectedIndex(), 1);
    preferences.showPreferencesTab(u"Network"_s);
    EXPECT_EQ(preferences.preferencesTab.selectedIndex(), 1);
    preferences.initToolbar();
    EXPECT_EQ(preferences.preferencesTab.selectedIndex(), 0);
}

} // namespace nurv::test
