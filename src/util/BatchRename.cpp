// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/BatchRename.h"

#include "app/PathNames.h"
#include "base/Log.h"
#include "base/SystemError.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "files/TextFile.h"
#include "journal/JournalFolder.h"
#include "text/PrintableText.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cerrno>

#include <limits.h>

using namespace Qt::StringLiterals;

namespace nurv::batchRename {

namespace {

/// A renaming, and the file that it is of.
struct Noted {
    Renaming renaming;
    quint64 device = 0;
    quint64 inode = 0;

    [[nodiscard]] bool isAt(const QString &path) const
    {
        const std::optional<struct stat> facts = statusOfName(path);
        return facts && facts->st_dev == device && facts->st_ino == inode;
    }
};

QString notePath()
{
    return joinPath(journalFolderPath(), u"renamed.json"_s);
}

/// Names are bytes, and need not be text.
QString encoded(const QString &path)
{
    return QString::fromLatin1(QFile::encodeName(path).toPercentEncoding("/ "));
}

QString decoded(const QJsonValue &value)
{
    return QFile::decodeName(QByteArray::fromPercentEncoding(value.toString().toLatin1()));
}

/// Returns why it could not be noted.
std::optional<QString> writeNote(const QList<Noted> &renamed)
{
    QJsonArray list;
    for (const Noted &noted : renamed) {
        list.append(QJsonObject{{u"from"_s, encoded(noted.renaming.from)},
                                {u"to"_s, encoded(noted.renaming.to)},
                                {u"device"_s, QString::number(noted.device)},
                                {u"inode"_s, QString::number(noted.inode)}});
    }
    if (!openJournalFolder(true).isOpen())
        return systemErrorText(errno);
    QString reason;
    const QByteArray json = QJsonDocument(QJsonObject{{u"renamed"_s, list}}).toJson(QJsonDocument::Compact);
    if (!writeFileAtomically(notePath(), json, &reason, LinkAtName::Replaced))
        return reason;
    return std::nullopt;
}

QList<Noted> readNote()
{
    const std::optional<QString> json = readTextFile(notePath());
    if (!json)
        return {};
    QList<Noted> renamed;
    const QJsonArray list = QJsonDocument::fromJson(json->toUtf8()).object().value(u"renamed"_s).toArray();
    for (const QJsonValue &value : list) {
        const QJsonObject object = value.toObject();
        const Noted noted{.renaming = {.from = decoded(object.value(u"from"_s)), .to = decoded(object.value(u"to"_s))},
                          .device = object.value(u"device"_s).toString().toULongLong(),
                          .inode = object.value(u"inode"_s).toString().toULongLong()};
        if (noted.renaming.from.startsWith(u'/') && folderOf(noted.renaming.from) == folderOf(noted.renaming.to))
            renamed.append(noted);
    }
    return renamed;
}

QString lineOf(const Renaming &renaming, const QString &reason)
{
    return u"%1: %2"_s.arg(renaming.from, reason);
}

bool renameFile(const Renaming &renaming, Outcome &outcome)
{
    qCInfo(utilLog).noquote() << u"renaming %1 to %2"_s.arg(renaming.from, renaming.to);
    if (!renameToFreeName(QFile::encodeName(renaming.from), QFile::encodeName(renaming.to))) {
        const QString reason = errno == EEXIST ? u"%1 exists already"_s.arg(lastPathComponent(renaming.to)) : systemErrorText(errno);
        outcome.problems.append(lineOf(renaming, reason));
        return false;
    }
    outcome.done.append(renaming);
    return true;
}

} // namespace

QList<Renaming> plan(const QStringList &paths, const QString &prefix)
{
    constexpr qsizetype kTwoDigits = 10;
    QList<Renaming> plan;
    for (const QString &path : paths) {
        const qsizetype number = plan.size() + 1;
        const QString extension = pathExtension(path);
        const QString name = u"%1%2%3"_s.arg(prefix, number < kTwoDigits ? u"0"_s : QString(), QString::number(number));
        plan.append({.from = path,
                     .to = joinPath(folderOf(path), extension.isEmpty() ? name : name + u'.' + extension)});
    }
    return plan;
}

std::optional<QString> objection(const QList<Renaming> &plan)
{
    for (const Renaming &renaming : plan) {
        const QString name = renaming.to.sliced(std::min(folderOf(renaming.from).size(), renaming.to.size()));
        if (name.sliced(name.startsWith(u'/') ? 1 : 0).contains(u'/') || name.contains(QChar(u'\0')))
            return u"A name cannot hold \"/\"."_s;
        if (QFile::encodeName(lastPathComponent(renaming.to)).size() > NAME_MAX)
            return u"The names would be longer than a name can be."_s;
    }
    return std::nullopt;
}

std::optional<QString> takenPath(const QList<Renaming> &plan)
{
    for (const Renaming &renaming : plan) {
        if (isThere(renaming.to))
            return renaming.to;
    }
    return std::nullopt;
}

QString text(const QList<Renaming> &plan)
{
    QStringList lines;
    for (const Renaming &renaming : plan)
        lines.append(u"%1 → %2"_s.arg(printableLine(lastPathComponent(renaming.from)),
                                      printableLine(lastPathComponent(renaming.to))));
    return lines.join(u'\n');
}

Outcome rename(const QList<Renaming> &plan)
{
    Outcome outcome;
    QList<Noted> noted;
    for (const Renaming &renaming : plan) {
        const std::optional<struct stat> facts = statusOfName(renaming.from);
        if (facts)
            noted.append({.renaming = renaming, .device = facts->st_dev, .inode = facts->st_ino});
    }
    // Before anything has another name, so that a kill leaves nothing that cannot be undone.
    if (const std::optional<QString> reason = writeNote(noted))
        outcome.problems.append(u"this cannot be undone, since it could not be noted: %1"_s.arg(*reason));
    for (const Renaming &renaming : plan)
        static_cast<void>(renameFile(renaming, outcome));
    return outcome;
}

bool canUndo()
{
    const QList<Noted> noted = readNote();
    return std::any_of(noted.begin(), noted.end(),
                       [](const Noted &renamed) { return renamed.isAt(renamed.renaming.to); });
}

Outcome undo()
{
    Outcome outcome;
    QList<Noted> left;
    QList<Noted> noted = readNote();
    std::reverse(noted.begin(), noted.end());
    for (const Noted &renamed : std::as_const(noted)) {
        // One that was never renamed, or was given back its name by hand.
        if (renamed.isAt(renamed.renaming.from))
            continue;
        const Renaming back{.from = renamed.renaming.to, .to = renamed.renaming.from};
        if (!renamed.isAt(back.from)) {
            outcome.problems.append(lineOf(back, isThere(back.from) ? u"it is another file than the one that was renamed"_s
                                                                    : u"it is gone"_s));
            left.prepend(renamed);
        } else if (!renameFile(back, outcome)) {
            left.prepend(renamed);
        }
    }
    if (left.isEmpty())
        QFile::remove(notePath());
    else if (const std::optional<QString> reason = writeNote(left))
        outcome.problems.append(u"the note of what was renamed could not be written: %1"_s.arg(*reason));
    return outcome;
}

} // namespace nurv::batchRename
