// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QString>

class QWidget;

namespace nurv::windowPlace {

/// Gives the window the place and size kept under the settings key, else
/// `firstSize`; nothing that its screen has no room for. Returns whether there was a place.
bool restore(QWidget &window, const QString &key, QSize firstSize);

/// Moves the window to where it covers nothing of the other one, as far as their screen has room: to its right, to its
/// left, else as far to the right as it goes.
void moveBeside(QWidget &window, const QWidget *other);

/// Keeps place and size of the window under the settings key.
void keep(const QWidget &window, const QString &key);

} // namespace nurv::windowPlace
