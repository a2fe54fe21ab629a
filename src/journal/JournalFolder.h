// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileDescriptor.h"

#include <QByteArray>
#include <QString>

namespace nurv {

/// Where the journals lie: `nurv` in the XDG state folder, or what NURV_STATE names.
[[nodiscard]] QString journalFolderPath();

/// Opens the folder, and makes it with those above it, closed to others, if that is
/// asked for. Not open on failure; `errno` then has the reason.
[[nodiscard]] FileDescriptor openJournalFolder(bool mayMake);

/// "<32 hexadecimal digits>.journal", a name that no other call gives.
[[nodiscard]] QByteArray newJournalName();
/// Whether an entry of the folder has such a name.
[[nodiscard]] bool isJournalName(const QByteArray &name);

/// The name that a journal has until it is complete and locked.
[[nodiscard]] QByteArray unfinishedJournalName(const QByteArray &name);
[[nodiscard]] bool isUnfinishedJournalName(const QByteArray &name);

} // namespace nurv
