// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TrackNamesFile.h"

#include "app/TrackNames.h"
#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileStatus.h"
#include "files/TextFile.h"

#include <QStringView>

#include <cerrno>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr off_t kLargestFile = 50 * 1024 * 1024;
// A window takes minutes to lay out a line of megabytes, and gigabytes for millions of lines.
constexpr qsizetype kMostNames = 100'000;
constexpr qsizetype kLongestName = 10'000;

/// What speaks against reading it at all; empty when nothing does.
QString obstacleOf(const QString &path)
{
    const std::optional<struct stat> facts = statusOf(path);
    if (!facts)
        return errno == ENOENT ? u"There is no such file."_s : systemErrorText(errno) + u'.';
    if (S_ISDIR(facts->st_mode))
        return u"It is a folder."_s;
    if (!S_ISREG(facts->st_mode))
        return u"It is no regular file."_s;
    return facts->st_size > kLargestFile ? u"It is larger than 50 MB."_s : QString();
}

/// Why nobody can work with them; empty when somebody can.
QString objectionTo(const QString &names)
{
    if (names.count(u'\n') > kMostNames)
        return u"It has more than 100,000 track names."_s;
    for (const QStringView name : QStringView(names).tokenize(u'\n')) {
        if (name.size() > kLongestName)
            return u"One of its track names has more than 10,000 characters."_s;
    }
    return {};
}

} // namespace

TrackNamesFile readTrackNamesFile(const QString &path)
{
    QString reason = obstacleOf(path);
    std::optional<QString> text;
    if (reason.isEmpty())
        text = readTextFile(path, &reason);
    if (!text) {
        logUnreadText(reason);
    } else if (text->isEmpty()) {
        reason = u"It is empty."_s;
    } else {
        QString names = trackNamesOfSetList(*text, kMostNames + 1);
        reason = objectionTo(names);
        if (reason.isEmpty())
            return {.names = std::move(names)};
    }
    qCWarning(unreadTextLog).noquote() << u"Could not open file...%1 %2 %3"_s.arg(path, reason, reason);
    return {.names = std::nullopt, .problem = reason};
}

} // namespace nurv
