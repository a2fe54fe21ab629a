// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "process/ChildProcess.h"
#include "programs/ExternalProgram.h"

#include <QString>
#include <QStringList>
#include <QStringView>

namespace nurv::atomicParsley {

// `AtomicParsley`. Nothing here runs it. Paths are absolute.

[[nodiscard]] const ExternalProgram &program();

/// Marks an MP4 file as gapless, in its place.
[[nodiscard]] QStringList gaplessArguments(const QString &path);
/// What it must find in its environment to leave no room in the file.
void setEnvironment(ChildEnvironment &environment);

/// Whether the text says that a disk is full; it then waits for ever. It does
/// not say so of every file that it failed to write.
[[nodiscard]] bool tellsOfFailedCopy(QStringView text);
/// No marker that `tellsOfFailedCopy` knows is longer.
inline constexpr qsizetype kLongestCopyMarker = 7;

/// The names of the files that a run may have left beside `path`: "song-temp-57809.m4a".
/// Looks into the folder.
[[nodiscard]] QStringList temporariesBeside(const QString &path);

} // namespace nurv::atomicParsley
