// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/Conversion.h"

#include "app/PathNames.h"
#include "app/TemporaryNames.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "engine/NURVTask.h"
#include "engine/NURVTaskResults.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "files/NewFolders.h"
#include "files/ReservedFile.h"
#include "originals/SoundLengthCheck.h"
#include "programs/Flac.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Of a longer output only the end is kept: that is where programs say what failed.
constexpr qsizetype kLongestReport = 65'536;

} // namespace

Conversion::Conversion(NURVTask &task, const QString &fileName) : m_task(task), m_retirement({fileName})
{
    task.setSourcePath(fileName);
    task.nameRow(lastPathComponent(fileName));
}

Conversion::~Conversion() = default;

const QString &Conversion::fileName() const
{
    return m_task.sourcePath();
}

std::shared_ptr<NURVTask> Conversion::asTask() const
{
    return m_task.shared_from_this();
}

void Conversion::setDeleteOriginal(bool deleteOriginal)
{
    SourceRetirement::Wishes wishes = m_retirement.wishes();
    wishes.deletesSources = deleteOriginal;
    m_retirement.setWishes(wishes);
}

void Conversion::setDecoderUnwatched()
{
    SourceRetirement::Wishes wishes = m_retirement.wishes();
    wishes.isDecoderWatched = false;
    m_retirement.setWishes(wishes);
}

void Conversion::setOutputIsLossy()
{
    SourceRetirement::Wishes wishes = m_retirement.wishes();
    wishes.areOutputsLossy = true;
    m_retirement.setWishes(wishes);
}

void Conversion::setBatch(std::shared_ptr<OutputBatch> batch)
{
    m_batch = std::move(batch);
    m_batch->sources.insert(QFileInfo(fileName()).canonicalFilePath());
    m_batch->outputs.insert(foldedName(outputFile()));
    SourceRetirement::Wishes wishes = m_retirement.wishes();
    wishes.proves = m_batch->provesBeforeDeleting;
    wishes.dropsMetadata = m_batch->dropsMetadata;
    m_retirement.setWishes(wishes);
}

bool Conversion::isOutputOfBatch(const QString &path) const
{
    return m_batch && m_batch->outputs.contains(foldedName(path));
}

bool Conversion::outputIsAnotherSource() const
{
    const QString output = QFileInfo(outputFile()).canonicalFilePath();
    return m_batch && !output.isEmpty() && m_batch->sources.contains(output) && !outputIsSource();
}

std::optional<QString> Conversion::takeOutput()
{
    const QString output = outputFile();
    const QString name = lastPathComponent(output);
    if (outputIsAnotherSource())
        return u"its output %1 is another file of the list"_s.arg(name);
    if (m_batch && !m_batch->foldersBelow.isEmpty()) {
        if (const std::optional<QString> obstacle = makeFoldersBelow(m_batch->foldersBelow, folderOf(output)))
            return obstacle;
    }
    if (const std::optional<QString> obstacle = somethingInTheWay())
        return obstacle;
    if (std::optional<QString> refusal = m_claim.take(output, fileName(), m_batch.get()))
        return refusal;
    m_since = FolderEntry::now();
    m_outputFolder = FolderEntry(output).folderFacts();
    m_retirement.rememberSources();
    m_task.ownOutcome().sourceBytes = QFileInfo(fileName()).size();
    lookAtOutput();
    const ExistingOutputs existing = m_batch ? m_batch->existingOutputs : ExistingOutputs::AsTold;
    if (!outputExisted() || (existing != ExistingOutputs::Refuse && existing != ExistingOutputs::Skip))
        return std::nullopt;
    if (existing == ExistingOutputs::Skip) {
        if (const auto fault = faultOfExistingOutput())
            return u"its output %1 exists already, but is not whole: %2"_s.arg(name, *fault);
    }
    return u"its output %1 exists already"_s.arg(name);
}

/// A program would write to wherever a link leads, and into any file with the name that it gives its own.
std::optional<QString> Conversion::somethingInTheWay() const
{
    const QString output = outputFile();
    if (isLink(output))
        return u"its output name is a link"_s;
    for (const QStringView suffix : {kFlacScratchSuffix, kMetaflacScratchSuffix}) {
        const QString name = output + suffix.toString();
        if (isThere(name))
            return u"%1 is there already, and has the name of a temporary file of its program"_s.arg(lastPathComponent(name));
    }
    return std::nullopt;
}

void Conversion::lookAtOutput()
{
    m_outputBefore = statusOf(outputFile());
    // A link that leads nowhere has the name all the same.
    if (!m_outputBefore && isThere(outputFile()))
        m_outputBefore.emplace();
}

void Conversion::beginOutput(bool replaces)
{
    // Something may have that name since the job took it.
    if (const std::optional<QString> obstacle = somethingInTheWay())
        throw NurvFailure(*obstacle);
    lookAtOutput();
    m_hasBegunOutput = true;
    const ExistingOutputs existing = m_batch ? m_batch->existingOutputs : ExistingOutputs::AsTold;
    const bool isAsked = existing == ExistingOutputs::Replace;
    if (outputExisted() && existing != ExistingOutputs::AsTold && !isAsked)
        throw NurvFailure(u"its output %1 exists already"_s.arg(lastPathComponent(outputFile())));
    if (isAsked && outputIsSource())
        throw NurvFailure(u"its output would replace it"_s);
    // In the window a program may replace its own source: it puts the new file in its place.
    if (outputExisted() && (replaces || isAsked) && !outputIsSource()) {
        m_replaced = std::make_unique<ReplacedFile>(outputFile(), m_batch ? m_batch->journal : nullptr);
        lookAtOutput();
    }
    if (!outputExisted() && m_batch && m_batch->journal)
        m_batch->journal->markBegun(outputFile());
}

void Conversion::reserveOutput() const
{
    if (outputExisted())
        return;
    // Where nothing can be made the program says why.
    if (!ReservedFile().make(outputFile()) && errno == EEXIST)
        throw NurvFailure(u"its output %1 exists already"_s.arg(lastPathComponent(outputFile())));
}

void Conversion::disownOutput()
{
    putReplacedBack();
    lookAtOutput();
    m_hasBegunOutput = false;
    if (m_batch && m_batch->journal)
        m_batch->journal->markEnded(outputFile());
}

void Conversion::noteIntermediateBegun()
{
    if (m_batch && m_batch->journal && !intermediateFile().isEmpty())
        m_batch->journal->markBegun(intermediateFile());
}

void Conversion::noteIntermediateGone()
{
    if (m_batch && m_batch->journal && !intermediateFile().isEmpty())
        m_batch->journal->markEnded(intermediateFile());
}

std::optional<QString> Conversion::faultOfExistingOutput() const
{
    return m_retirement.wishes().areOutputsLossy ? SoundLengthCheck::ofLossy(fileName(), outputFile()).fault
                                                 : SoundLengthCheck::of({fileName()}, {outputFile()}).fault;
}

bool Conversion::outputIsSource() const
{
    const std::optional<struct stat> source = statusOf(fileName());
    const std::optional<struct stat> output = statusOf(outputFile());
    return source && output && isSameFile(*source, *output);
}

bool Conversion::hasMadeOutput() const
{
    const std::optional<struct stat> now = statusOf(outputFile());
    return now && !isLink(outputFile()) && S_ISREG(now->st_mode) && now->st_size > 0 && hasTouchedOutput();
}

bool Conversion::hasTouchedOutput() const
{
    const std::optional<struct stat> now = statusOf(outputFile());
    return now && !(m_outputBefore && isUntouched(*m_outputBefore, *now));
}

void Conversion::removeHalfMade(const QString &path) const
{
    const FolderEntry entry(path);
    const std::optional<struct stat> folder = entry.folderFacts();
    if (folder && !entry.facts() && errno == ENOENT)
        return;
    if (!folder || !m_outputFolder || !isSameFile(*m_outputFolder, *folder))
        qCWarning(convertLog).noquote() << "Half made and not removed, since its folder is another one now, or not to be opened:" << path;
    else if (!entry.remove() && errno != ENOENT)
        qCWarning(convertLog).noquote() << "Half made and not removed:" << path << systemErrorText(errno);
}

/// What a program left that could not write anything holds nothing that anybody could want.
void Conversion::removeEmptyOutput() const
{
    const std::optional<struct stat> now = FolderEntry(outputFile()).facts();
    if (now && S_ISREG(now->st_mode) && now->st_size == 0 && !outputExisted())
        removeHalfMade(outputFile());
}

void Conversion::showChunk(const ChunkReport &report)
{
    if (report.status) {
        m_task.setTopTextFieldString(*report.status);
        m_task.setProgressIndicatorValue(report.progress.value_or(0.0));
        m_task.updateStatus();
    }
    if (report.repaintsTitle)
        m_task.showMainLine(m_task.title());
    // The first slot, whichever member of the set this job is.
    if (const auto results = m_task.results())
        results->appendResults(report.results);
}

void Conversion::keepForReport(const QString &text)
{
    m_ownText += text;
    // A marker can be spread over two chunks.
    const qsizetype fresh = std::min(m_ownText.size(), text.size() + flac::kLongestDamageMarker);
    if (flac::tellsOfDamage(QStringView(m_ownText).last(fresh)))
        noteDamage(u"its program told of damage"_s);
    keepEndOfReport();
}

void Conversion::keepReasonForReport(const QString &reason)
{
    if (!m_ownText.isEmpty() && !m_ownText.endsWith(u'\n'))
        m_ownText += u'\n';
    // The reason may hold names, and names any words.
    m_ownText += reason;
    keepEndOfReport();
}

void Conversion::keepEndOfReport()
{
    if (m_ownText.size() > kLongestReport)
        m_ownText.remove(0, m_ownText.size() - kLongestReport);
}

bool Conversion::hasToTell() const
{
    return m_task.error() || m_retirement.doubtReason() || !m_task.outcome().problem.isEmpty();
}

QString Conversion::reportOr(const QString &usual) const
{
    if (!hasToTell())
        return usual;
    return fileName() + u":\n"_s + programOutput::asOnATerminal(m_ownText);
}

void Conversion::noteProblem(const QString &problem)
{
    if (m_task.outcome().problem.isEmpty())
        m_task.ownOutcome().problem = problem;
}

QString Conversion::problemLine(const QString &problem) const
{
    return u"%1: %2\n"_s.arg(fileName(), problem);
}

void Conversion::tell(const QString &problem)
{
    const QString line = problemLine(problem);
    keepReasonForReport(line);
    if (m_batch)
        m_batch->toldOfDamage = true;
    if (!m_task.results()) {
        // Where the queue looks at it.
        showOnGuiThread([this] {
            auto results = std::make_shared<NURVTaskResults>();
            results->addTaskInSet(m_task);
            m_task.setResults(results);
        });
    }
    if (const auto results = m_task.results())
        results->appendResults(line, m_task);
}

void Conversion::doubtSource(const QString &reason)
{
    m_retirement.doubt(reason);
    if (m_batch)
        m_batch->toldOfDamage = true;
}

void Conversion::noteDamage(const QString &reason)
{
    m_isDamaged = true;
    doubtSource(reason);
}

void Conversion::noteLostTags(const QString &reason)
{
    noteLost(u"only it has the tags"_s, u"its tags were not copied: %1"_s.arg(reason.trimmed()));
}

void Conversion::noteLostPicture(const std::optional<QString> &fault)
{
    if (!fault)
        return;
    qCWarning(convertLog).noquote() << "Picture not copied:" << fileName() << "->" << outputFile() << ':' << *fault;
    noteLost(u"only it has the picture"_s, u"its picture was not copied: %1"_s.arg(fault->trimmed()));
}

void Conversion::noteLost(const QString &whyItStays, const QString &problem)
{
    if (!m_retirement.wishes().dropsMetadata)
        m_retirement.doubt(whyItStays);
    noteProblem(problem);
    tell(problem);
}

void Conversion::noteComplete()
{
    if (m_replaced && hasMadeOutput()) {
        m_replaced->passOnPermissions(m_since);
        m_replaced->flushNewFile();
    }
    if (m_hasBegunOutput && m_batch && m_batch->journal && !m_task.error() && !m_task.cancelled())
        m_batch->journal->markEnded(outputFile());
}

SourceRetirement::Verdict Conversion::examineOutput()
{
    if (m_task.error() || m_task.cancelled() || !hasMadeOutput())
        return {};
    if (m_claim.isSourceReadByOthers())
        m_retirement.doubt(u"another job converts it, too"_s);
    const auto progress = [this](double percent) { showProof(percent); };
    try {
        return m_retirement.examine({outputFile()}, progress, [this] { return m_task.cancelled(); });
    } catch (const std::exception &failure) {
        SourceRetirement::Verdict verdict;
        verdict.failure = u"its output could not be examined: %1"_s.arg(QString::fromUtf8(failure.what()));
        return verdict;
    }
}

void Conversion::showProof(double percent)
{
    m_task.setTopTextFieldString(u"Proving: %1%"_s.arg(percent, 0, 'f', 0));
    m_task.setProgressIndicatorValue(percent);
    m_task.updateStatus();
}

void Conversion::takeVerdict(const SourceRetirement::Verdict &verdict)
{
    m_task.ownOutcome().proof = verdict.proof;
    if (verdict.failure) {
        m_task.setError(true);
        noteProblem(*verdict.failure);
        if (deleteOriginal())
            m_task.ownOutcome().original = TaskOutcome::Original::Kept;
        tell(*verdict.failure);
    } else if (verdict.keeping) {
        noteKept(*verdict.keeping);
    }
}

void Conversion::noteKept(const QString &reason)
{
    m_task.ownOutcome().original = TaskOutcome::Original::Kept;
    noteProblem(reason);
    qCWarning(keptSourceLog).noquote() << "Kept, since" << reason + u':' << fileName();
    tell(u"%1; original kept"_s.arg(reason));
}

void Conversion::keepOrDropOutput()
{
    noteEnding();
    // Whatever has the name of an output that was not begun belongs to somebody else.
    if (!std::exchange(m_hasBegunOutput, false))
        return;
    if (m_missesTags && m_task.cancelled() && !outputExisted() && hasMadeOutput())
        removeHalfMade(outputFile());
    if (m_replaced && m_isDamaged && !m_task.error() && !m_task.cancelled()) {
        m_task.setError(true);
        tell(u"%1 stays as it was: what was to replace it is not whole"_s.arg(lastPathComponent(outputFile())));
    }
    const bool isWhole = hasMadeOutput() && !m_task.error() && !m_task.cancelled();
    if (m_replaced && !isWhole)
        restoreReplaced();
    if (m_replaced) {
        try {
            m_replaced->retire();
        } catch (const NurvFailure &failure) {
            noteProblem(failure.reason());
            tell(failure.reason());
        }
        m_replaced.reset();
    }
    removeEmptyOutput();
    if (m_batch && m_batch->journal)
        m_batch->journal->markEnded(outputFile());
    if (!hasMadeOutput())
        return;
    m_task.ownOutcome().output = outputFile();
    m_task.ownOutcome().outputBytes = QFileInfo(outputFile()).size();
}

void Conversion::noteEnding()
{
    if (m_task.cancelled())
        return;
    // Of a job that failed the report says more.
    if (m_isDamaged && m_retirement.doubtReason() && !m_task.error())
        noteProblem(*m_retirement.doubtReason());
    // A job that does not fail for damage is not told to have done all either.
    if (m_isDamaged && !m_task.error() && m_task.outcome().proof == TaskOutcome::Proof::NotNeeded)
        m_task.ownOutcome().proof = TaskOutcome::Proof::NotProven;
    if (deleteOriginal() && m_task.error())
        m_task.ownOutcome().original = TaskOutcome::Original::Kept;
}

void Conversion::putReplacedBack()
{
    if (!m_replaced)
        return;
    try {
        m_replaced->putBack();
    } catch (const NurvFailure &failure) {
        noteProblem(failure.reason());
        tell(failure.reason());
    }
    m_replaced.reset();
}

void Conversion::restoreReplaced()
{
    if (hasTouchedOutput())
        removeHalfMade(outputFile());
    putReplacedBack();
    // The file is what was there before, and nothing that this job has made.
    lookAtOutput();
}

void Conversion::deleteSourceIfDone()
{
    if (!deleteOriginal() || m_task.error() || m_task.cancelled() || std::exchange(m_hasDeletedSource, true))
        return;
    if (m_claim.isSourceReadByOthers())
        m_retirement.doubt(u"another job converts it, too"_s);
    if (m_batch && m_batch->journal)
        m_batch->journal->flush();
    const SourceRetirement::Ending ending = m_retirement.retire();
    if (ending.original == TaskOutcome::Original::Kept)
        noteKept(ending.problem);
    else if (ending.original != TaskOutcome::Original::Untouched)
        m_task.ownOutcome().original = ending.original;
}

void Conversion::checkThatSourceIsThere() const
{
    // The tags of a file that is gone read as blank.
    if (!isThere(fileName()))
        throw NurvFailure(u"%1 is gone"_s.arg(fileName()));
}

bool Conversion::sharesSetWithDamage() const
{
    return m_batch && m_batch->toldOfDamage && m_task.results() && m_task.results()->memberCount() > 1;
}

void Conversion::dropResultsUnlessFailed()
{
    if (hasToTell() || sharesSetWithDamage())
        return;
    m_task.dropResults();
    m_ownText.clear();
}

} // namespace nurv
