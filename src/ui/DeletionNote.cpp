// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DeletionNote.h"

#include "originals/OriginalsControls.h"
#include "settings/SettingsStore.h"

using namespace Qt::StringLiterals;

namespace nurv {

DeletionNote::DeletionNote(const CheckControl &deleteOriginals, const OriginalsControls &originals, QWidget *parent)
    : QLabel(parent), m_deleteOriginals(deleteOriginals), m_originals(originals)
{
    setObjectName(u"deletionNote"_s);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    for (const CheckControl *const control : {&deleteOriginals, &originals.proveButton, &originals.dropMetadataButton})
        connect(control, &Control::changed, this, &DeletionNote::showWords);
    connect(&SettingsStore::instance(), &SettingsStore::changed, this, [this](const QString &key) {
        if (key == u"trashOrDelete")
            showWords();
    });
    showWords();
}

QString DeletionNote::words() const
{
    if (!m_deleteOriginals.isOn())
        return tr("The originals stay.");
    const bool goToTrash = SettingsStore::instance().integer(u"trashOrDelete"_s) != 0;
    if (m_originals.proveButton.isOn())
        return goToTrash ? tr("Moved to the trash, after a proof.") : tr("Deleted for good, after a proof.");
    return goToTrash ? tr("Moved to the trash.") : tr("Deleted for good.");
}

void DeletionNote::showWords()
{
    setForegroundRole(m_deleteOriginals.isOn() ? QPalette::WindowText : QPalette::PlaceholderText);
    setText(words());
}

} // namespace nurv
