// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/DVDAuthorTask.h"

#include "app/PathNames.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "engine/ProgramRunSync.h"
#include "files/FileFlush.h"
#include "files/FileStatus.h"
#include "files/FolderEntry.h"
#include "journal/OutputJournal.h"
#include "process/ResourceFolder.h"
#include "programs/Dvda.h"
#include "programs/ExternalPrograms.h"
#include "programs/Mkisofs.h"
#include "text/TextNumbers.h"
#include "util/DiscFolderRemoval.h"
#include "util/DiscImageCheck.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <functional>

using namespace Qt::StringLiterals;

namespace nurv {

namespace {

constexpr qsizetype kLongestText = 64 * 1024;
const QString kAuthoring = u"Authoring AUDIO_TS directory"_s;

} // namespace

DVDAuthorTask::DVDAuthorTask(NURVTaskQueue *queue, const QStringList &fileNames, const QString &outputPath)
    : NURVInProcessTask(queue), m_fileNames(fileNames), m_outputPath(outputPath)
{
    nameRow(kAuthoring);
}

DVDAuthorTask::~DVDAuthorTask() = default;

NeededPrograms DVDAuthorTask::programsFor(const QStringList &fileNames)
{
    NeededPrograms programs = NeededPrograms::ofRun(dvda::program().name, dvda::authoringArguments({}, {}, fileNames));
    programs.add(NeededPrograms::ofRun(mkisofs::program().name, mkisofs::imageArguments({}, {})));
    return programs;
}

QString DVDAuthorTask::discFolder() const
{
    return joinPath(m_outputPath, u"DVD-AUDIO"_s);
}

QString DVDAuthorTask::imagePath() const
{
    return joinPath(m_outputPath, u"image.iso"_s);
}

std::optional<QString> DVDAuthorTask::obstacleAt(const QString &path)
{
    const QString name = lastPathComponent(path);
    if (isLink(path))
        return u"%1 is there already, as a link"_s.arg(name);
    if (isThere(path))
        return u"%1 is there already: move it away, or choose another folder"_s.arg(name);
    return std::nullopt;
}

std::optional<QString> DVDAuthorTask::takeAll()
{
    // Before the looks at the names, so that what another job makes is not taken for somebody's file.
    for (const QString &output : {imagePath(), discFolder()}) {
        auto &claim = m_claims.emplace_back(std::make_unique<OutputClaim>());
        if (std::optional<QString> refusal = claim->take(output, m_fileNames.first(), nullptr))
            return refusal;
    }
    for (const QString &source : std::as_const(m_fileNames)) {
        auto &claim = m_claims.emplace_back(std::make_unique<OutputClaim>());
        if (const std::optional<QString> refusal = claim->takeSource(source))
            return lastPathComponent(source) + u": "_s + *refusal;
    }
    for (const QString &path : {discFolder(), imagePath()}) {
        if (std::optional<QString> obstacle = obstacleAt(path))
            return obstacle;
    }
    for (const QString &source : std::as_const(m_fileNames))
        ownOutcome().sourceBytes += QFileInfo(source).size();
    return std::nullopt;
}

std::optional<QString> DVDAuthorTask::reasonNotToStart()
{
    std::optional<QString> obstacle = takeAll();
    if (!obstacle)
        return std::nullopt;
    ownOutcome().problem = *obstacle;
    return *obstacle + u'\n';
}

void DVDAuthorTask::doStartTask()
{
    showStarted();
    showStatus(kAuthoring);
    m_journal = OutputJournal::begin({{imagePath(), m_fileNames.first()}});
    const auto failFor = [this](const QString &reason) {
        if (cancelled())
            return;
        ownOutcome().problem = reason;
        failWith(reason + u'\n');
    };
    try {
        makeDisc();
    } catch (const NurvFailure &failure) {
        failFor(failure.reason());
    } catch (const std::exception &failure) {
        failFor(QString::fromUtf8(failure.what()));
    }
    if (m_madeImage && !m_isImageProven)
        removeImage();
    if (!error())
        removeDiscFolder();
    else if (isThere(discFolder()))
        tellOfFolder();
}

void DVDAuthorTask::tellOfFolder()
{
    appendResultsForSelf(u"%1 stays there\n"_s.arg(discFolder()));
    ownOutcome().problem += u"; %1 stays there"_s.arg(lastPathComponent(discFolder()));
}

void DVDAuthorTask::makeDisc()
{
    authorDisc();
    if (cancelled())
        return;
    showProgress(u"Making .ISO Image"_s, 0.0);
    // Something may have that name by now. While the program works it sees to that itself.
    if (const std::optional<QString> obstacle = obstacleAt(imagePath()))
        throw NurvFailure(*obstacle);
    m_journal->markBegun(imagePath());
    makeImage();
    if (cancelled())
        return;
    compareImage();
    if (cancelled())
        return;
    m_isImageProven = true;
    m_journal->markEnded(imagePath());
    ownOutcome().output = imagePath();
    ownOutcome().outputBytes = QFileInfo(imagePath()).size();
}

void DVDAuthorTask::authorDisc()
{
    ProgramRunSync program(
        programPath(dvda::program().name),
        dvda::authoringArguments(joinPath(m_outputPath, u"log.txt"_s), discFolder(), m_fileNames));
    static_cast<void>(run(program, dvda::program().name, dvda::reasonOfFailure,
                          [this](const QString &chunk) { processDVDATaskOutput(chunk); }));
}

void DVDAuthorTask::makeImage()
{
    ProgramRunSync program(programPath(mkisofs::program().name),
                           mkisofs::imageArguments(imagePath(), discFolder()));
    if (run(program, mkisofs::program().name, mkisofs::reasonOfFailure,
            [this](const QString &chunk) { processImageTaskOutput(chunk); }))
        m_madeImage = statusOfName(imagePath());
}

bool DVDAuthorTask::run(ProgramRunSync &program, const QString &name, QString (*reasonOfFailure)(QStringView),
                        const std::function<void(const QString &)> &takeChunk)
{
    QString text;
    const ProgramRunSync::Ending ending = program.run(
        [&](const QString &chunk) {
            text = (text + chunk).last(std::min(text.size() + chunk.size(), kLongestText));
            takeChunk(chunk);
            return !cancelled();
        },
        [this] { return cancelled(); });
    if (cancelled() || ending.succeeded())
        return ending.succeeded();
    if (!ending.exit)
        throw NurvFailure(ending.startFailure);
    appendResultsForSelf(text);
    if (ending.exit->signal != 0)
        throw NurvFailure(killedProgramText(name, ending.exit->signal, title()).trimmed());
    const QString reason = reasonOfFailure(text);
    throw NurvFailure(reason.isEmpty() ? u"%1 failed without a reason"_s.arg(name) : reason);
}

void DVDAuthorTask::compareImage()
{
    showProgress(u"Checking .ISO Image"_s, 0.0);
    int shown = 0;
    const std::optional<QString> fault = DiscImageCheck(imagePath(), discFolder())
                                             .fault(
                                                 [this, &shown](double percent) {
                                                     if (static_cast<int>(percent) <= shown)
                                                         return;
                                                     shown = static_cast<int>(percent);
                                                     showProgress(u"Checking .ISO Image"_s, percent);
                                                 },
                                                 [this] { return cancelled(); });
    if (fault)
        throw NurvFailure(u"image.iso is not what was authored: "_s + *fault);
    if (!flushToDisk(imagePath()))
        throw NurvFailure(u"image.iso could not be written through to the disk: %1"_s.arg(systemErrorText(errno)));
}

/// It is not what was authored, or nobody knows. The program gives the name to whole images only, and to no image where
/// something has it.
void DVDAuthorTask::removeImage()
{
    const FolderEntry image(imagePath());
    const std::optional<struct stat> now = image.facts();
    if (now && isSameFile(*m_madeImage, *now) && !image.remove()) {
        appendResultsForSelf(u"%1 stays there, and is no whole disc: %2\n"_s.arg(imagePath(), systemErrorText(errno)));
        return;
    }
    m_journal->markEnded(imagePath());
}

/// This job's, too.
void DVDAuthorTask::removeDiscFolder()
{
    if (const std::optional<QString> reason = nurv::removeDiscFolder(discFolder()))
        warn(u"%1 stays there: %2"_s.arg(lastPathComponent(discFolder()), *reason));
}

void DVDAuthorTask::processDVDATaskOutput(const QString &chunk)
{
    if (const std::optional<dvda::BegunFile> file = dvda::parseAuthoring(chunk, sourceCount()))
        showProgress(u"Processing: "_s + file->name, file->progress);
}

void DVDAuthorTask::processImageTaskOutput(const QString &chunk)
{
    if (const std::optional<double> percent = mkisofs::parseProgress(chunk))
        showProgress(u"Making .ISO Image: %1%"_s.arg(sixDecimals(*percent)), *percent);
}

void DVDAuthorTask::showProgress(const QString &status, double percent)
{
    setTopTextFieldString(status);
    setProgressIndicatorValue(percent);
    updateStatus();
}

void DVDAuthorTask::stopTask()
{
    dropResultsOfSuccess();
    NURVInProcessTask::stopTask();
    m_claims.clear();
    m_journal.reset();
}

} // namespace nurv
