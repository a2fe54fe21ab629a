// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "shntool/SHNToolEditTask.h"

#include "app/PathNames.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/WorkerThreads.h"
#include "files/FileStatus.h"
#include "journal/OutputJournal.h"
#include "programs/ShntoolModes.h"
#include "text/TextNumbers.h"

#include <QFileInfo>

#include <algorithm>
#include <exception>
#include <set>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

/// Of a longer output only the end is kept: that is where programs say what failed.
constexpr qsizetype kLongestOutput = 65'536;

/// Whether less was shown by the first.
bool isLess(TaskOutcome::Proof left, TaskOutcome::Proof right)
{
    using Proof = TaskOutcome::Proof;
    return left != right && (left == Proof::NotProven || right == Proof::Proven);
}

/// Whether one of the files stands among them under two names.
bool isOneFileTwice(const QStringList &paths)
{
    std::set<std::pair<dev_t, ino_t>> files;
    return std::any_of(paths.begin(), paths.end(), [&](const QString &path) {
        const std::optional<struct stat> facts = statusOf(path);
        return facts && !files.emplace(facts->st_dev, facts->st_ino).second;
    });
}

} // namespace

SHNToolEditTask::SHNToolEditTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments,
                                 std::vector<Work> works)
    : NURVAsyncNSTask(queue, launchPath, arguments), m_works(std::move(works))
{
    if (m_works.size() == 1 && m_works.front().sources.size() == 1)
        setSourcePath(m_works.front().sources.first());
}

SHNToolEditTask::~SHNToolEditTask() = default;

void SHNToolEditTask::setDeletionNeeds(bool proof, bool metadata)
{
    m_wishes.proves = proof;
    m_wishes.dropsMetadata = !metadata;
}

QStringList SHNToolEditTask::sourcePaths() const
{
    QStringList paths;
    for (const Work &work : m_works)
        paths += work.sources;
    return paths;
}

int SHNToolEditTask::sourceCount() const
{
    int count = 0;
    for (const Work &work : m_works)
        count += static_cast<int>(work.sources.size());
    return count;
}

void SHNToolEditTask::startTask()
{
    if (const std::optional<QString> obstacle = takeAll()) {
        m_claims.clear();
        becomeActive();
        ownOutcome().problem = *obstacle;
        if (deleteOriginal())
            ownOutcome().original = TaskOutcome::Original::Kept;
        failToStart(*obstacle + u'\n');
        return;
    }
    beginJournal();
    willStart();
    NURVAsyncNSTask::startTask();
}

void SHNToolEditTask::beginJournal()
{
    std::vector<OutputJournal::Planned> outputs;
    for (const Work &work : m_works) {
        for (const QStringList &names : work.outputs)
            outputs.push_back({names.first(), work.sources.first()});
    }
    m_journal = OutputJournal::begin(outputs);
    OutputJournal::prepareForTemporaries();
    // Of several nobody sees when the program begins with each. What was made of those stays, and what it works on in
    // their folder has names of its own.
    if (m_works.size() == 1 && !m_works.front().hasMoreOutputs) {
        for (const OutputJournal::Planned &planned : outputs)
            m_journal->markBegun(planned.output);
    }
}

void SHNToolEditTask::endJournal()
{
    if (m_journal == nullptr)
        return;
    for (const Work &work : m_works) {
        for (const QStringList &names : work.outputs)
            m_journal->markEnded(names.first());
    }
}

void SHNToolEditTask::finalCleanup()
{
    m_claims.clear();
    m_journal.reset();
}

std::optional<QString> SHNToolEditTask::takeAll()
{
    for (Work &work : m_works) {
        std::vector<std::unique_ptr<OutputClaim>> &claims = m_claims.emplace_back();
        for (const QStringList &names : work.outputs) {
            for (const QString &path : names) {
                if (isLink(path))
                    return u"%1: its output name is a link"_s.arg(lastPathComponent(path));
                if (work.sources.contains(path))
                    return u"%1: its output would replace it"_s.arg(lastPathComponent(path));
                if (isThere(path))
                    m_thereBefore.insert(path);
            }
        }
        qsizetype place = 0;
        for (const QString &source : work.sources) {
            auto &claim = claims.emplace_back(std::make_unique<OutputClaim>());
            const auto output = static_cast<std::size_t>(place++);
            const std::optional<QString> refusal = output < work.outputs.size()
                                                       ? claim->take(work.outputs[output].first(), source, nullptr)
                                                       : claim->takeSource(source);
            if (refusal)
                return lastPathComponent(source) + u": "_s + *refusal;
            ownOutcome().sourceBytes += QFileInfo(source).size();
        }
        if (work.whyItStays.isEmpty() && isOneFileTwice(work.sources))
            work.whyItStays = u"two of the sources are one file"_s;
        SourceRetirement::Wishes wishes = m_wishes;
        wishes.relation = work.relation;
        wishes.deletesSources = wishes.deletesSources && work.whyItStays.isEmpty();
        auto &retirement = m_retirements.emplace_back(std::make_unique<SourceRetirement>(work.sources));
        retirement->setWishes(wishes);
        retirement->rememberSources();
    }
    return std::nullopt;
}

void SHNToolEditTask::processTaskOutput(const QString &chunk)
{
    m_output = (m_output + chunk).last(std::min(m_output.size() + chunk.size(), kLongestOutput));
    showOutput(chunk);
}

std::vector<SHNToolEditTask::Work> SHNToolEditTask::editsOfEach(const QStringList &arguments, const QString &ending,
                                                                SoundComparison::Relation relation)
{
    std::vector<Work> works;
    for (const QString &source : arguments.sliced(shntool::kEditSourcePlace)) {
        QStringList paths;
        for (const QString &name : shntool::editedNames(source, ending, arguments.at(shntool::kEditFormatPlace)))
            paths.append(joinPath(arguments.at(shntool::kEditFolderPlace), name));
        works.push_back({.sources = {source}, .outputs = {paths}, .relation = relation});
    }
    return works;
}

void SHNToolEditTask::showSingleEdit(const QString &chunk, const QString &operation)
{
    const shntool::EditReport report = shntool::parseEdit(chunk);
    if (report.progress)
        showProgress(u"%1: %2%"_s.arg(operation, sixDecimals(*report.progress)), *report.progress);
    appendResultsForSelf(report.text);
    showMainLine(title());
}

void SHNToolEditTask::showProgress(const QString &status, double percent)
{
    setTopTextFieldString(status);
    setProgressIndicatorValue(percent);
    updateStatus();
}

void SHNToolEditTask::completeStop()
{
    const std::optional<ChildExit> exit = exitState();
    endJournal();
    if (!exit || !exit->succeeded() || cancelled()) {
        if (exit)
            findAllOutputs();
        NURVAsyncNSTask::completeStop();
        return;
    }
    // Disks take their time, and so does a proof. When the application ends meanwhile, the sources simply stay.
    try {
        workerThreads::start([task = std::static_pointer_cast<SHNToolEditTask>(shared_from_this())]() mutable {
            task->runHook([&task] { task->examineAll(); });
            // The job must not end on this thread.
            SHNToolEditTask *const examined = task.get();
            postToGuiThread([task = std::move(task), examined] { examined->NURVAsyncNSTask::completeStop(); });
        });
    } catch (const std::exception &failure) {
        qCWarning(originalsLog, "The outputs were not examined: %s", failure.what());
        ownOutcome().proof = TaskOutcome::Proof::NotProven;
        for (const Work &work : m_works)
            noteKept(work, u"its output could not be examined"_s);
        NURVAsyncNSTask::completeStop();
    }
}

QString SHNToolEditTask::madeOf(const QStringList &names) const
{
    const auto made = std::find_if(names.begin(), names.end(), [this](const QString &path) {
        return isThere(path) && !m_thereBefore.contains(path);
    });
    return made == names.end() ? QString() : *made;
}

void SHNToolEditTask::findAllOutputs()
{
    for (Work &work : m_works)
        findOutputs(work);
}

void SHNToolEditTask::examineAll()
{
    findAllOutputs();
    for (std::size_t place = 0; place < m_works.size() && !cancelled() && !error(); ++place)
        noteVerdict(m_works[place], examine(place));
}

SourceRetirement::Verdict SHNToolEditTask::examine(std::size_t place)
{
    const Work &work = m_works[place];
    SourceRetirement &retirement = *m_retirements[place];
    SourceRetirement::Verdict verdict;
    QStringList outputs;
    for (const QStringList &names : work.outputs) {
        const QString found = madeOf(names);
        if (found.isEmpty()) {
            verdict.failure = u"its program made no %1"_s.arg(lastPathComponent(names.first()));
            return verdict;
        }
        outputs.append(found);
        ownOutcome().outputBytes += QFileInfo(found).size();
    }
    if (outputs.isEmpty()) {
        verdict.failure = u"its program made no output"_s;
        return verdict;
    }
    const bool isOnlyOne = m_works.size() == 1 && outputs.size() == 1;
    ownOutcome().output = isOnlyOne ? outputs.first() : folderOf(outputs.first());
    if (!isOnlyOne)
        ownOutcome().outputFiles += static_cast<int>(outputs.size());
    const std::vector<std::unique_ptr<OutputClaim>> &claims = m_claims[place];
    const bool isShared =
        std::any_of(claims.begin(), claims.end(), [](const auto &claim) { return claim->isSourceReadByOthers(); });
    if (isShared)
        retirement.doubt(u"another job works on it, too"_s);
    const auto share = static_cast<double>(m_works.size());
    return retirement.examine(
        outputs,
        [&](double percent) {
            const double all = (100.0 * static_cast<double>(place) + percent) / share;
            showProgress(u"Proving: %1%"_s.arg(all, 0, 'f', 0), all);
        },
        [this] { return cancelled(); });
}

void SHNToolEditTask::noteVerdict(const Work &work, const SourceRetirement::Verdict &verdict)
{
    // What was not shown of one of them was not shown of all. What stays anyway needs no proof.
    if (work.whyItStays.isEmpty() && (!m_leastProof || isLess(verdict.proof, *m_leastProof)))
        m_leastProof = verdict.proof;
    ownOutcome().proof = m_leastProof.value_or(verdict.proof);
    if (verdict.failure) {
        noteFailure(lastPathComponent(work.sources.first()) + u": "_s + *verdict.failure);
        if (deleteOriginal())
            ownOutcome().original = TaskOutcome::Original::Kept;
    } else if (deleteOriginal() && !work.whyItStays.isEmpty()) {
        noteKept(work, work.whyItStays);
    } else if (verdict.keeping) {
        noteKept(work, *verdict.keeping);
    }
}

void SHNToolEditTask::noteFailure(const QString &reason)
{
    // It says more than why another source stays.
    ownOutcome().problem = reason;
    failWith(reason + u'\n');
}

void SHNToolEditTask::noteKept(const Work &work, const QString &reason)
{
    if (!deleteOriginal())
        return;
    ownOutcome().original = TaskOutcome::Original::Kept;
    m_kept.unite(QSet<QString>(work.sources.begin(), work.sources.end()));
    ownOutcome().keptSources = static_cast<int>(m_kept.size());
    // Of several sources the reason names the one.
    const QString told =
        work.sources.size() > 1 ? reason : u"%1: %2"_s.arg(lastPathComponent(work.sources.first()), reason);
    if (ownOutcome().problem.isEmpty())
        ownOutcome().problem = told;
    qCWarning(keptSourceLog).noquote() << "Kept, since" << reason + u':' << work.sources.join(u", "_s);
    if (work.staysAlways)
        return;
    m_hasToTell = true;
    appendResultsForSelf(u"%1; original kept\n"_s.arg(told));
}

void SHNToolEditTask::retireAll()
{
    m_journal->flush();
    for (std::size_t place = 0; place < m_works.size(); ++place) {
        const Work &work = m_works[place];
        if (!work.whyItStays.isEmpty())
            continue;
        const SourceRetirement::Ending ending = m_retirements[place]->retire();
        if (ending.original == TaskOutcome::Original::Kept)
            noteKept(work, ending.problem);
        else if (ending.original != TaskOutcome::Original::Untouched
                 && outcome().original != TaskOutcome::Original::Kept)
            ownOutcome().original = ending.original;
    }
}

/// What one run made before it failed at something else stays.
void SHNToolEditTask::tellWhatWasMade()
{
    QStringList made;
    for (const Work &work : m_works) {
        for (const QStringList &names : work.outputs) {
            if (const QString found = madeOf(names); !found.isEmpty())
                made.append(found);
        }
    }
    if (made.isEmpty())
        return;
    ownOutcome().output = made.size() == 1 ? made.first() : folderOf(made.first());
    ownOutcome().outputFiles = made.size() == 1 ? 0 : static_cast<int>(made.size());
    for (const QString &path : std::as_const(made))
        appendResultsForSelf(u"%1 was made, and stays\n"_s.arg(lastPathComponent(path)));
}

QString SHNToolEditTask::whyItFailed() const
{
    shntool::Problem problem = shntool::lastProblem(m_output);
    // It tells that it cannot, and not why.
    if (problem.text.startsWith(u"could not open output file"_s) && !m_thereBefore.isEmpty())
        problem = {.file = {}, .text = u"a file of the name of its output exists already"_s};
    return sourcePath().isEmpty() ? problem.withFile() : problem.text;
}

void SHNToolEditTask::cleanup()
{
    if (deleteOriginal() && hasRun() && !error() && !cancelled())
        retireAll();
    if (error() && !cancelled()) {
        if (ownOutcome().problem.isEmpty())
            ownOutcome().problem = whyItFailed();
        if (deleteOriginal())
            ownOutcome().original = TaskOutcome::Original::Kept;
        if (hasRun())
            tellWhatWasMade();
    } else if (!m_hasToTell && warnings().isEmpty()) {
        dropResults();
    }
}

} // namespace nurv
