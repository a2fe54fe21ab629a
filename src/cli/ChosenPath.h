// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/UserPrompts.h"

#include <QString>

namespace nurv {

/// A file or folder as a user has named it in answer to a chooser.
struct ChosenPath {
    QString path;     ///< absolute
    QString obstacle; ///< why it cannot be what was asked for, for people; empty: it can
};

/// Looks at what a chooser is answered with. Of a folder, and of the folder of a file that is to be saved, it also tries
/// whether it takes files, which leaves no trace. Blocks.
[[nodiscard]] ChosenPath checkChosenPath(const FileChooser &chooser, const QString &name);

} // namespace nurv
