// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tagging/CueSheetTagImporter.h"

#include "app/LinesControl.h"
#include "app/PathNames.h"
#include "app/UserPrompts.h"
#include "base/Log.h"
#include "base/NotificationCenter.h"
#include "files/TextFile.h"
#include "text/PrintableText.h"
#include "text/TextNumbers.h"

#include <QStringView>

#include <functional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

QStringView without(QStringView text, QStringView characters)
{
    while (!text.isEmpty() && characters.contains(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && characters.contains(text.back()))
        text.chop(1);
    return text;
}

/// What follows the word: without blanks at its ends, then without quotes there.
QString valueOf(const QString &line, QStringView word)
{
    return without(without(QStringView(line).sliced(word.size()), u" \t"), u"\"").toString();
}

} // namespace

CueSheetTagImporter::Names CueSheetTagImporter::namesIn(const QString &text)
{
    Names names;
    bool isInTracks = false;
    const QString lines = withLineFeeds(text);
    for (const QStringView piece : QStringView(lines).split(u'\n')) {
        const QString line = trimWhitespaceAndNewlines(piece);
        names.trackLines += line.startsWith(u"TRACK "_s) ? 1 : 0;
        if (isInTracks) {
            if (line.startsWith(u"TITLE "_s))
                names.titles.append(valueOf(line, u"TITLE"));
        } else if (line.startsWith(u"TRACK 01 AUDIO"_s)) {
            isInTracks = true;
        } else if (line.startsWith(u"TITLE"_s)) {
            names.album.setAlbumText(valueOf(line, u"TITLE"));
        } else if (line.startsWith(u"PERFORMER"_s)) {
            names.album.setArtistText(valueOf(line, u"PERFORMER"));
        }
    }
    return names;
}

std::optional<CueSheetTagImporter::Names> CueSheetTagImporter::read(const QString &path, QString *problem)
{
    QString reason;
    const std::optional<QString> text = readTextFile(path, &reason);
    if (text && !text->isEmpty())
        return namesIn(*text);
    if (!text) {
        logUnreadText(reason);
    } else {
        reason = u"It is empty."_s;
    }
    qCWarning(unreadTextLog).noquote() << u"error "_s + reason;
    qCWarning(unreadTextLog).noquote() << u"Could not open file...%1 %2"_s.arg(path, reason);
    if (problem != nullptr)
        *problem = reason;
    return std::nullopt;
}

std::optional<QString> CueSheetTagImporter::chooseCueFile()
{
    return m_prompts.chooseFile({.title = u"Choose CUE file"_s, .extensions = {u"cue"_s}, .option = u"cue"_s});
}

std::optional<TagsObject> CueSheetTagImporter::loadTagsFromCueSheet()
{
    const std::optional<QString> path = chooseCueFile();
    if (!path)
        return std::nullopt;
    QString problem;
    std::optional<Names> names;
    // It may lie on a disk that is slow to answer.
    const bool isWanted = m_prompts.waitFor(u"Reading the cue sheet…"_s, [&](const std::function<bool()> &) {
        names = read(*path, &problem);
    });
    if (!isWanted)
        return std::nullopt;
    if (!names) {
        m_prompts.ask({.title = u"The cue sheet “%1” could not be read."_s.arg(printableLine(lastPathComponent(*path))),
                       .message = problem,
                       .buttons = {u"OK"_s}});
        return std::nullopt;
    }
    NotificationCenter::instance().post(QString::fromUtf16(NURVTrackNamesEnteredNotification), names->titles,
                                        {{u"source"_s, u"CueSheetTagImporter"_s}});
    return names->album;
}

} // namespace nurv
