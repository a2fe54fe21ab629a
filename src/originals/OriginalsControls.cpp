// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "originals/OriginalsControls.h"

using namespace Qt::StringLiterals;

namespace nurv {

OriginalsControls::OriginalsControls()
{
    proveButton.bindToSetting(u"proveBeforeDeleting"_s);
    dropMetadataButton.bindToSetting(u"dropMetadata"_s);
    keepFoldersButton.bindToSetting(u"keepFolders"_s);
}

void OriginalsControls::follow(CheckControl &deleteOriginals)
{
    const auto followDeletion = [this, &deleteOriginals] {
        proveButton.setEnabled(deleteOriginals.isOn());
        dropMetadataButton.setEnabled(deleteOriginals.isOn());
    };
    QObject::connect(&deleteOriginals, &Control::valueChanged, &proveButton, followDeletion);
    followDeletion();
}

void OriginalsControls::follow(CheckControl &deleteOriginals, CheckControl &besideSource)
{
    follow(deleteOriginals);
    const auto followPlace = [this, &besideSource] { keepFoldersButton.setEnabled(!besideSource.isOn()); };
    QObject::connect(&besideSource, &Control::valueChanged, &keepFoldersButton, followPlace);
    followPlace();
}

} // namespace nurv
