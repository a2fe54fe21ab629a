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

} // namespace nurv
