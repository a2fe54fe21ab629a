// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SplitTitles.h"

#include "app/LinesControl.h"
#include "base/Log.h"
#include "programs/ShntoolModes.h"
#include "text/TextNumbers.h"

#include <QFile>

#include <limits.h>

using namespace Qt::StringLiterals;

namespace nurv::splitTitles {

namespace {

QString zeroOf(int track)
{
    return track < 10 ? u"0"_s : QString();
}

QString defaultName(int track, const QString &format)
{
    return u"split-track%1%2.%3"_s.arg(zeroOf(track), QString::number(track), format);
}

/// "03 Song.flac" of the line "TITLE "Song"".
QString nameOf(const QString &line, int track, const QString &format)
{
    QString title = trimWhitespaceAndNewlines(QStringView(line).sliced(5));
    if (title.startsWith(u'"'))
        title.remove(0, 1);
    if (title.endsWith(u'"'))
        title.chop(1);
    return u"%1%2 %3.%4"_s.arg(zeroOf(track), QString::number(track), title, format);
}

} // namespace

QMap<QString, QString> read(const QString &text, const QString &format)
{
    QMap<QString, QString> names;
    int track = 0;
    QString current;
    const auto keep = [&] {
        if (current.isEmpty())
            return;
        const QString key = defaultName(track, format);
        qCDebug(shntoolLog).noquote() << "set title:" << current << "for key:" << key;
        names.insert(key, current);
    };
    const QString lines = withLineFeeds(text);
    for (const QStringView piece : QStringView(lines).split(u'\n')) {
        const QString line = trimWhitespaceAndNewlines(piece);
        if (line.startsWith(u"TRACK"_s)) {
            if (track > 0)
                keep();
            // No piece has a later number.
            if (track == shntool::kMostPieces)
                return names;
            ++track;
            current = defaultName(track, format);
        } else if (line.startsWith(u"TITLE"_s)) {
            current = nameOf(line, track, format);
        }
    }
    keep();
    return names;
}

bool canBeName(const QString &name)
{
    return !name.isEmpty() && !name.contains(u'/') && !name.contains(QChar(u'\0'))
           && QFile::encodeName(name).size() <= NAME_MAX;
}

} // namespace nurv::splitTitles
