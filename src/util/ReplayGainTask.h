// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"
#include "originals/OutputClaim.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

#include <sys/stat.h>

namespace nurv {

class OutputJournal;

/// One run of metaflac that adds the replay gain of all files, as one album, or removes it.
///
/// Files are written where they are: it does not start while another job works on one of them, nor on a link, nor where
/// the temporary file of metaflac would meet another one. What metaflac has written is read again, whatever it tells.
class ReplayGainTask final : public NURVAsyncNSTask {
public:
    /// `isAdding`: else the tags are removed. Absolute paths of FLAC files.
    ReplayGainTask(NURVTaskQueue *queue, const QString &launchPath, bool isAdding, const QStringList &paths);

    ~ReplayGainTask() override;

    [[nodiscard]] QStringList sourcePaths() const override { return m_paths; }
    [[nodiscard]] int sourceCount() const override { return static_cast<int>(m_paths.size()); }
    [[nodiscard]] QString report() const override { return m_report; }
    void startTask() override;

protected:
    void processTaskOutput(const QString &chunk) override;
    void failWith(const QString &reason) override;
    void completeStop() override;
    void cleanup() override;
    void finalCleanup() override;

private:
    struct Source {
        QString path;
        struct stat before = {};
        bool isWritten = false;
    };

    [[nodiscard]] std::optional<QString> takeAll();
    void examineSources();
    [[nodiscard]] bool isAsTold(const QString &path) const;
    void tellOutcome();
    void removeScratches();

    QStringList m_paths;
    bool m_isAdding;
    std::vector<Source>
        m_sources;            ///< of a job that took all; its worker's between the end of the program and `cleanup`
    QStringList m_wrongNames; ///< of files that are not what they were to become; as `m_sources`
    QString m_report; ///< of a job that failed; nothing shows it on its own
    std::vector<std::unique_ptr<OutputClaim>> m_claims;
    std::shared_ptr<OutputJournal> m_journal; ///< while the job runs
};

} // namespace nurv
