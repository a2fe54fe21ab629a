// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/BatchWords.h"

#include "app/BatchWatch.h"
#include "app/PathNames.h"
#include "text/HumanUnits.h"
#include "text/PrintableText.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nurv::batchWords {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("batchWords", text);
}

/// "2 failed"; nothing for none.
void add(QStringList &parts, int count, const QString &words)
{
    if (count > 0)
        parts.append(QLocale().toString(count) + u' ' + words);
}

QString joined(const QStringList &parts)
{
    return parts.join(u" · "_s);
}

/// "12 files made in Music".
QString filesMade(const BatchSummary &summary)
{
    const QString files =
        summary.files == 1 ? tr("1 file made") : tr("%1 files made").arg(QLocale().toString(summary.files));
    if (summary.folders.size() > 1)
        return tr("%1 in %2 folders").arg(files, QLocale().toString(summary.folders.size()));
    const QString folder = lastPathComponent(summary.commonFolder());
    return folder.isEmpty() ? files : tr("%1 in %2").arg(files, printableLine(folder));
}

QString sizes(int percentSmaller)
{
    if (percentSmaller == 0)
        return tr("as large as before");
    const QString percent = QLocale().toString(std::abs(percentSmaller));
    return percentSmaller > 0 ? tr("%1 % smaller").arg(percent) : tr("%1 % larger").arg(percent);
}

} // namespace

QString timeLeft(std::chrono::microseconds time)
{
    using namespace std::chrono;
    const double seconds = duration<double>(time).count();
    if (seconds < 10.0)
        return tr("a few seconds left");
    if (seconds < 55.0)
        return tr("about %1 s left").arg(std::lround(seconds / 10.0) * 10);
    const long minutes = std::max(std::lround(seconds / 60.0), 1L);
    if (minutes < 60)
        return tr("about %1 min left").arg(minutes);
    const long rounded = (minutes + 5) / 10 * 10;
    if (rounded % 60 == 0)
        return tr("about %1 h left").arg(rounded / 60);
    return tr("about %1 h %2 min left").arg(rounded / 60).arg(rounded % 60);
}

QString progress(const BatchProgress &progress, bool isPaused)
{
    const QLocale locale;
    QStringList parts{tr("%1 of %2").arg(locale.toString(progress.ended()), locale.toString(progress.total()))};
    add(parts, progress.failed(), tr("failed"));
    add(parts, progress.canceled(), tr("canceled"));
    if (isPaused)
        parts.append(tr("paused"));
    else if (const auto remaining = progress.remaining(); remaining && progress.ended() < progress.total())
        parts.append(timeLeft(*remaining));
    return joined(parts);
}

QString summary(const BatchSummary &summary)
{
    QStringList parts;
    add(parts, summary.failed, tr("failed"));
    add(parts, summary.canceled, tr("canceled"));
    add(parts, summary.originalsKept, summary.originalsKept == 1 ? tr("original kept") : tr("originals kept"));
    add(parts, summary.notInFull, tr("not in full"));
    add(parts, summary.notProven, tr("not proven"));
    if (summary.files > 0) {
        parts.append(filesMade(summary));
        if (const std::optional<int> percent = summary.percentSmaller())
            parts.append(sizes(*percent));
    } else {
        add(parts, summary.done, tr("done"));
    }
    parts.append(durationText(summary.duration));
    return joined(parts);
}

QString line(const BatchWatch &batch)
{
    switch (batch.state()) {
    case BatchWatch::State::Idle: break;
    case BatchWatch::State::Running: return progress(batch.progress(), batch.isPaused());
    case BatchWatch::State::Over: return summary(batch.summary());
    }
    return {};
}

} // namespace nurv::batchWords
