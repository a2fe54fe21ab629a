// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"

namespace nurv {

Q_LOGGING_CATEGORY(appLog, "nurv.app")
Q_LOGGING_CATEGORY(audioLog, "nurv.audio")
Q_LOGGING_CATEGORY(baseLog, "nurv.base")
Q_LOGGING_CATEGORY(checksumLog, "nurv.checksum")
Q_LOGGING_CATEGORY(convertLog, "nurv.convert")
Q_LOGGING_CATEGORY(engineLog, "nurv.engine")
Q_LOGGING_CATEGORY(filesLog, "nurv.files")
Q_LOGGING_CATEGORY(journalLog, "nurv.journal")
Q_LOGGING_CATEGORY(originalsLog, "nurv.originals")
Q_LOGGING_CATEGORY(processLog, "nurv.process")
Q_LOGGING_CATEGORY(settingsLog, "nurv.settings")
Q_LOGGING_CATEGORY(shntoolLog, "nurv.shntool", QtWarningMsg)
Q_LOGGING_CATEGORY(taggingLog, "nurv.tagging", QtInfoMsg)
Q_LOGGING_CATEGORY(tagsLog, "nurv.tags")
Q_LOGGING_CATEGORY(textLog, "nurv.text")
Q_LOGGING_CATEGORY(utilLog, "nurv.util", QtInfoMsg)

Q_LOGGING_CATEGORY(failedJobLog, "nurv.engine.jobs")
Q_LOGGING_CATEGORY(keptSourceLog, "nurv.convert.kept")
Q_LOGGING_CATEGORY(waitLog, "nurv.convert.wait", QtWarningMsg)
Q_LOGGING_CATEGORY(unreadTextLog, "nurv.files.unread")
Q_LOGGING_CATEGORY(sandboxLog, "nurv.tags.sandbox", QtWarningMsg)

} // namespace nurv
