// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BatchSummary.h"

#include "app/PathNames.h"
#include "engine/NURVTask.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv {

void BatchSummary::add(const NURVTask &task)
{
    const TaskOutcome &outcome = task.outcome();
    if (task.cancelled()) {
        ++canceled;
        return;
    }
    if (task.error()) {
        ++failed;
        return;
    }
    ++done;
    if (outcome.original == TaskOutcome::Original::Kept)
        ++originalsKept;
    else if (!outcome.problem.isEmpty() || !task.warnings().isEmpty())
        ++notInFull;
    if (outcome.proof == TaskOutcome::Proof::NotProven)
        ++notProven;
    if (outcome.output.isEmpty())
        return;
    const bool isFolder = outcome.outputFiles > 0;
    files += isFolder ? outcome.outputFiles : 1;
    folders.insert(isFolder ? outcome.output : folderOf(outcome.output));
    if (outcome.sourceBytes > 0 && outcome.outputBytes > 0) {
        sourceBytes += outcome.sourceBytes;
        outputBytes += outcome.outputBytes;
    }
}

std::optional<int> BatchSummary::percentSmaller() const
{
    if (sourceBytes <= 0 || outputBytes <= 0)
        return std::nullopt;
    const double ratio = static_cast<double>(outputBytes) / static_cast<double>(sourceBytes);
    return static_cast<int>(std::lround((1.0 - ratio) * 100.0));
}

QString BatchSummary::commonFolder() const
{
    QString common;
    for (const QString &folder : folders) {
        if (common.isEmpty())
            common = folder;
        while (!common.isEmpty() && folder != common && !folder.startsWith(common + u'/'))
            common.truncate(std::max<qsizetype>(common.lastIndexOf(u'/'), 0));
        if (common.isEmpty())
            break;
    }
    return common;
}

} // namespace nurv
