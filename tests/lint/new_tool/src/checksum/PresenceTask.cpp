// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "checksum/PresenceTask.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace nurv {

PresenceTask::PresenceTask(NURVTaskQueue *queue, const QStringList &files) : NURVInProcessTask(queue), m_files(files) {}

void PresenceTask::doStartTask()
{
    showStarted();
    for (const QString &file : m_files) {
        if (!QFile::exists(file))
            failWith(file + u": it is not there\n"_s);
    }
}

} // namespace nurv
