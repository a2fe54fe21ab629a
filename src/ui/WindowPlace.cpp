// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WindowPlace.h"

#include "settings/SettingsStore.h"

#include <QWidget>

namespace nurv::windowPlace {

bool restore(QWidget &window, const QString &key, QSize firstSize)
{
    const QByteArray kept = SettingsStore::instance().bytes(key);
    if (!kept.isEmpty() && window.restoreGeometry(kept))
        return true;
    window.resize(firstSize);
    return false;
}

void keep(const QWidget &window, const QString &key)
{
    SettingsStore::instance().setValue(key, window.saveGeometry());
}

} // namespace nurv::windowPlace
