// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchCounts.h"

#include "text/HumanUnits.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace nurv {

QString closingLine(const BatchCounts &counts, std::chrono::milliseconds duration)
{
    QStringList parts{u"%1 of %2 done"_s.arg(counts.done).arg(counts.files + counts.skippedExisting)};
    const auto add = [&](int count, const QString &words) {
        if (count > 0)
            parts.append(QString::number(count) + u' ' + words);
    };
    add(counts.failedOtherwise, u"failed"_s);
    add(counts.canceled, u"canceled"_s);
    add(counts.originalsKept, counts.originalsKept == 1 ? u"original kept"_s : u"originals kept"_s);
    add(counts.notInFull, u"not in full"_s);
    add(counts.notProven, u"not proven"_s);
    add(counts.skippedExisting, u"existed already"_s);
    add(counts.refused, u"refused"_s);
    const QString sizes = counts.sourceBytes > 0 && counts.outputBytes > 0
                              ? u"%1 to %2 "_s.arg(sizeText(counts.sourceBytes), sizeText(counts.outputBytes))
                              : QString();
    return parts.join(u", "_s) + u"; "_s + sizes + u"in "_s + durationText(duration);
}

} // namespace nurv
