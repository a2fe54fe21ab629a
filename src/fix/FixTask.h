// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "checksum/ChecksumList.h"
#include "engine/NURVInProcessTask.h"
#include "fix/FixedFiles.h"
#include "originals/SourceRetirement.h"
#include "programs/FixOrder.h"

#include <QHash>
#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

struct ChildExit;
class FixTab;
class TagsObject;

/// Moves the borders between files of CD quality to borders of sectors: one run of shntool over all of them.
///
///     all outputs are free ──> shntool fix ──> names ──> tags ──> MD5 or FFP lists ──> result text
///         ──> joined outputs = joined sources, silence behind them ──> the sources go, if that was asked for ──> list of the tab
///
/// Sources go together or not at all. Tags that could not be copied are told and no failure; a list that could not be
/// written, or that holds a file which could not be read, is one. After a run that failed or was cancelled no list is
/// written: there is nothing to list.
class FixTask final : public NURVInProcessTask {
public:
    /// `outputFormat`: see shntool::fixArguments. `md5Option`: "No MD5", "1 MD5", "MD5 by disc*", which count for "shn", or
    /// "FFP", which does for "flac". `tab`, which may be null, has its list cleared when the work is over. GUI thread.
    FixTask(NURVTaskQueue *queue, const QStringList &fileNames, const QString &outputFormat, const QString &outputPath,
            const QString &md5Option, int flacLevel, FixTab *tab);

    [[nodiscard]] bool deleteOriginal() const { return m_retirement.wishes().deletesSources; }
    void setDeleteOriginal(bool deleteOriginal);
    /// How much a deletion takes; see SourceRetirement::Wishes.
    void setDeletionNeeds(bool proof, bool metadata);

    [[nodiscard]] QStringList sourcePaths() const override { return m_fileNames; }
    [[nodiscard]] int sourceCount() const override { return static_cast<int>(m_fileNames.size()); }
    [[nodiscard]] NeededPrograms neededPrograms() const override;
    void stopTask() override;

protected:
    [[nodiscard]] std::optional<QString> reasonNotToStart() override;
    void doStartTask() override;
    void afterCompletion() override;

private:
    void work();
    [[nodiscard]] bool doFixCall();
    void takeEnding(const ChildExit &exit);
    void tellFailure(const ChildExit &exit);
    void tellLeft();
    void processTaskOutput(const QString &chunk);
    void copyTags();
    void copyTagsOf(qsizetype place);
    [[nodiscard]] TagsObject getAiffTags(const QString &path) const;
    [[nodiscard]] TagsObject getFlacTags(const QString &path) const;
    void writeLists();
    void handleMD5();
    void doMd5Call(const QString &listName, const QList<qsizetype> &places);
    void doCreateFFP();
    void writeList(const QString &listName, const QString &text);
    [[nodiscard]] bool canList(checksumList::ListKind kind, const QString &path);
    void noteUnlisted(const QString &path, const QString &fault);
    void examine();
    void takeVerdict(const SourceRetirement::Verdict &verdict);
    void deleteSources();
    void noteKept(const QString &reason);
    /// Sets the error flag and tells why: a line without a full stop.
    void failFor(const QString &problem);
    void showProgress(const QString &status, double percent);

    QString m_totalOutput; ///< of shntool, without figures in percent
    QString m_fileName; ///< that is being fixed, without folder and extension
    QString m_md5Option;
    QString m_outputFormat;
    QString m_outputPath;
    QStringList m_fileNames;
    QHash<QString, QString> m_fileNameDictionary; ///< the place of a source from 1 on, by its name less the extension
    int m_flacLevel;
    QPointer<FixTab> m_fixTab; ///< GUI thread
    FixedFiles m_files;
    FixOrder m_order;
    SourceRetirement m_retirement;
    bool m_hasBegun = false;
    bool m_hasMadeAll = false;
};

} // namespace nurv
