// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"
#include "preferences/SettingField.h"

#include <QObject>
#include <QStringList>

#include <vector>

namespace nurv {

/// The preferences: controls for the settings that no tab has, and for those that several tabs share. Each is stored as soon
/// as it is changed, and follows changes that are made elsewhere. Knows no widget. Lives on the GUI thread.
class PreferencesController final : public QObject {
    Q_OBJECT

public:
    /// The defaults of all settings must be registered.
    PreferencesController();

    StepperControl maxThreadsStepper;
    /// Its number field is a part of the same widget.
    StepperControl &maxThreadsStepperText = maxThreadsStepper;

private:
    SettingField m_namesFormat;
    SettingField m_ffpExtension;

public:
    TextControl &shnlenTrackListingFormat = m_namesFormat.text;
    LabelControl &namesFormatObjection = m_namesFormat.objection;
    LabelControl currentFormat{QString()}; ///< an example line in the stored format
    ChoiceControl preferencesTab;          ///< the page that shows: "General", "Metadata"
    TextControl &ffpExtension = m_ffpExtension.text;
    LabelControl &ffpExtensionObjection = m_ffpExtension.objection;
    CheckControl warnOnDeleteButton;
    CheckControl warnSkipFilesButton;
    ChoiceControl trashOrDelete; ///< away for good, or to the trash
    CheckControl proveButton;
    CheckControl dropMetadataButton;
    CheckControl keepFoldersButton;
    CheckControl namedAfterFolderButton;
    ChoiceControl surroundOrder;

    /// Shows the page "General" and the example line. Called when the application starts.
    void initToolbar();
    /// The example line anew: "FileName", "01:00:00" and "01" in the stored format.
    void initData();
    /// The names of the pages in their order.
    [[nodiscard]] static QStringList toolbarDefaultItemIdentifiers();
    [[nodiscard]] static QStringList toolbarAllowedItemIdentifiers() { return toolbarDefaultItemIdentifiers(); }
    [[nodiscard]] static QStringList toolbarSelectableItemIdentifiers() { return toolbarDefaultItemIdentifiers(); }
    /// Shows the page of that name; another name changes nothing.
    void showPreferencesTab(const QString &identifier) { preferencesTab.selectTitle(identifier); }
    /// Tells the queue the number of jobs at once. Jobs that run go on; it counts when the next one ends or comes.
    void maxThreadsChanged();
    /// The example line follows the field at every key.
    void controlTextDidChange(const TextControl &field);
    void warnOnDeleteChanged();
    void warnOnfilesSkippedChanged();
    /// The window has closed: what was typed and could not be taken is forgotten.
    void windowWillClose();

private:
    void bindWarnings();
    void bindWayOfOriginals();
    void bindSurroundOrder();
};

} // namespace nurv
