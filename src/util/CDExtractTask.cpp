// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/CDExtractTask.h"

#include "app/PathNames.h"
#include "base/SystemError.h"
#include "base/Version.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "files/TextFile.h"
#include "journal/OutputJournal.h"
#include "programs/ExternalPrograms.h"
#include "samples/SoundLength.h"
#include "text/TextNumbers.h"
#include "text/VisibleText.h"
#include "util/CompactDisc.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// In bytes: a file's name has 255, of which ".log.txt" takes 8.
constexpr qsizetype kLongestDiscName = 200;

/// The name as part of a file's name.
QString safeDiscName(const QString &name)
{
    QString safe;
    qsizetype bytes = 0;
    for (const char32_t character : name.toUcs4()) {
        const bool isUnsafe = character == U'/' || isObeyedCharacter(character);
        const QString text = isUnsafe ? u"_"_s : QString::fromUcs4(&character, 1);
        bytes += text.toUtf8().size();
        if (bytes > kLongestDiscName)
            break;
        safe += text;
    }
    return safe.isEmpty() ? u"CD"_s : safe;
}

} // namespace

CDExtractTask::CDExtractTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments)
    : NURVAsyncNSTask(queue, launchPath, arguments), m_discName(safeDiscName({}))
{
}

CDExtractTask::~CDExtractTask() = default;

void CDExtractTask::setFileNames(const QStringList &paths)
{
    m_fileNames = reNumberCdTracks(paths);
    m_currentFileIndex = 0;
    m_pathOfName.clear();
    for (const QString &path : paths)
        m_pathOfName.insert(reNumberedCdTrack(path), path);
}

void CDExtractTask::setDiscName(const QString &name)
{
    m_discName = safeDiscName(name);
}

int CDExtractTask::sourceCount() const
{
    const std::optional<cdda2wav::TrackRange> range = cdda2wav::trackRange(m_trackString);
    return range ? range->count() : 0;
}

QString CDExtractTask::pathOf(const QString &name) const
{
    return joinPath(directory().isEmpty() ? QDir::currentPath() : directory(), name);
}

QString CDExtractTask::logPath() const
{
    return pathOf(m_discName + u".log.txt"_s);
}

void CDExtractTask::startTask()
{
    if (const std::optional<QString> obstacle = prepare()) {
        m_claims.clear();
        m_outputs.clear();
        becomeActive();
        ownOutcome().problem = *obstacle;
        failToStart(*obstacle + u'\n');
        return;
    }
    beginJournal();
    NURVAsyncNSTask::startTask();
}

std::optional<QString> CDExtractTask::prepare()
{
    const std::optional<cdda2wav::TrackRange> range = cdda2wav::trackRange(m_trackString);
    if (!range || range->count() > m_fileNames.size())
        return u"%1 is no range of the tracks in the list"_s.arg(m_trackString);

    // A single track is named, whatever makes it; one file of several stays what it is called.
    const bool isJoined = m_oneTrack && !range->isSingle();
    for (int place = 0; place < range->count(); ++place) {
        const QString &name = m_fileNames.at(place);
        if (cdTrackNumber(name) != range->first + place)
            return u"%1 is not the file of track %2"_s.arg(name, QString::number(range->first + place));
        Output output{.madeNames = {},
                      .name = pathOf(nameWithoutExtension(name) + u".wav"_s),
                      .source = m_pathOfName.value(name)};
        for (const QString &made : cdda2wav::trackFileNames(*range, range->first + place))
            output.madeNames.append(pathOf(made));
        m_outputs.push_back(output);
    }
    const QStringList written = cdda2wav::writtenNames(*range, m_oneTrack);
    for (const QString &name : written) {
        if (const std::optional<QString> obstacle = claim(pathOf(name), m_outputs.front().source))
            return obstacle;
    }
    for (const Output &output : m_outputs) {
        if (isJoined)
            break;
        if (const std::optional<QString> obstacle = claim(output.name, output.source))
            return obstacle;
    }
    if (isLink(logPath()))
        return u"the name %1 of its log is that of a link"_s.arg(lastPathComponent(logPath()));
    auto &log = m_claims.emplace_back(std::make_unique<OutputClaim>());
    return log->take(logPath(), m_outputs.front().source, nullptr);
}

std::optional<QString> CDExtractTask::claim(const QString &path, const QString &source)
{
    // Before the look at the name, so that what another job makes is not taken for somebody's file.
    auto &claim = m_claims.emplace_back(std::make_unique<OutputClaim>());
    if (std::optional<QString> refusal = claim->take(path, source, nullptr))
        return refusal;
    if (isLink(path))
        return u"its output name %1 is a link"_s.arg(lastPathComponent(path));
    if (isThere(path))
        return u"%1 is there already"_s.arg(lastPathComponent(path));
    return std::nullopt;
}

/// Nobody sees when the program begins with each track.
void CDExtractTask::beginJournal()
{
    std::vector<OutputJournal::Planned> planned;
    if (m_oneTrack)
        planned.push_back({pathOf(cdda2wav::fileName()), m_outputs.front().source});
    for (const Output &output : m_outputs) {
        for (const QString &made : output.madeNames) {
            if (!m_oneTrack)
                planned.push_back({made, output.source});
        }
    }
    m_journal = OutputJournal::begin(planned);
    for (const OutputJournal::Planned &output : planned) {
        m_journal->markBegun(output.output);
        m_begunOutputs.append(output.output);
    }
}

void CDExtractTask::processTaskOutput(const QString &chunk)
{
    showMainLine(nameWithoutExtension(m_fileNames.value(m_currentFileIndex)));
    appendResults(cdda2wav::stripPercent(chunk));
    m_logOutput += chunk;
    const cdda2wav::OutputReader::Reading reading = m_reader.read(chunk);
    for (const QString &percentage : reading.percentages) {
        setTopTextFieldString(u"Extracting CD Track: %1%"_s.arg(percentage));
        setProgressIndicatorValue(std::clamp(leadingNumber(percentage), 0.0, 100.0));
        updateStatus();
    }
    for (int ended = 0; ended < reading.endedTracks; ++ended)
        trackEnded();
    m_currentFileIndex =
        std::min<qsizetype>(m_currentFileIndex + reading.endedTracks, std::max<qsizetype>(m_fileNames.size() - 1, 0));
}

/// Whatever disc lies in the drive when the journal is read, this track is whole.
void CDExtractTask::trackEnded()
{
    const auto place = static_cast<std::size_t>(m_endedTracks++);
    if (m_oneTrack || place >= m_outputs.size())
        return;
    for (const QString &made : m_outputs[place].madeNames)
        m_journal->markEnded(made);
}

/// What the program has made it has finished, or never will.
void CDExtractTask::completeStop()
{
    for (const QString &output : std::as_const(m_begunOutputs))
        m_journal->markEnded(output);
    NURVAsyncNSTask::completeStop();
}

bool CDExtractTask::endedWell() const
{
    const std::optional<ChildExit> exit = exitState();
    return exit && exit->succeeded();
}

void CDExtractTask::cleanup()
{
    if (!hasRun())
        return;
    if (!endedWell())
        ownOutcome().problem = whyItFailed();
    startIndeterminateProgressBar();
    showStatus(u"Renaming CD Tracks"_s);
    nameOutputs();
    showMainLine(u"Writing Log File"_s);
    showStatus({});
    writeLog();
}

/// The report has it already.
QString CDExtractTask::whyItFailed() const
{
    const ChildExit exit = exitState().value_or(ChildExit());
    if (exit.signal != 0)
        return killedProgramText(cdda2wav::program().name, exit.signal, title()).section(u'\n', 0, 0);
    const QString told = cdda2wav::lastLine(m_logOutput);
    return told.isEmpty() ? u"cdda2wav ended with status %1"_s.arg(exit.status) : told;
}

void CDExtractTask::nameOutputs()
{
    QStringList made;
    for (std::size_t place = 0; place < m_outputs.size(); ++place) {
        const bool isWhole = endedWell() || place < static_cast<std::size_t>(m_endedTracks);
        if (!isWhole && removeUnwanted(m_outputs[place].madeNames))
            continue;
        const QString path = nameOutput(m_outputs[place]);
        if (path.isEmpty())
            continue;
        made.append(path);
        checkSound(path);
        if (!isWhole)
            tell(u"%1 may not be read to its end"_s.arg(lastPathComponent(path)));
    }
    const QString joined = pathOf(cdda2wav::fileName());
    if (m_oneTrack && m_outputs.size() > 1) {
        if (!endedWell() && removeUnwanted({joined})) {
            // Nothing is left to look at.
        } else if (isPlainFile(joined)) {
            made.append(joined);
            checkSound(joined);
        } else if (endedWell()) {
            noteFailure(u"cdda2wav made no %1"_s.arg(cdda2wav::fileName()));
        }
    }
    tellOfGap();
    for (const QString &path : std::as_const(made)) {
        ownOutcome().outputBytes += QFileInfo(path).size();
        if (!endedWell() || cancelled())
            appendResultsForSelf(u"%1 was made, and stays\n"_s.arg(lastPathComponent(path)));
    }
    if (made.isEmpty())
        return;
    ownOutcome().output = made.size() == 1 ? made.first() : folderOf(made.first());
    ownOutcome().outputFiles = made.size() == 1 ? 0 : static_cast<int>(made.size());
}

/// Of a track that was not read to its end: all of it when the user has given it up, and what holds no sound. Nothing
/// had such a name when the job began. Returns whether nothing of it is left.
bool CDExtractTask::removeUnwanted(const QStringList &names)
{
    bool isGone = true;
    for (const QString &path : names) {
        if (!isPlainFile(path))
            continue;
        const std::optional<SoundLength> length = soundLength(path);
        const bool isEmpty = QFileInfo(path).size() == 0 || (length && length->heldFrames == 0);
        if (!cancelled() && !isEmpty) {
            isGone = false;
        } else if (!FolderEntry(path).remove()) {
            noteFailure(u"%1 was not read to its end, and could not be removed: %2"_s.arg(lastPathComponent(path),
                                                                                          systemErrorText(errno)));
            isGone = false;
        }
    }
    return isGone;
}

/// To the report, and to the line that ends with what went wrong.
void CDExtractTask::tell(const QString &line)
{
    appendResultsForSelf(line + u'\n');
    ownOutcome().problem += outcome().problem.isEmpty() ? line : u"; "_s + line;
}

QString CDExtractTask::nameOutput(const Output &output)
{
    const auto found = std::find_if(output.madeNames.begin(), output.madeNames.end(), isPlainFile);
    if (found == output.madeNames.end()) {
        // A run that failed has told why, and one of one file makes no others.
        if (endedWell() && (!m_oneTrack || m_outputs.size() == 1))
            noteFailure(u"cdda2wav made no %1"_s.arg(lastPathComponent(output.madeNames.last())));
        return {};
    }
    if (*found == output.name || renameToFreeName(QFile::encodeName(*found), QFile::encodeName(output.name)))
        return output.name;
    noteFailure(u"%1 could not be named %2: %3"_s.arg(lastPathComponent(*found), lastPathComponent(output.name),
                                                      systemErrorText(errno)));
    return *found;
}

/// The program writes the header of a file before its sound.
void CDExtractTask::checkSound(const QString &path)
{
    const std::optional<SoundLength> length = soundLength(path);
    if (!length)
        noteFailure(u"%1 is no WAV file"_s.arg(lastPathComponent(path)));
    else if (length->declaredFrames && length->heldFrames && *length->heldFrames < *length->declaredFrames)
        noteFailure(u"%1 holds less sound than its header tells"_s.arg(lastPathComponent(path)));
}

/// To "disc.log-2.txt" and so on: that of the tracks before a gap, or of another disc that the desktop calls the same.
bool CDExtractTask::moveOlderLogAside() const
{
    if (!isThere(logPath()))
        return true;
    constexpr int kMostLogs = 1000;
    for (int number = 2; number < kMostLogs; ++number) {
        const QString aside = pathOf(u"%1.log-%2.txt"_s.arg(m_discName).arg(number));
        if (renameToFreeName(QFile::encodeName(logPath()), QFile::encodeName(aside)))
            return true;
        if (errno != EEXIST)
            return false;
    }
    return false;
}

/// The range ends where a number is missing.
void CDExtractTask::tellOfGap()
{
    const qsizetype count = m_fileNames.size() - static_cast<qsizetype>(m_outputs.size());
    if (count <= 0 || cancelled())
        return;
    const QString first = m_fileNames.at(static_cast<qsizetype>(m_outputs.size()));
    tell(count == 1 ? u"%1 was not copied, since it stands behind a gap in the numbers"_s.arg(first)
                    : u"%1 and %2 more were not copied, since they stand behind a gap in the numbers"_s.arg(first).arg(
                        count - 1));
}

void CDExtractTask::writeLog()
{
    const QString version = u"%1 (build %2)"_s.arg(shortVersionString(), buildVersion());
    const QString text = u"Nurv %1\n%2"_s.arg(version, cdda2wav::logText(m_logOutput));
    QString reason;
    if (!moveOlderLogAside()) {
        noteFailure(u"the log could not be written: %1 is there already, and could not be moved aside: %2"_s.arg(
            lastPathComponent(logPath()), systemErrorText(errno)));
        return;
    }
    if (!writeTextFileAtomically(logPath(), text, &reason, LinkAtName::Replaced))
        noteFailure(u"the log %1 could not be written: %2"_s.arg(lastPathComponent(logPath()), reason));
}

void CDExtractTask::noteFailure(const QString &reason)
{
    if (outcome().problem.isEmpty())
        ownOutcome().problem = reason.section(u'\n', 0, 0);
    const QString told = u'\n' + reason + u'\n';
    if (cancelled())
        appendResultsForSelf(told);
    else
        failWith(told);
}

void CDExtractTask::finalCleanup()
{
    m_claims.clear();
    m_journal.reset();
}

} // namespace nurv
