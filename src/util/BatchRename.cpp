// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/BatchRename.h"

#include "app/PathNames.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "files/TextFile.h"
#include "journal/JournalFolder.h"
#include "originals/OutputClaim.h"
#include "text/PrintableText.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

#include <limits.h>

using namespace Qt::StringLiterals;

namespace nurv::batchRename {

namespace {

constexpr qint64 kMostNoteBytes = 64 * 1024 * 1024;

qint64 nanosecondsOf(const timespec &time)
{
    return static_cast<qint64>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

/// A renaming, and the file that it is of.
struct Noted {
    Renaming renaming;
    quint64 device = 0;
    quint64 inode = 0;
    qint64 bytes = 0;
    qint64 modifiedNs = 0;

    /// A disk that was plugged in again has another number, and some file systems number their files anew; a file that
    /// was written since has another time.
    [[nodiscard]] bool isAt(const QString &path) const
    {
        const std::optional<struct stat> facts = statusOfName(path);
        return facts
               && ((facts->st_dev == device && facts->st_ino == inode)
                   || (facts->st_size == bytes && nanosecondsOf(facts->st_mtim) == modifiedNs));
    }
};

Noted notedOf(const Renaming &renaming, const struct stat &facts)
{
    return {.renaming = renaming,
            .device = facts.st_dev,
            .inode = facts.st_ino,
            .bytes = facts.st_size,
            .modifiedNs = nanosecondsOf(facts.st_mtim)};
}

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

QByteArray noteOf(const QList<Noted> &renamed)
{
    QJsonArray list;
    for (const Noted &noted : renamed) {
        list.append(QJsonObject{{u"from"_s, encoded(noted.renaming.from)},
                                {u"to"_s, encoded(noted.renaming.to)},
                                {u"device"_s, QString::number(noted.device)},
                                {u"inode"_s, QString::number(noted.inode)},
                                {u"bytes"_s, QString::number(noted.bytes)},
                                {u"modified"_s, QString::number(noted.modifiedNs)}});
    }
    return QJsonDocument(QJsonObject{{u"renamed"_s, list}}).toJson(QJsonDocument::Compact);
}

/// Returns why it could not be noted.
std::optional<QString> writeNote(const QByteArray &json)
{
    if (!openJournalFolder(true).isOpen())
        return systemErrorText(errno);
    QString reason;
    if (!writeFileAtomically(notePath(), json, &reason, LinkAtName::Replaced))
        return reason;
    return std::nullopt;
}

/// The bytes of the note; empty: there is none. Throws NurvFailure.
QByteArray readNote()
{
    if (!isThere(notePath()))
        return {};
    QFile file(notePath());
    if (!isPlainFile(notePath()) || !file.open(QIODevice::ReadOnly))
        throw NurvFailure(u"it cannot be read"_s);
    if (file.size() > kMostNoteBytes)
        throw NurvFailure(u"it is no such note"_s);
    return file.readAll();
}

/// Throws NurvFailure.
QList<Noted> renamedIn(const QByteArray &json)
{
    if (json.isEmpty())
        return {};
    const QJsonValue list = QJsonDocument::fromJson(json).object().value(u"renamed"_s);
    if (!list.isArray())
        throw NurvFailure(u"it is no such note"_s);
    QList<Noted> renamed;
    for (const QJsonValue &value : list.toArray()) {
        const QJsonObject object = value.toObject();
        const Noted noted{.renaming = {.from = decoded(object.value(u"from"_s)), .to = decoded(object.value(u"to"_s))},
                          .device = object.value(u"device"_s).toString().toULongLong(),
                          .inode = object.value(u"inode"_s).toString().toULongLong(),
                          .bytes = object.value(u"bytes"_s).toString().toLongLong(),
                          .modifiedNs = object.value(u"modified"_s).toString().toLongLong()};
        if (!noted.renaming.from.startsWith(u'/') || folderOf(noted.renaming.from) != folderOf(noted.renaming.to))
            throw NurvFailure(u"it is no such note"_s);
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

/// No job works on a link's own name.
bool takeForRenaming(OutputClaim &claim, const QString &path)
{
    return isLink(path) || !claim.take(path, path, nullptr);
}

bool renameBack(const Renaming &renaming, Outcome &outcome)
{
    OutputClaim claim;
    if (takeForRenaming(claim, renaming.from))
        return renameFile(renaming, outcome);
    outcome.problems.append(lineOf(renaming, u"a job works on it"_s));
    return false;
}

/// After a renaming that has renamed nothing: what can be undone is the one before it.
void restoreNote(const QByteArray &previous)
{
    if (previous.isEmpty())
        QFile::remove(notePath());
    else if (const std::optional<QString> reason = writeNote(previous))
        qCWarning(utilLog).noquote() << "Not written:" << notePath() << ':' << *reason;
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

Outcome rename(const QList<Renaming> &plan, const std::function<bool()> &isUnwanted)
{
    Outcome outcome;
    const auto refuse = [&outcome](const QString &reason) {
        outcome.problems.append(reason);
        outcome.isRefused = true;
        return outcome;
    };
    std::vector<std::unique_ptr<OutputClaim>> claims;
    QList<Noted> noted;
    for (const Renaming &renaming : plan) {
        auto &claim = claims.emplace_back(std::make_unique<OutputClaim>());
        if (!takeForRenaming(*claim, renaming.from))
            return refuse(lineOf(renaming, u"a job works on it, so nothing was renamed"_s));
        if (const std::optional<struct stat> facts = statusOfName(renaming.from))
            noted.append(notedOf(renaming, *facts));
    }
    QByteArray previous;
    try {
        previous = readNote();
    } catch (const NurvFailure &failure) {
        qCWarning(utilLog).noquote() << "Replaced:" << notePath() << ':' << failure.reason();
    }
    // Before anything has another name, so that a kill leaves nothing that cannot be undone.
    if (const std::optional<QString> reason = writeNote(noteOf(noted)))
        return refuse(
            u"nothing was renamed, since it could not be noted for an undo: %1: %2"_s.arg(notePath(), *reason));
    for (const Renaming &renaming : plan) {
        if (isUnwanted && isUnwanted()) {
            outcome.leftCount = plan.size() - outcome.done.size() - outcome.problems.size();
            break;
        }
        static_cast<void>(renameFile(renaming, outcome));
    }
    if (outcome.done.isEmpty())
        restoreNote(previous);
    return outcome;
}

bool canUndo()
{
    return isThere(notePath());
}

Outcome undo(const std::function<bool()> &isUnwanted)
{
    Outcome outcome;
    QList<Noted> noted;
    try {
        noted = renamedIn(readNote());
    } catch (const NurvFailure &failure) {
        outcome.problems.append(
            u"the note of what was renamed, %1, is of no use: %2"_s.arg(notePath(), failure.reason()));
        outcome.isRefused = true;
        return outcome;
    }
    QList<Noted> left;
    std::reverse(noted.begin(), noted.end());
    for (const Noted &renamed : std::as_const(noted)) {
        if (outcome.leftCount > 0 || (isUnwanted && isUnwanted())) {
            ++outcome.leftCount;
            left.prepend(renamed);
            continue;
        }
        // One that was never renamed, or was given back its name by hand.
        if (renamed.isAt(renamed.renaming.from))
            continue;
        const Renaming back{.from = renamed.renaming.to, .to = renamed.renaming.from};
        if (!renamed.isAt(back.from)) {
            outcome.problems.append(
                lineOf(back, isThere(back.from) ? u"it is no longer the file that was renamed"_s : u"it is gone"_s));
            left.prepend(renamed);
        } else if (!renameBack(back, outcome)) {
            left.prepend(renamed);
        }
    }
    if (left.isEmpty())
        QFile::remove(notePath());
    else if (const std::optional<QString> reason = writeNote(noteOf(left)))
        outcome.problems.append(u"the note of what was renamed could not be written: %1"_s.arg(*reason));
    return outcome;
}

} // namespace nurv::batchRename
