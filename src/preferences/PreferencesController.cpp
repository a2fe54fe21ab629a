// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "preferences/PreferencesController.h"

#include "app/SettingsTable.h"
#include "base/NotificationCenter.h"
#include "settings/SettingsStore.h"
#include "shntool/SHNtoolOutputNamingFormatParser.h"
#include "toolbox/Toolbox.h"

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

const QString kMaxThreads = u"maxThreads"_s;
const QString kNamesFormat = u"shntoolNamesFormat"_s;
const QString kWarnOnDelete = u"warnOnDelete"_s;
const QString kWarnOnFilesSkipped = u"warnOnFilesSkipped"_s;

const Setting &setting(const QString &key)
{
    static const std::vector<Setting> table = settingsTable(toolbox());
    const Setting *const found = settingOf(table, key);
    Q_ASSERT(found);
    return *found;
}

/// The texts or numbers of a choice, as they are stored.
QStringList storedTexts(const Setting &setting)
{
    QStringList texts;
    for (const Setting::Choice &choice : setting.choices)
        texts.append(choice.value.toString());
    return texts;
}

/// Runs `take` now and whenever the value of the key changes, as long as the receiver lives.
template<typename Take>
void followSetting(QObject *receiver, const QString &key, const Take &take)
{
    take();
    QObject::connect(&SettingsStore::instance(), &SettingsStore::changed, receiver, [key, take](const QString &changed) {
        if (changed == key)
            take();
    });
}

} // namespace

PreferencesController::PreferencesController()
    : maxThreadsStepper(setting(kMaxThreads).least, setting(kMaxThreads).most, setting(kMaxThreads).standard.toInt()),
      m_namesFormat(setting(kNamesFormat), tr("The line")),
      m_ffpExtension(setting(u"ffpExtension"_s), tr("The ending")), preferencesTab(toolbarDefaultItemIdentifiers(), 2),
      trashOrDelete({tr("Delete for good"), tr("Move to the trash")}),
      surroundOrder(storedTexts(setting(u"incomingSurroundOrder"_s)))
{
    maxThreadsStepper.bindToSetting(kMaxThreads);
    connect(&maxThreadsStepper, &Control::valueChanged, this, &PreferencesController::maxThreadsChanged);
    connect(&shnlenTrackListingFormat, &Control::valueChanged, this,
            [this] { controlTextDidChange(shnlenTrackListingFormat); });
    proveButton.bindToSetting(u"proveBeforeDeleting"_s);
    dropMetadataButton.bindToSetting(u"dropMetadata"_s);
    keepFoldersButton.bindToSetting(u"keepFolders"_s);
    bindWarnings();
    bindWayOfOriginals();
    bindSurroundOrder();
    initToolbar();
}

QStringList PreferencesController::toolbarDefaultItemIdentifiers()
{
    return {u"General"_s, u"Metadata"_s};
}

void PreferencesController::initToolbar()
{
    showPreferencesTab(u"General"_s);
    initData();
}

void PreferencesController::initData()
{
    const QString line = SHNtoolOutputNamingFormatParser().getFormattedLineWithName(u"FileName"_s, u"01:00:00"_s, u"01"_s);
    currentFormat.setText(line.chopped(1));
}

void PreferencesController::maxThreadsChanged()
{
    NotificationCenter::instance().post(QString::fromUtf16(NURVMaxThreadsChangedNotification),
                                        maxThreadsStepper.integerValue());
}

void PreferencesController::controlTextDidChange(const TextControl &field)
{
    if (&field == &shnlenTrackListingFormat)
        initData();
}

void PreferencesController::warnOnDeleteChanged()
{
    SettingsStore::instance().setValue(kWarnOnDelete, warnOnDeleteButton.isOn());
}

void PreferencesController::warnOnfilesSkippedChanged()
{
    SettingsStore::instance().setValue(kWarnOnFilesSkipped, warnSkipFilesButton.isOn());
}

void PreferencesController::windowWillClose()
{
    m_namesFormat.restore();
    m_ffpExtension.restore();
}

/// Their settings are booleans, as that of the names of lists is.
void PreferencesController::bindWarnings()
{
    SettingsStore &store = SettingsStore::instance();
    const QString kNamedAfterFolder = u"checksumFileUsesOutputDirName"_s;
    for (const auto &[control, key] : {std::pair{&warnOnDeleteButton, kWarnOnDelete},
                                       std::pair{&warnSkipFilesButton, kWarnOnFilesSkipped},
                                       std::pair{&namedAfterFolderButton, kNamedAfterFolder}})
        followSetting(this, key, [&store, control = control, key = key] { control->setOn(store.boolean(key)); });
    connect(&warnOnDeleteButton, &Control::valueChanged, this, &PreferencesController::warnOnDeleteChanged);
    connect(&warnSkipFilesButton, &Control::valueChanged, this, &PreferencesController::warnOnfilesSkippedChanged);
    connect(&namedAfterFolderButton, &Control::valueChanged, this,
            [this, &store, kNamedAfterFolder] { store.setValue(kNamedAfterFolder, namedAfterFolderButton.isOn()); });
}

/// A stored number that is none shows what it does: files go to the trash.
void PreferencesController::bindWayOfOriginals()
{
    SettingsStore &store = SettingsStore::instance();
    const QString key = u"trashOrDelete"_s;
    followSetting(this, key, [this, &store, key] { trashOrDelete.setSelectedIndex(setting(key).value(store).toInt()); });
    connect(&trashOrDelete, &Control::valueChanged, this, [this, &store, key] {
        if (trashOrDelete.selectedIndex() != setting(key).value(store).toInt())
            store.setValue(key, trashOrDelete.selectedIndex());
    });
}

void PreferencesController::bindSurroundOrder()
{
    SettingsStore &store = SettingsStore::instance();
    const QString key = u"incomingSurroundOrder"_s;
    followSetting(this, key, [this, &store, key] { surroundOrder.selectTitle(setting(key).value(store).toString()); });
    connect(&surroundOrder, &Control::valueChanged, this,
            [this, &store, key] { store.setValue(key, surroundOrder.selectedTitle()); });
}

} // namespace nurv
