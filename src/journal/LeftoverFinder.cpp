// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "journal/LeftoverFinder.h"

#include "app/TemporaryNames.h"
#include "files/FolderStream.h"
#include "journal/JournalFile.h"
#include "journal/OutputCompleteness.h"

#include <QList>
#include <QString>

#include <cerrno>
#include <ctime>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;
/// FAT keeps times to two seconds.
constexpr std::int64_t kClockSlackNs = 2 * kSecondNs;
/// How long after its mark a program may come to make its output.
constexpr std::int64_t kStartLimitNs = 10 * kSecondNs;
/// What another program has left alone for so long it does not work on.
constexpr std::int64_t kQuietNs = 60 * kSecondNs;

std::optional<struct stat> statusOf(const QByteArray &path)
{
    struct stat facts = {};
    return ::lstat(path.constData(), &facts) == 0 ? std::optional(facts) : std::nullopt;
}

/// When the file came to be, since 1970; nothing where the file system does not tell.
std::optional<std::int64_t> birthOf(const QByteArray &path, const struct stat &expected)
{
    struct statx facts = {};
    if (::statx(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_INO, &facts) != 0
        || (facts.stx_mask & STATX_BTIME) == 0 || facts.stx_ino != expected.st_ino) {
        return std::nullopt;
    }
    return nanoseconds({.tv_sec = facts.stx_btime.tv_sec, .tv_nsec = static_cast<long>(facts.stx_btime.tv_nsec)});
}

/// When the system was started, since 1970.
std::int64_t bootTime()
{
    timespec now{};
    timespec sinceBoot{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    ::clock_gettime(CLOCK_BOOTTIME, &sinceBoot);
    return nanoseconds(now) - nanoseconds(sinceBoot);
}

QByteArray folderOf(const QByteArray &path)
{
    return path.left(path.lastIndexOf('/'));
}

TemporaryKind kindOf(const QByteArray &path)
{
    return temporaryKind(QString::fromUtf8(path.mid(path.lastIndexOf('/') + 1)));
}

/// "a/song.m4a" for "a/song-temp-57809.m4a"; empty for anything else.
QByteArray targetOfTagEditorFile(const QByteArray &path)
{
    constexpr QByteArrayView kMark = "-temp-";
    const qsizetype point = path.lastIndexOf('.');
    const qsizetype mark = point < 0 ? -1 : path.lastIndexOf(kMark, point);
    if (mark < 0 || mark + kMark.size() == point)
        return {};
    for (qsizetype at = mark + kMark.size(); at < point; ++at) {
        if (path[at] < '0' || path[at] > '9')
            return {};
    }
    return path.first(mark) + path.sliced(point);
}

Leftover leave(Leftover::Kind kind, const QString &reason)
{
    return {.kind = kind, .plan = Leftover::Plan::Leave, .path = {}, .output = {}, .reason = reason, .identity = {}};
}

Leftover waitFor(Leftover::Kind kind)
{
    return {.kind = kind,
            .plan = Leftover::Plan::Wait,
            .path = {},
            .output = {},
            .reason = u"a program is still at work on it"_s,
            .identity = {}};
}

Leftover removal(Leftover::Kind kind)
{
    return {.kind = kind, .plan = Leftover::Plan::Remove, .path = {}, .output = {}, .reason = {}, .identity = {}};
}

} // namespace

LeftoverFinder::LeftoverFinder(const JournalContents &contents, const RunningPrograms &programs, QSet<QByteArray> &seen)
    : m_contents(contents), m_programs(programs), m_seen(seen),
      m_isSameBoot(!contents.boot.isEmpty() && contents.boot == bootIdentifier()),
      m_areMarksExact(m_isSameBoot && contents.isWhole), m_bootedNs(bootTime()), m_nowNs(fileClockNow())
{
}

UnfinishedRun LeftoverFinder::find()
{
    m_run.beganNs = m_contents.beganNs;
    m_run.runningPrograms = m_isSameBoot ? static_cast<int>(m_programs.startedBy(m_contents.processMark).size()) : 0;
    for (const PlannedOutput &planned : m_contents.outputs)
        lookAtOutput(planned);
    for (const QByteArray &path : m_contents.temporaries)
        lookAtNotedTemporary(path);
    for (const QByteArray &folder : std::as_const(m_folders))
        lookAtFolder(folder);
    return m_run;
}

void LeftoverFinder::lookAtOutput(const PlannedOutput &planned)
{
    if (planned.hasEnded && !planned.hasOpenAside())
        return;
    const Facts present = statusOf(planned.output);
    // Before the output itself is begun, what goes before it may be.
    if (!planned.hasEnded)
        m_folders.insert(folderOf(planned.output));
    if (!planned.hasEnded && (planned.begunNs || !m_areMarksExact)) {
        m_begunOutputs.insert(planned.output, planned.begunNs.value_or(m_contents.beganNs));
        lookAtScratchFiles(planned);
    }
    if (lookAtAside(planned, present) || planned.hasEnded)
        return;
    if (present && !isAsPlanned(planned, *present))
        lookAtMadeOutput(planned, *present);
    noteSource(planned, present);
}

/// Whether the user's file stands under the name as it did before.
bool LeftoverFinder::isAsPlanned(const PlannedOutput &planned, const struct stat &present) const
{
    return planned.formerOutput.file && planned.formerOutput.file->isSameAs(FileIdentity::of(present), m_isSameBoot);
}

/// An output that the process has made or begun, or that somebody else has put there.
void LeftoverFinder::lookAtMadeOutput(const PlannedOutput &planned, const struct stat &present)
{
    using enum Leftover::Kind;
    if (!planned.begunNs && (m_areMarksExact || !planned.formerOutput.isFree()))
        return;
    if (!planned.begunNs)
        add(leave(Output, u"nobody noted whether it was finished"_s), planned.output, present);
    else if (!planned.aside.isEmpty())
        add(leave(Output, u"it may be complete"_s), planned.output, present);
    else if (!planned.formerOutput.isFree())
        add(leave(Output, u"something stood there before, which it may have replaced"_s), planned.output, present);
    else
        add(verdictOn(planned, present), planned.output, present);
}

/// Returns whether the user's file was found where it waits, and all is said.
bool LeftoverFinder::lookAtAside(const PlannedOutput &planned, const Facts &present)
{
    using enum Leftover::Kind;
    if (!planned.hasOpenAside())
        return false;
    const Facts aside = statusOf(planned.aside);
    if (!aside)
        return false;
    Leftover leftover = leave(Aside, {});
    leftover.output = planned.output;
    const std::optional<FileIdentity> &former = planned.formerOutput.file;
    if (!isOurs(*aside) || !former || !former->isSameAs(FileIdentity::of(*aside), m_isSameBoot)) {
        leftover.reason = u"it is no longer what was moved there"_s;
        add(leftover, planned.aside, *aside);
        return false;
    }
    Leftover output = removal(Output);
    if (present)
        output = planned.hasEnded ? leave(Output, u"it was finished"_s) : verdictOn(planned, *present);
    if (output.plan == Leftover::Plan::Remove) {
        leftover.plan = Leftover::Plan::PutBack;
        if (present)
            add(output, planned.output, *present);
    } else {
        leftover.plan = output.plan;
        leftover.reason = u"another file stands in its place: %1"_s.arg(output.reason);
    }
    add(leftover, planned.aside, *aside);
    if (!planned.hasEnded && leftover.plan == Leftover::Plan::PutBack)
        noteSource(planned, std::nullopt);
    return true;
}

Leftover LeftoverFinder::verdictOn(const PlannedOutput &planned, const struct stat &present) const
{
    using enum Leftover::Kind;
    if (!S_ISREG(present.st_mode))
        return leave(Output, u"it is no regular file"_s);
    if (!isOurs(present))
        return leave(Output, u"it belongs to somebody else"_s);
    // Numbers of devices do not outlive the system.
    if (m_isSameBoot && planned.folder.isKnown() && planned.folder != FolderMark::of(planned.output))
        return leave(Output, u"its folder may be another one than the one that it was begun in"_s);
    if (m_programs.isOpenForWriting(present))
        return waitFor(Output);
    if (!planned.begunNs)
        return leave(Output, u"nobody noted whether it was finished"_s);
    if (nanoseconds(present.st_ctim) < *planned.begunNs - kClockSlackNs)
        return leave(Output, u"it is older than the job that was to make it"_s);
    const NameState source = NameState::of(planned.source, true);
    if (!source.file)
        return leave(Output, u"its source is not there"_s);
    if (!planned.formerSource.file || !planned.formerSource.file->isSameAs(*source.file, m_isSameBoot))
        return leave(Output, u"its source is not what it was"_s);
    if (source.file->inode == present.st_ino && source.file->device == present.st_dev)
        return leave(Output, u"it is its source"_s);
    // What was made under the name later, by hand, is not what the mark tells of.
    const std::optional<std::int64_t> birth = birthOf(planned.output, present);
    const bool isOfThisJob =
        birth && *birth >= *planned.begunNs - kClockSlackNs && *birth <= *planned.begunNs + kStartLimitNs;
    if (birth && !isOfThisJob && m_areMarksExact)
        return leave(Output, u"it came to be at another time than the one that was begun"_s);
    if ((m_areMarksExact && isOfThisJob) || isKnownToBeIncomplete(planned.output, planned.source))
        return removal(Output);
    return leave(Output, u"it may be complete"_s);
}

/// What flac and metaflac work on beside an output.
void LeftoverFinder::lookAtScratchFiles(const PlannedOutput &planned)
{
    for (const QStringView suffix : {kFlacScratchSuffix, kMetaflacScratchSuffix}) {
        const QByteArray path = planned.output + suffix.toUtf8();
        const Facts facts = statusOf(path);
        if (!facts || !S_ISREG(facts->st_mode) || !isOurs(*facts)
            || nanoseconds(facts->st_ctim) < planned.begunNs.value_or(m_contents.beganNs)) {
            continue;
        }
        add(m_programs.isOpen(*facts) ? waitFor(Leftover::Kind::Temporary) : removal(Leftover::Kind::Temporary), path,
            *facts);
    }
}

void LeftoverFinder::lookAtNotedTemporary(const QByteArray &path)
{
    using enum Leftover::Kind;
    const Facts facts = statusOf(path);
    // Its name is part of the proof: no line of a journal makes anything else go.
    if (!facts || kindOf(path) == TemporaryKind::None || kindOf(path) == TemporaryKind::Kept)
        return;
    if (!S_ISREG(facts->st_mode) || !isOurs(*facts) || nanoseconds(facts->st_ctim) < m_contents.beganNs - kClockSlackNs)
        add(leave(Temporary, u"it is not what was noted"_s), path, *facts);
    else
        add(m_programs.isOpen(*facts) ? waitFor(Temporary) : removal(Temporary), path, *facts);
}

/// What bundled programs were making in the folder of an output. Nobody noted it, but the
/// names are theirs.
void LeftoverFinder::lookAtFolder(const QByteArray &folder)
{
    const FolderStream entries(::opendir((folder + '/').constData()));
    while (const dirent *const entry = entries ? ::readdir(entries.get()) : nullptr) {
        const QByteArray path = folder + '/' + entry->d_name;
        const TemporaryKind kind = kindOf(path);
        lookAtTagEditorFile(path);
        if (kind == TemporaryKind::Part || kind == TemporaryKind::PrivateFolder || kind == TemporaryKind::Stage)
            lookAtFolderEntry(path, statusOf(path));
    }
}

/// What AtomicParsley works on beside an output.
void LeftoverFinder::lookAtTagEditorFile(const QByteArray &path)
{
    const auto begun = m_begunOutputs.constFind(targetOfTagEditorFile(path));
    const Facts facts = begun != m_begunOutputs.cend() ? statusOf(path) : std::nullopt;
    if (!facts || !S_ISREG(facts->st_mode) || !isOurs(*facts) || nanoseconds(facts->st_ctim) < *begun)
        return;
    add(m_programs.isOpen(*facts) ? waitFor(Leftover::Kind::Temporary) : removal(Leftover::Kind::Temporary), path,
        *facts);
}

void LeftoverFinder::lookAtFolderEntry(const QByteArray &path, Facts facts)
{
    using enum Leftover::Kind;
    const bool isFolder = kindOf(path) == TemporaryKind::PrivateFolder;
    // One that is noted in another journal is that one's; between its making and its note it is empty.
    if (kindOf(path) == TemporaryKind::Stage && m_isSameBoot && facts && facts->st_size > 0)
        return;
    if (!facts || !isOurs(*facts) || (isFolder ? !S_ISDIR(facts->st_mode) : !S_ISREG(facts->st_mode)))
        return;
    const std::int64_t changed = nanoseconds(facts->st_ctim);
    if (changed < m_contents.beganNs || (!m_isSameBoot && changed >= m_bootedNs))
        return;
    const bool isInUse = isOpenSomewhere(path, *facts) || mayBeOfAnotherRun(path, *facts);
    add(isInUse ? waitFor(Temporary) : removal(Temporary), path, *facts);
}

bool LeftoverFinder::isOpenSomewhere(const QByteArray &path, const struct stat &file) const
{
    if (!S_ISDIR(file.st_mode))
        return m_programs.isOpen(file);
    const FolderStream entries(::opendir(path.constData()));
    while (const dirent *const entry = entries ? ::readdir(entries.get()) : nullptr) {
        const Facts facts = statusOf(path + '/' + entry->d_name);
        if (facts && m_programs.isOpen(*facts))
            return true;
    }
    return entries == nullptr;
}

/// Between the last byte and the new name, a file of a program that runs is open nowhere.
bool LeftoverFinder::mayBeOfAnotherRun(const QByteArray &path, const struct stat &file) const
{
    return nanoseconds(file.st_ctim) > m_nowNs - kQuietNs && m_programs.mayWorkIn(folderOf(path));
}

/// The source of an output that is not there, or soon will not be.
void LeftoverFinder::noteSource(const PlannedOutput &planned, const Facts &present)
{
    const bool isLeft = present && !isAsPlanned(planned, *present)
                        && (m_run.leftovers.isEmpty() || m_run.leftovers.last().path != planned.output
                            || m_run.leftovers.last().plan != Leftover::Plan::Remove);
    struct stat source = {};
    if (!isLeft && ::stat(planned.source.constData(), &source) == 0 && S_ISREG(source.st_mode))
        m_run.sources.append({.source = planned.source, .output = planned.output});
}

bool LeftoverFinder::isOurs(const struct stat &file) const
{
    return file.st_uid == ::geteuid();
}

void LeftoverFinder::add(Leftover leftover, const QByteArray &path, const struct stat &file)
{
    if (m_seen.contains(path))
        return;
    m_seen.insert(path);
    leftover.path = path;
    leftover.identity = FileIdentity::of(file);
    m_run.leftovers.append(leftover);
}

} // namespace nurv
