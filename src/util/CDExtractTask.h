// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"
#include "originals/OutputClaim.h"
#include "programs/Cdda2wav.h"

#include <QHash>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace nurv {

class OutputJournal;

/// Copies a range of tracks of an audio CD into WAV files, with one run of cdda2wav.
///
///     child ──> processTaskOutput(chunk) ──> status line, progress, report, log
///       └─ end ──> cleanup: audio_01.wav is named as its track; disc.log.txt
///
/// Replaces nothing, an older log is moved aside: it fails to start when something has one of the names. What was read
/// stays, also when the program failed or the job was cancelled, and the report tells of it. Lives on the GUI thread.
class CDExtractTask final : public NURVAsyncNSTask {
public:
    CDExtractTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);
    ~CDExtractTask() override;

    // All before the start, with `setDirectory`: the folder of the outputs.

    /// The tracks as the option -t has them: "1+3".
    void setTrackString(const QString &range) { m_trackString = range; }
    /// Whether the program makes one file of them all, which keeps the name that it gives.
    void setOneTrack(bool isOneFile) { m_oneTrack = isOneFile; }
    /// The track files of the disc, renumbered then: the first is that of the range's first track.
    void setFileNames(const QStringList &paths);
    /// Names the log. A disc's name is a stranger's: what no file name can have is replaced, and its length limited.
    void setDiscName(const QString &name);

    [[nodiscard]] const QString &trackString() const { return m_trackString; }
    [[nodiscard]] bool oneTrack() const { return m_oneTrack; }
    [[nodiscard]] const QStringList &fileNames() const { return m_fileNames; }
    /// Of the drive, as the program is told it.
    [[nodiscard]] QString address() const { return cdda2wav::addressOf(arguments()); }
    [[nodiscard]] const QString &discName() const { return m_discName; }
    /// All that the program has told.
    [[nodiscard]] const QString &logOutput() const { return m_logOutput; }

    /// The tracks of the range; 0 when that is none.
    [[nodiscard]] int sourceCount() const override;
    /// Fails when the range is none of the list, or something has the name of an output.
    void startTask() override;

protected:
    void processTaskOutput(const QString &chunk) override;
    void completeStop() override;
    void cleanup() override;
    void finalCleanup() override;

private:
    /// One file that the run makes.
    struct Output {
        QStringList madeNames; ///< absolute: what the program may call it
        QString name;          ///< absolute: what it is called then
        QString source;        ///< the track on the disc
    };

    [[nodiscard]] std::optional<QString> prepare();
    [[nodiscard]] std::optional<QString> claim(const QString &path, const QString &source);
    void beginJournal();
    /// The program has told the summary of the next track.
    void trackEnded();
    [[nodiscard]] bool endedWell() const;
    [[nodiscard]] QString whyItFailed() const;
    void nameOutputs();
    /// Gives the output its name. Returns what it has in the end; empty: it was not made.
    [[nodiscard]] QString nameOutput(const Output &output);
    void checkSound(const QString &path);
    [[nodiscard]] bool removeUnwanted(const QStringList &names);
    void tellOfGap();
    void tell(const QString &line);
    [[nodiscard]] bool moveOlderLogAside() const;
    void writeLog();
    void noteFailure(const QString &reason);
    [[nodiscard]] QString pathOf(const QString &name) const;
    [[nodiscard]] QString logPath() const;

    QString m_trackString;
    QStringList m_fileNames;
    QHash<QString, QString> m_pathOfName; ///< of the renumbered names
    qsizetype m_currentFileIndex = 0;
    QString m_discName;
    QString m_logOutput;
    bool m_oneTrack = false;

    cdda2wav::OutputReader m_reader;
    int m_endedTracks = 0;
    std::vector<Output> m_outputs;
    std::vector<std::unique_ptr<OutputClaim>> m_claims;
    std::shared_ptr<OutputJournal> m_journal; ///< while the job runs
    QStringList m_begunOutputs;               ///< of the journal
};

} // namespace nurv
