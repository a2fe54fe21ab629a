// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/AudioEncoder.h"
#include "audio/AudioFileReader.h"
#include "audio/AudioStreamDescription.h"
#include "convert/Conversion.h"
#include "engine/NURVInProcessTask.h"
#include "engine/ProgramRunSync.h"
#include "programs/ProgramStage.h"

#include <QString>

#include <functional>
#include <optional>

namespace nurv {

/// One file converted in stages on a thread of its own: what all conversions have in
/// common that are more than one program's run.
///
///     source ──> [temporary WAV] ──> program, or the audio service ──> output
///                                         └── chunk ──> parser ──> row, report
///     ──> exit status ──> cleanup: tags ──> the output is examined ──> row, queue
///     ──> the source is deleted if that was asked for
///
/// A derived class says in `decoding` and `encoding` which programs there are, in `convert`
/// when they run, and in `cleanup` what else is to be done. No other programs run, so that
/// `neededPrograms` tells the same ones before.
class StagedTask : public NURVInProcessTask, public Conversion {
public:
    [[nodiscard]] QString outputFile() const final { return m_outFile; }
    /// The output folder.
    [[nodiscard]] const QString &outputPath() const { return m_outputPath; }

    [[nodiscard]] NeededPrograms neededPrograms() const final;
    /// Of a job that failed or met damage: the source's path, then the end of what its
    /// programs wrote, then why the job failed.
    [[nodiscard]] QString report() const final;
    void stopTask() final;

protected:
    /// The output is the source's name with `extension`, in `outputPath`. Names the job's row
    /// after the source.
    StagedTask(NURVTaskQueue *queue, const QString &fileName, const QString &outputPath, const QString &extension);

    /// The first status line.
    [[nodiscard]] virtual QString openingStatus() const = 0;
    /// All stages, on the worker. What it throws fails the job.
    virtual void convert() = 0;
    /// After the last stage, when the error flag is final, before the row is painted; on the
    /// worker. Only of a job whose work has begun. What it throws fails the job.
    virtual void cleanup() {}

    /// The program that reads the source, with the file that it makes; nothing: none does.
    /// Asked before the run, too.
    [[nodiscard]] virtual std::optional<ProgramStage> decoding(const QString & /*made*/) const { return {}; }
    /// The program that makes the output, with the file that it reads; nothing: none does.
    /// Asked before the run, too, with the source.
    [[nodiscard]] virtual std::optional<ProgramStage> encoding(const QString & /*input*/) const { return {}; }
    /// What the copying of tags starts.
    [[nodiscard]] virtual NeededPrograms tagPrograms() const { return {}; }

    /// Runs the program of `decoding` to its end and parses what it writes. Nothing runs in a
    /// cancelled job. False: it failed, told of an error, or did not run.
    bool decodeTo(const QString &made);
    /// The same with the one of `encoding`, which makes the output.
    bool encodeFrom(const QString &input);
    /// The same with a program that makes the output, under whatever name it is told.
    bool runForOutput(const ProgramStage &stage);
    /// The same where the program gives what it makes a name of its own, `made`, in the output folder, that this job
    /// has to itself: the output gets its name when it is whole. Nothing is replaced but by `beginOutput`.
    void encodeUnderName(const ProgramStage &stage, const QString &made);
    /// Fails when a temporary WAV that a program has made holds another number of samples
    /// than its header says: a decoder may take the one from its source's header and the
    /// other from its sound, and the next stage reads as far as the header says. A few reads.
    void checkTemporaryWav(const QString &wav);
    /// Converts `source` to `file` by the audio service. A failure sets the error flag.
    /// False: it failed, or the job was cancelled.
    bool convertAudio(const QString &source, const QString &file, FourCharCode formatType, FourCharCode fileType,
                      const AudioEncoderSettings &settings = {},
                      AudioFileReader::Precision precision = AudioFileReader::Precision::Exact);
    /// The same to the job's output. A conversion that fails or is cancelled leaves there
    /// what was there before.
    void convertToOutput(const QString &source, FourCharCode formatType, FourCharCode fileType,
                         const AudioEncoderSettings &settings = {});
    /// Fails and removes the output when it begins with these bytes: a program that goes by
    /// what it is given went the other way.
    void refuseOutputThatBegins(const QByteArray &bytes);
    /// Runs `copy`, which copies tags to the output, if the job has made one and was not
    /// cancelled. Tags that cannot be had are lost tags, and no failure of the job; whatever else `copy`
    /// throws goes to the log, sets the error flag, and is reported behind `complaint`.
    void copyTags(const std::function<void()> &copy,
                  const QString &complaint = QStringLiteral("Error writing tags to file:\n"));
    /// Examines the output and deletes the source, if that was asked for and nothing speaks
    /// against it, before the job stops.
    void deleteSourceNow();

    void doStartTask() final;
    void failWith(const QString &reason) final;
    [[nodiscard]] std::optional<QString> reasonNotToStart() final;
    void afterCompletion() final;

private:
    bool run(const ProgramStage &stage);
    void takeEnding(const ProgramStage &stage, const ProgramRunSync::Ending &ending);
    void concludeOutput();
    void judgeHalfMadeOutput();
    void failWithoutOutput();
    void noteTagsMissedUnlessAsked();
    void examineOnce();

    QString m_outputPath;
    QString m_outFile;
    bool m_hasBegun = false;
    bool m_programHasBegun = false; ///< with the output itself
    bool m_hasAsked = false;
    bool m_isExamined = false;
    bool m_isHalfMade = false;
    bool m_failsAtStop = false;
};

} // namespace nurv
