// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/FileArrivals.h"
#include "cli/SourceNames.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace nurv {

/// What the path arguments of a command stand for.
struct InputFiles {
    FileIntake intake;    ///< what the tab takes; the refused parts are in `refusals`
    SourceNames names;    ///< how the files are called
    QStringList refusals; ///< one line for each file that was asked for and cannot be worked on
    QStringList skipped;  ///< one line for each file in a folder that is of another kind
    bool hasSkippedSounds = false; ///< one of those has the name of a sound
};

/// Looks at every argument: files as they are, folders searched as folders
/// dropped on a window are. `arrival` says for which page, by which door, and of what there are jobs. A file whose name
/// promises a kind that its contents cannot be read as is refused, in a folder, too. Blocks; may read the head of files.
[[nodiscard]] InputFiles collectInput(const QList<QByteArray> &arguments, const FileArrivals &arrivals, Arrival arrival);

} // namespace nurv
