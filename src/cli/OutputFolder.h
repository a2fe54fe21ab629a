// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

/// A folder for outputs as a user has named it.
struct OutputFolder {
    QString path;     ///< absolute
    QString obstacle; ///< why nothing can be written there, for people; empty: it can
};

/// Looks at the folder and tries whether it takes files, which leaves no trace. Blocks.
[[nodiscard]] OutputFolder checkOutputFolder(const QString &name);

/// The name with a "~" at its beginning replaced as a shell does it.
[[nodiscard]] QString withHomeFolder(const QString &name);

} // namespace nurv
