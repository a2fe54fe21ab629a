// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QString>

class QWidget;

namespace nurv::windowPlace {

/// Gives the window the place and size kept under the settings key, else
/// `firstSize`. Returns whether there was a place.
bool restore(QWidget &window, const QString &key, QSize firstSize);

/// Keeps place and size of the window under the settings key.
void keep(const QWidget &window, const QString &key);

} // namespace nurv::windowPlace
