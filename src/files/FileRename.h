// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace nurv {

/// Gives a file, link or folder a name on the same file system that nothing has, not even a
/// link that leads nowhere. False, with the reason in errno (EEXIST when the name is taken):
/// it has its former name then. Where the file system cannot promise that, the name is looked
/// at right before. Any thread; encoded paths.
[[nodiscard]] bool renameToFreeName(const QByteArray &from, const QByteArray &to);
/// The same for the entry of an open folder.
[[nodiscard]] bool renameToFreeName(int folder, const QByteArray &entry, const QByteArray &to);

} // namespace nurv
