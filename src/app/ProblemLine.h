// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace nurv {

class NURVTask;

/// The one line of a failed job's report that says why it failed: a program's own reason
/// or ours, without banner, progress, the source's name, the program's name, full stop,
/// and advice about switches other than `switches` ("--lax"). Says that there is none when
/// the report tells nothing.
[[nodiscard]] QString problemLine(const QString &report, const QString &sourcePath, const QStringList &switches);

/// What went wrong with a job that failed, in a line with a blank one behind it; empty when its report begins with that,
/// or tells nothing.
[[nodiscard]] QString reportHead(const NURVTask &task);

} // namespace nurv
