// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fix/FixTask.h"

#include "app/PathNames.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/Version.h"
#include "checksum/ChecksumList.h"
#include "checksum/Fingerprint.h"
#include "checksum/MD5Helper.h"
#include "engine/NURVTaskQueue.h"
#include "engine/ProgramRunSync.h"
#include "files/FileStatus.h"
#include "files/TextFile.h"
#include "fix/FixTab.h"
#include "fix/FixedFileLists.h"
#include "process/ResourceFolder.h"
#include "programs/ExternalPrograms.h"
#include "programs/Metaflac.h"
#include "programs/Shntool.h"
#include "settings/SettingsStore.h"
#include "tags/TagLibTagsHelper.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

#include <algorithm>
#include <exception>
#include <numeric>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// The files of these places.
QStringList filesAt(const QStringList &paths, const QList<qsizetype> &places)
{
    QStringList files;
    for (const qsizetype place : places)
        files.append(paths.at(place));
    return files;
}

} // namespace

FixTask::FixTask(NURVTaskQueue *queue, const QStringList &fileNames, const QString &outputFormat,
                 const QString &outputPath, const QString &md5Option, int flacLevel, FixTab *tab)
    : NURVInProcessTask(queue), m_md5Option(md5Option), m_outputFormat(outputFormat), m_outputPath(outputPath),
      m_fileNames(fileNames), m_flacLevel(flacLevel), m_fixTab(tab), m_files(fileNames, outputPath, outputFormat),
      m_order(fileNames), m_retirement(fileNames)
{
    nameRow(u"Fixing"_s);
    for (qsizetype i = 0; i < fileNames.size(); ++i)
        m_fileNameDictionary.insert(nameWithoutExtension(fileNames.at(i)), QString::number(i + 1));
    SourceRetirement::Wishes wishes;
    // The last file is filled up to a whole sector.
    wishes.relation = SoundComparison::Relation::Prefix;
    wishes.areOutputsPaired = true;
    m_retirement.setWishes(wishes);
}

void FixTask::setDeleteOriginal(bool deleteOriginal)
{
    SourceRetirement::Wishes wishes = m_retirement.wishes();
    wishes.deletesSources = deleteOriginal;
    m_retirement.setWishes(wishes);
}

void FixTask::setDeletionNeeds(bool proof, bool metadata)
{
    SourceRetirement::Wishes wishes = m_retirement.wishes();
    wishes.proves = proof;
    wishes.dropsMetadata = !metadata;
    m_retirement.setWishes(wishes);
}

NeededPrograms FixTask::neededPrograms() const
{
    NeededPrograms programs = NeededPrograms::ofRun(
        shntool::program().name, shntool::fixArguments(m_outputFormat, m_flacLevel, m_outputPath, m_fileNames));
    const bool writesFlacTags = m_outputFormat.toUpper() == u"FLAC"
                                && std::any_of(m_fileNames.begin(), m_fileNames.end(), [](const QString &source) {
                                       return formatWord(source) == u"FLAC" || formatWord(source) == u"AIFF";
                                   });
    if (writesFlacTags || (m_outputFormat == u"flac" && m_md5Option == u"FFP"))
        programs.add({{metaflac::program().name}, {}});
    return programs;
}

std::optional<QString> FixTask::reasonNotToStart()
{
    const QStringList obstacles = m_files.take();
    if (obstacles.isEmpty()) {
        m_retirement.rememberSources();
        for (const QString &source : m_fileNames)
            ownOutcome().sourceBytes += QFileInfo(source).size();
        return std::nullopt;
    }
    ownOutcome().problem = obstacles.first();
    if (obstacles.size() > 1)
        ownOutcome().problem += u" (and %1 more)"_s.arg(obstacles.size() - 1);
    if (deleteOriginal())
        ownOutcome().original = TaskOutcome::Original::Kept;
    return obstacles.join(u'\n') + u'\n';
}

void FixTask::doStartTask()
{
    m_hasBegun = true;
    showStarted();
    try {
        work();
    } catch (const NurvFailure &failure) {
        failFor(failure.reason());
    }
    appendResultsForSelf(m_totalOutput);
    examine();
}

void FixTask::work()
{
    if (!doFixCall())
        return;
    copyTags();
    if (cancelled()) {
        // Without all of their tags they would be taken for finished ones.
        m_files.removeAll();
        return;
    }
    m_files.markComplete();
    m_hasMadeAll = true;
    ownOutcome().output = m_outputPath;
    ownOutcome().outputFiles = sourceCount();
    ownOutcome().outputBytes = m_files.bytes();
    writeLists();
}

/// Returns whether all files were made.
bool FixTask::doFixCall()
{
    m_files.begin();
    ProgramRunSync tool(programPath(shntool::program().name),
                        shntool::fixArguments(m_outputFormat, m_flacLevel, m_outputPath, m_fileNames));
    tool.setDirectory(folderOf(m_fileNames.first()));
    const auto takeText = [this](const QString &chunk) {
        processTaskOutput(chunk);
        return !cancelled();
    };
    const ProgramRunSync::Ending ending = tool.run(takeText, [this] { return cancelled(); });
    if (!ending.succeeded()) {
        m_files.markComplete();
        if (!ending.exit)
            throw NurvFailure(ending.startFailure);
        takeEnding(*ending.exit);
        return false;
    }
    try {
        m_files.place();
    } catch (const NurvFailure &) {
        // Not all of them need be its own.
        for (const QString &path : m_files.leftByProgram())
            appendResultsForSelf(u"%1 is there: whose it is, this job does not know\n"_s.arg(path));
        throw;
    }
    const std::optional<QList<qsizetype>> order = m_order.order();
    if (order)
        m_retirement.reorderSources(filesAt(m_fileNames, *order));
    else
        m_retirement.doubt(u"shntool did not tell in which order it took them"_s);
    return true;
}

void FixTask::takeEnding(const ChildExit &exit)
{
    if (!cancelled())
        tellFailure(exit);
    // It makes all or none, unless it is stopped right while it names them.
    tellLeft();
}

void FixTask::tellFailure(const ChildExit &exit)
{
    const QString reason = shntool::reasonOfFailedFixing(m_totalOutput);
    if (exit.signal != 0) {
        failFor(killedProgramText(shntool::program().name, exit.signal, title()).trimmed());
    } else if (reason.isEmpty()) {
        failFor(u"shntool failed without a reason"_s);
    } else {
        // The report has it in the program's own words.
        setError(true);
        const bool namesFile = m_fileName.isEmpty() || reason.contains(u'[');
        ownOutcome().problem = namesFile ? reason : m_fileName + u": "_s + reason;
    }
}

/// The files that the program has made or begun, and nobody may take for this job's.
void FixTask::tellLeft()
{
    const QStringList left = m_files.leftByProgram();
    for (const QString &path : left)
        appendResultsForSelf(u"%1 was left there; all that it may hold is in the sources, too\n"_s.arg(path));
    if (left.isEmpty() || !cancelled())
        return;
    const QString name = lastPathComponent(left.first());
    ownOutcome().problem = left.size() == 1 ? u"%1 was left"_s.arg(name)
                                            : u"%1 and %2 more were left"_s.arg(name, QString::number(left.size() - 1));
}

void FixTask::processTaskOutput(const QString &chunk)
{
    const shntool::FixReport report = shntool::parseFixing(chunk);
    m_totalOutput += report.text;
    for (const qsizetype place : m_order.take(chunk))
        m_files.markBegun(place);
    // A name that came in two pieces is none of them.
    if (report.fileName && m_fileNameDictionary.contains(*report.fileName)) {
        m_fileName = *report.fileName;
        showMainLine(u"%1 (%2 of %3)"_s.arg(m_fileName, m_fileNameDictionary.value(m_fileName),
                                            QString::number(m_fileNames.size())));
    }
    if (report.progress)
        showProgress(u"Fixing: %1%"_s.arg(sixDecimals(*report.progress)), *report.progress);
}

void FixTask::showProgress(const QString &status, double percent)
{
    setTopTextFieldString(status);
    setProgressIndicatorValue(percent);
    updateStatus();
}

void FixTask::copyTags()
{
    const QString format = m_outputFormat.toUpper();
    if (format != u"AIFF" && format != u"FLAC")
        return;
    for (qsizetype place = 0; place < m_fileNames.size() && !cancelled(); ++place) {
        const QString source = m_fileNames.at(place);
        const auto complain = [&](const QString &reason) {
            qCWarning(tagsLog).noquote() << "Exception trying to tag fixed files" << source << ':' << reason;
            warn(u"the tags of %1 were not copied: %2"_s.arg(lastPathComponent(source), reason.trimmed()));
            if (!m_retirement.wishes().dropsMetadata)
                m_retirement.doubt(u"only %1 has its tags"_s.arg(lastPathComponent(source)));
        };
        try {
            copyTagsOf(place);
        } catch (const NurvFailure &failure) {
            complain(failure.reason());
        } catch (const std::exception &failure) {
            complain(QString::fromUtf8(failure.what()));
        }
    }
}

void FixTask::copyTagsOf(qsizetype place)
{
    const QString source = m_fileNames.at(place);
    const QString word = formatWord(source);
    if (word != u"AIFF" && word != u"FLAC")
        return;
    // The tags of a file that is gone read as blank.
    if (!isThere(source))
        throw NurvFailure(u"it is gone"_s);
    const TagsObject tags = word == u"AIFF" ? getAiffTags(source) : getFlacTags(source);
    showStatus(u"Writing tags"_s);
    if (m_outputFormat.toUpper() == u"AIFF")
        TagLibTagsHelper::writeTagsForAIFFFile(m_files.path(place), tags);
    else
        TagLibTagsHelper::writeTagsForFLACFile(m_files.path(place), tags, false);
    m_files.markWritten(place);
    if (tags.albumArtFault())
        throw NurvFailure(u"its picture: "_s + *tags.albumArtFault());
}

TagsObject FixTask::getAiffTags(const QString &path) const
{
    return TagLibTagsHelper::tagsForAIFFFile(path);
}

TagsObject FixTask::getFlacTags(const QString &path) const
{
    return TagLibTagsHelper::tagsForFlacFile(path);
}

void FixTask::writeLists()
{
    if (m_outputFormat == u"shn") {
        showStatus(u"Creating MD5"_s);
        handleMD5();
    } else if (m_outputFormat == u"flac" && m_md5Option == u"FFP") {
        showStatus(u"Creating FFP"_s);
        doCreateFFP();
    }
}

void FixTask::handleMD5()
{
    if (m_md5Option == u"1 MD5") {
        QList<qsizetype> all(m_fileNames.size());
        std::iota(all.begin(), all.end(), 0);
        const bool namedAfterFolder = SettingsStore::instance().boolean(u"checksumFileUsesOutputDirName"_s);
        doMd5Call(checksumList::md5FileName(m_outputPath, namedAfterFolder), all);
    } else if (m_md5Option == u"MD5 by disc*") {
        for (const fixedFileLists::DiscList &list : fixedFileLists::listsByDisc(m_fileNames))
            doMd5Call(list.fileName, list.places);
    }
}

/// Whether a list can name the file; what it cannot, or not so that it is read back, is told.
bool FixTask::canList(checksumList::ListKind kind, const QString &path)
{
    const QString name = lastPathComponent(path);
    if (checksumList::canName(name)) {
        if (!checksumList::isReadBack(kind, name))
            warn(checksumList::misreadText(path));
        return true;
    }
    warn(u"%1 is not in the list: its name holds a line break"_s.arg(path));
    return false;
}

/// A list with such an entry would be taken for one of what is there.
void FixTask::noteUnlisted(const QString &path, const QString &fault)
{
    failFor(u"the list does not tell what is in %1: %2"_s.arg(lastPathComponent(path), fault.trimmed()));
}

void FixTask::doMd5Call(const QString &listName, const QList<qsizetype> &places)
{
    QString list = checksumList::md5Header(shortVersionString(), QDateTime::currentDateTime());
    qsizetype done = 0;
    for (const qsizetype place : places) {
        const QString path = m_files.path(place);
        showMainLine(lastPathComponent(path));
        if (canList(checksumList::ListKind::Md5, path)) {
            const FileDigest digest =
                MD5Helper::digestOf(path, MD5Helper::Kind::Regular, [this] { return cancelled(); });
            if (cancelled())
                return;
            list += checksumList::md5Entry(digest.hexadecimal, lastPathComponent(path));
            if (!digest.failure.isEmpty() || digest.bytes == 0)
                noteUnlisted(path, digest.failure.isEmpty() ? u"it is empty"_s : digest.failure);
        }
        ++done;
        showProgress(u"Creating MD5"_s, static_cast<double>(done) * 100.0 / static_cast<double>(places.size()));
    }
    writeList(listName, list);
}

void FixTask::doCreateFFP()
{
    QString list = checksumList::ffpHeader(shortVersionString(), QDateTime::currentDateTime());
    for (const QString &path : m_files.paths()) {
        if (cancelled())
            return;
        if (!canList(checksumList::ListKind::Ffp, path))
            continue;
        const QString entry = fingerprint(path);
        list += entry;
        if (const std::optional<QString> fault = faultOfFingerprint(entry))
            noteUnlisted(path, *fault);
    }
    const SettingsStore &settings = SettingsStore::instance();
    writeList(checksumList::ffpFileName(m_outputPath, settings.string(u"ffpExtension"_s),
                                        settings.boolean(u"checksumFileUsesOutputDirName"_s)),
              list);
}

void FixTask::writeList(const QString &listName, const QString &text)
{
    if (cancelled())
        return;
    const QString path = joinPath(m_outputPath, listName);
    QString reason;
    if (!writeTextFileAtomically(path, text, &reason, LinkAtName::Replaced))
        failFor(u"Unable to write %1: %2"_s.arg(path, reason));
}

void FixTask::failFor(const QString &problem)
{
    if (ownOutcome().problem.isEmpty())
        ownOutcome().problem = problem;
    failWith(problem + u'\n');
}

/// While the job is still active: when the application ends meanwhile, the sources stay.
void FixTask::examine()
{
    if (error() && !cancelled() && deleteOriginal())
        ownOutcome().original = TaskOutcome::Original::Kept;
    if (error() || cancelled() || !m_hasMadeAll)
        return;
    if (m_files.areSourcesReadByOthers())
        m_retirement.doubt(u"another job works on them, too"_s);
    const std::optional<QList<qsizetype>> order = m_order.order();
    const QStringList outputs = order ? filesAt(m_files.paths(), *order) : m_files.paths();
    // Two wrong orders would differ in their sound, which is no fault of the files.
    if (!order && deleteOriginal()) {
        noteKept(*m_retirement.doubtReason());
        return;
    }
    takeVerdict(m_retirement.examine(
        outputs, [this](double percent) { showProgress(u"Proving: %1%"_s.arg(percent, 0, 'f', 0), percent); },
        [this] { return cancelled(); }));
}

void FixTask::takeVerdict(const SourceRetirement::Verdict &verdict)
{
    ownOutcome().proof = verdict.proof;
    if (verdict.failure) {
        if (deleteOriginal())
            ownOutcome().original = TaskOutcome::Original::Kept;
        failFor(*verdict.failure);
    } else if (verdict.keeping) {
        noteKept(*verdict.keeping);
    }
}

void FixTask::noteKept(const QString &reason)
{
    ownOutcome().original = TaskOutcome::Original::Kept;
    if (ownOutcome().problem.isEmpty())
        ownOutcome().problem = reason;
    qCWarning(keptSourceLog).noquote() << "Kept, since" << reason + u':' << m_fileNames.join(u", "_s);
    appendResultsForSelf(u"%1; originals kept\n"_s.arg(reason));
}

void FixTask::stopTask()
{
    NURVInProcessTask::stopTask();
    m_files.release();
}

void FixTask::deleteSources()
{
    if (!deleteOriginal() || error() || cancelled() || outcome().original == TaskOutcome::Original::Kept)
        return;
    if (m_files.areSourcesReadByOthers())
        m_retirement.doubt(u"another job works on them, too"_s);
    m_files.flushJournal();
    const SourceRetirement::Ending ending = m_retirement.retire();
    if (ending.original != TaskOutcome::Original::Kept) {
        if (ending.original != TaskOutcome::Original::Untouched)
            ownOutcome().original = ending.original;
        return;
    }
    noteKept(ending.problem);
    // The report has been shown already.
    postToGuiThread([self = std::static_pointer_cast<FixTask>(shared_from_this()), reason = ending.problem] {
        if (NURVTaskQueue *const tasks = self->queue())
            tasks->showOutputWindow(u"%1; originals kept\n"_s.arg(reason), self->title());
    });
}

void FixTask::afterCompletion()
{
    if (!m_hasBegun)
        return;
    deleteSources();
    postToGuiThread([tab = m_fixTab] {
        if (tab)
            tab->clearFiles();
    });
}

} // namespace nurv
