// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "convert/StagedTask.h"

#include "app/PathNames.h"
#include "base/GuiThread.h"
#include "base/Log.h"
#include "base/NurvFailure.h"
#include "base/SystemError.h"
#include "convert/EncodeCoreAudioSync.h"
#include "engine/NURVTaskQueue.h"
#include "files/FileRename.h"
#include "files/FileStatus.h"
#include "journal/NotedTemporary.h"
#include "originals/StageFile.h"
#include "process/ResourceFolder.h"
#include "programs/ExternalPrograms.h"
#include "samples/SoundLength.h"
#include "tags/TagsUnavailable.h"

#include <QFile>

#include <cerrno>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace nurv {

StagedTask::StagedTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath,
                           const QString &extension)
    : NURVInProcessTask(queue), Conversion(*this, fileName), m_outputPath(outputPath),
      m_outFile(nurv::outputPath(outputPath, fileName, extension))
{
}

std::optional<QString> StagedTask::reasonNotToStart()
{
    std::optional<QString> obstacle =
        outputIsSource() ? std::optional(u"its output would replace it"_s) : takeOutput();
    if (!obstacle)
        return std::nullopt;
    noteProblem(*obstacle);
    if (deleteOriginal())
        ownOutcome().original = TaskOutcome::Original::Kept;
    return problemLine(*obstacle);
}

void StagedTask::doStartTask()
{
    m_hasBegun = true;
    showStarted();
    showStatus(openingStatus());
    convert();
}

NeededPrograms StagedTask::neededPrograms() const
{
    NeededPrograms programs = tagPrograms();
    for (const std::optional<ProgramStage> &stage : {decoding(m_outFile), encoding(fileName())}) {
        if (stage)
            programs.add(NeededPrograms::ofStage(*stage));
    }
    return programs;
}

bool StagedTask::decodeTo(const QString &made)
{
    const std::optional<ProgramStage> stage = decoding(made);
    return stage && (made == m_outFile ? runForOutput(*stage) : run(*stage));
}

bool StagedTask::encodeFrom(const QString &input)
{
    const std::optional<ProgramStage> stage = encoding(input);
    return stage && runForOutput(*stage);
}

bool StagedTask::runForOutput(const ProgramStage &stage)
{
    if (cancelled())
        return false;
    beginOutput(stage.replacesOutput);
    if (stage.replacesOutput)
        reserveOutput();
    m_programHasBegun = true;
    return run(stage);
}

bool StagedTask::run(const ProgramStage &stage)
{
    if (cancelled())
        return false;
    QString recent;
    const auto takeText = [&](const QString &chunk) {
        keepForReport(chunk);
        showChunk(stage.parse(chunk));
        // A marker can be spread over two chunks.
        recent += chunk;
        // What it asks about is not its own.
        if (stage.asksToOverwrite && stage.asksToOverwrite(recent)) {
            m_programHasBegun = false;
            m_hasAsked = true;
        }
        if (stage.tellsOfError && stage.tellsOfError(recent))
            setError(true);
        recent = recent.right(programOutput::kLongestErrorMarker);
        return !(stage.stopsOnCancel && cancelled()) && !(stage.stopsOnError && error());
    };
    const std::function<bool()> isUnwanted =
        stage.stopsOnCancel ? [this] { return cancelled(); } : std::function<bool()>();
    ProgramRunSync tool(programPath(stage.name), stage.arguments);
    const ProgramRunSync::Ending ending = tool.run(takeText, isUnwanted);
    takeEnding(stage, ending);
    return ending.succeeded() && !error() && !cancelled();
}

void StagedTask::encodeUnderName(const ProgramStage &stage, const QString &made)
{
    if (cancelled())
        return;
    beginOutput(stage.replacesOutput);
    if (isThere(m_outFile)) {
        disownOutput();
        failWith(problemLine(u"%1 is there already"_s.arg(lastPathComponent(m_outFile))));
        return;
    }
    noteIntermediateBegun();
    const NotedTemporary noted(made);
    const ExternalProgram *const program = findExternalProgram(stage.name);
    const bool isWhole = run(stage);
    if (!isWhole && !(program && program->placesWholeOutput))
        removeHalfMade(made);
    if (isWhole && isThere(made) && !renameToFreeName(QFile::encodeName(made), QFile::encodeName(m_outFile))) {
        const QString problem = u"its output could not get its name: %1"_s.arg(systemErrorText(errno));
        removeHalfMade(made);
        disownOutput();
        noteProblem(problem);
        failWith(problemLine(problem));
    }
    noteIntermediateGone();
}

void StagedTask::takeEnding(const ProgramStage &stage, const ProgramRunSync::Ending &ending)
{
    // No later stage can go on, and what that one would say hides the reason.
    if (!ending.exit)
        throw NurvFailure(ending.startFailure);
    const ExternalProgram *const program = findExternalProgram(stage.name);
    const bool placesWhole = program && program->placesWholeOutput;
    if (ending.wasCutShort() && !placesWhole)
        m_isHalfMade = true;
    // A program that this job ended has not failed.
    if (ending.wasStopped || ending.succeeded() || cancelled())
        return;
    noteDamage(u"its program failed"_s);
    if (m_programHasBegun && program && program->leavesHalfMadeOutput)
        m_isHalfMade = true;
    if (stage.looksAtExitStatus)
        m_failsAtStop = true;
    if (ending.exit->signal != 0) {
        const QString reason = killedProgramText(stage.name, ending.exit->signal, title());
        appendResultsForSelf(reason);
        keepReasonForReport(reason);
    }
}

void StagedTask::checkTemporaryWav(const QString &wav)
{
    if (error() || cancelled())
        return;
    const std::optional<SoundLength> length = soundLength(wav);
    if (!length || !length->declaredFrames || length->heldFrames.value_or(*length->declaredFrames) == *length->declaredFrames)
        return;
    m_isHalfMade = true;
    const QString problem = u"damaged: its header promises %1 samples, its decoder delivers %2"_s
                                .arg(*length->declaredFrames)
                                .arg(*length->heldFrames);
    noteProblem(problem);
    failWith(problemLine(problem));
}

bool StagedTask::convertAudio(const QString &source, const QString &file, FourCharCode formatType,
                              FourCharCode fileType, const AudioEncoderSettings &settings,
                              AudioFileReader::Precision precision)
{
    if (cancelled())
        return false;
    EncodeCoreAudioSync conversion(*this, source, file, formatType, fileType);
    conversion.setBitrate(settings.bitRate);
    conversion.setQuality(settings.quality);
    conversion.setMode(settings.bitRateMode);
    conversion.setMayRound(precision == AudioFileReader::Precision::Rounded);
    conversion.doEncodeCall();
    if (conversion.leavesSoundBehind()) {
        const QString problem =
            u"it has more than one track, or hides a part of its sound: not all of it is in the output"_s;
        doubtSource(problem);
        noteProblem(problem);
        failWith(problemLine(problem));
    }
    if (conversion.failureText().isEmpty())
        return !cancelled();
    m_isHalfMade = true;
    keepReasonForReport(conversion.failureText() + u'\n');
    if (!conversion.obstacle().isEmpty()) {
        noteProblem(conversion.obstacle());
        failWith(problemLine(conversion.obstacle()));
    }
    return false;
}

void StagedTask::convertToOutput(const QString &source, FourCharCode formatType, FourCharCode fileType,
                                 const AudioEncoderSettings &settings)
{
    // Beside the output, so that nobody else's file is cut or mistaken for a finished one.
    StageFile beside(m_outputPath, pathExtension(m_outFile));
    if (!convertAudio(source, beside.path(), formatType, fileType, settings))
        return;
    if (isThere(m_outFile) && (error() || isDamaged())) {
        failWith(u"%1 stays as it was: what was to replace it is not whole\n"_s.arg(m_outFile));
        return;
    }
    beginOutput(true);
    beside.place(m_outFile);
}

void StagedTask::refuseOutputThatBegins(const QByteArray &bytes)
{
    QFile output(m_outFile);
    if (cancelled() || !hasTouchedOutput() || !output.open(QIODevice::ReadOnly) || output.read(bytes.size()) != bytes)
        return;
    output.close();
    removeHalfMade(m_outFile);
    failWith(u"%1: it is no file of the kind that its name says\n"_s.arg(fileName()));
}

void StagedTask::stopTask()
{
    if (m_hasBegun)
        concludeOutput();
    NURVInProcessTask::stopTask();
    dropResultsUnlessFailed();
    releaseOutput();
}

void StagedTask::concludeOutput()
{
    if (m_isHalfMade && m_programHasBegun)
        judgeHalfMadeOutput();
    if (m_failsAtStop && !cancelled())
        setError(true);
    failWithoutOutput();
    try {
        cleanup();
    } catch (const NurvFailure &failure) {
        failWith(failure.reason());
    } catch (const std::exception &failure) {
        failWith(QString::fromUtf8(failure.what()));
    }
    // The output may have gone while its tags were copied.
    failWithoutOutput();
    examineOnce();
    keepOrDropOutput();
}

void StagedTask::failWithoutOutput()
{
    if (!cancelled() && !error() && !hasMadeOutput())
        failWith(u"%1: its program made no output\n"_s.arg(fileName()));
}

void StagedTask::examineOnce()
{
    // While the job is still active: when the application ends meanwhile, the source stays.
    if (std::exchange(m_isExamined, true))
        return;
    noteComplete();
    takeVerdict(examineOutput());
}

void StagedTask::judgeHalfMadeOutput()
{
    // What a program left that did not come to its own end, or that read the half of its
    // input, is no output; what was there before it began is not the program's.
    if (!outputExisted())
        removeHalfMade(m_outFile);
    else if (hasTouchedOutput() && !cancelled())
        failWith(u"%1: what its program left of the output is not whole\n"_s.arg(fileName()));
}

void StagedTask::deleteSourceNow()
{
    examineOnce();
    keepOrDropOutput();
    deleteSourceIfDone();
}

void StagedTask::afterCompletion()
{
    if (!m_hasBegun)
        return;
    const bool wasKeptBefore = outcome().original == TaskOutcome::Original::Kept;
    deleteSourceIfDone();
    if (wasKeptBefore || outcome().original != TaskOutcome::Original::Kept)
        return;
    // The report has been shown already, if there was one.
    postToGuiThread([self = std::static_pointer_cast<StagedTask>(shared_from_this())] {
        if (NURVTaskQueue *const tasks = self->queue())
            tasks->showOutputWindow(self->problemLine(self->outcome().problem + u"; original kept"_s), self->title());
    });
}

/// What a program asks about is not its own.
void StagedTask::noteTagsMissedUnlessAsked()
{
    if (!m_hasAsked)
        noteTagsMissed();
}

void StagedTask::copyTags(const std::function<void()> &copy, const QString &complaint)
{
    // Whatever else has the output's name belongs to someone else.
    if (cancelled())
        noteTagsMissedUnlessAsked();
    if (cancelled() || !hasMadeOutput())
        return;
    const auto complain = [&](const QString &reason) {
        qCWarning(convertLog).noquote() << "Exception" << reason;
        failWith(complaint + reason);
    };
    try {
        checkThatSourceIsThere();
        copy();
    } catch (const TagsUnavailable &failure) {
        qCWarning(convertLog).noquote() << "Tags not copied:" << fileName() << "->" << m_outFile << ':'
                                        << failure.reason();
        noteLostTags(failure.reason());
    } catch (const NurvFailure &failure) {
        complain(failure.reason());
    } catch (const std::exception &failure) {
        complain(QString::fromUtf8(failure.what()));
    }
    if (cancelled())
        noteTagsMissedUnlessAsked();
}

QString StagedTask::report() const
{
    return reportOr(NURVInProcessTask::report());
}

void StagedTask::failWith(const QString &reason)
{
    NURVInProcessTask::failWith(reason);
    keepReasonForReport(reason);
}

} // namespace nurv
