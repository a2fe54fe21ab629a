// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVInProcessTask.h"
#include "originals/OutputClaim.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <sys/stat.h>

namespace nurv {

class OutputJournal;
class ProgramRunSync;

/// A DVD-Audio disc of files of one format: the image of a disc.
///
///     dvda ──> OUTPUT/DVD-AUDIO, OUTPUT/log.txt ──> mkisofs ──> OUTPUT/image.iso ──> held against the folder
///         ──> the folder goes
///
/// The folder goes only when both programs ended well and the image holds all of it, or when the job is cancelled. An
/// image that does not goes. What is there already under one of the first and the last name stays, and the job does not
/// start.
class DVDAuthorTask final : public NURVInProcessTask {
public:
    /// Absolute paths; the tracks in this order. GUI thread.
    DVDAuthorTask(NURVTaskQueue *queue, const QStringList &fileNames, const QString &outputPath);
    ~DVDAuthorTask() override;

    [[nodiscard]] QStringList sourcePaths() const override { return m_fileNames; }
    [[nodiscard]] int sourceCount() const override { return static_cast<int>(m_fileNames.size()); }
    [[nodiscard]] NeededPrograms neededPrograms() const override { return programsFor(m_fileNames); }
    /// What a disc of these files needs.
    [[nodiscard]] static NeededPrograms programsFor(const QStringList &fileNames);
    void stopTask() override;

protected:
    [[nodiscard]] std::optional<QString> reasonNotToStart() override;
    void doStartTask() override;

private:
    [[nodiscard]] QString discFolder() const;
    [[nodiscard]] QString imagePath() const;
    [[nodiscard]] std::optional<QString> takeAll();
    /// Why nothing can be made under the name.
    [[nodiscard]] static std::optional<QString> obstacleAt(const QString &path);
    /// Throws NurvFailure when the disc was not made whole.
    void makeDisc();
    void authorDisc();
    void makeImage();
    void compareImage();
    void removeImage();
    void removeDiscFolder();
    void tellOfFolder();
    /// Runs it to its end. Returns whether it ended well, or not, since the job was cancelled. Throws NurvFailure when
    /// it failed.
    [[nodiscard]] bool run(ProgramRunSync &program, const QString &name, QString (*reasonOfFailure)(QStringView text),
                           const std::function<void(const QString &chunk)> &takeChunk);
    void processDVDATaskOutput(const QString &chunk);
    void processImageTaskOutput(const QString &chunk);
    void showProgress(const QString &status, double percent);

    QStringList m_fileNames;
    QString m_outputPath;
    std::optional<struct stat> m_madeImage; ///< as the program has left it
    bool m_isImageProven = false; ///< the image holds what the folder does
    std::vector<std::unique_ptr<OutputClaim>> m_claims;
    std::shared_ptr<OutputJournal> m_journal; ///< while the job runs
};

} // namespace nurv
