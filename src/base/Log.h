// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>

namespace nurv {

// What is told by the log, by the folder under `src` that tells it: `filesLog` is the category `nurv.files`. All are
// here, so that the rules of QT_LOGGING_RULES can be looked up in one place.
Q_DECLARE_LOGGING_CATEGORY(appLog)
Q_DECLARE_LOGGING_CATEGORY(audioLog)
Q_DECLARE_LOGGING_CATEGORY(baseLog)
Q_DECLARE_LOGGING_CATEGORY(checksumLog)
Q_DECLARE_LOGGING_CATEGORY(convertLog)
Q_DECLARE_LOGGING_CATEGORY(engineLog)
Q_DECLARE_LOGGING_CATEGORY(filesLog)
Q_DECLARE_LOGGING_CATEGORY(journalLog)
Q_DECLARE_LOGGING_CATEGORY(originalsLog)
Q_DECLARE_LOGGING_CATEGORY(processLog)
Q_DECLARE_LOGGING_CATEGORY(settingsLog)
Q_DECLARE_LOGGING_CATEGORY(shntoolLog)
Q_DECLARE_LOGGING_CATEGORY(taggingLog)
Q_DECLARE_LOGGING_CATEGORY(tagsLog)
Q_DECLARE_LOGGING_CATEGORY(textLog)
Q_DECLARE_LOGGING_CATEGORY(utilLog)

/// The failures of jobs, which their rows and reports tell too: `nurv.engine.jobs`.
Q_DECLARE_LOGGING_CATEGORY(failedJobLog)
/// Sources that stay although their deletion was asked for: `nurv.convert.kept`. Rows, and the lines of the command
/// line, tell the same.
Q_DECLARE_LOGGING_CATEGORY(keptSourceLog)
/// When a job begins to wait for its program and has done so: `nurv.convert.wait`. Shown only to who asks for it.
Q_DECLARE_LOGGING_CATEGORY(waitLog)
/// Texts that could not be read, which whoever wanted them tells too: `nurv.files.unread`.
Q_DECLARE_LOGGING_CATEGORY(unreadTextLog)
/// What the process for tags has to do without: `nurv.tags.sandbox`. Shown only to who asks for it.
Q_DECLARE_LOGGING_CATEGORY(sandboxLog)

} // namespace nurv
