// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BaseTab.h"
#include "app/Control.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace nurv {

class NURVAsyncNSTask;
class NURVTask;
class NURVTaskQueue;
class NURVTaskResults;

/// The tab that tests lossless files, writes checksum lists and checks such lists.
class ChecksumTab final : public BaseTab {
    Q_OBJECT

public:
    explicit ChecksumTab(NURVController &controller);

    /// What `commandOptions` has, row by row.
    enum Command { VerifyLossless, CreateList, VerifyLists };

    ChoiceControl commandOptions;
    /// The list to create.
    ChoiceControl createChecksumOptions;
    /// The list goes into the folder of the files.
    CheckControl sourceSaveButton;
    /// All three lists in one go replace others without a question. No view has it: that asks.
    CheckControl replaceListsButton;
    /// Lists of other programs are understood, too; kept.
    CheckControl anyListButton;

    void displayRelevantOptions() override;
    void executeCommand() override;
    [[nodiscard]] NeededPrograms neededPrograms() const override;

    /// A list of fingerprints is written at once.
    [[nodiscard]] bool hasWorkedItself() const override { return m_hasWrittenList; }

    // A job for one file, with the set of the batch.
    [[nodiscard]] std::shared_ptr<NURVAsyncNSTask> verifyFlac(const QString &path, const std::shared_ptr<NURVTaskResults> &results,
                                                              NURVTaskQueue *queue) const;
    [[nodiscard]] std::shared_ptr<NURVAsyncNSTask> verifyAPE(const QString &path, const std::shared_ptr<NURVTaskResults> &results,
                                                             NURVTaskQueue *queue) const;
    [[nodiscard]] std::shared_ptr<NURVAsyncNSTask> verifyWavepack(const QString &path,
                                                                  const std::shared_ptr<NURVTaskResults> &results,
                                                                  NURVTaskQueue *queue) const;
    [[nodiscard]] std::shared_ptr<NURVAsyncNSTask> verifyTTA(const QString &path, const std::shared_ptr<NURVTaskResults> &results,
                                                             NURVTaskQueue *queue) const;

    // The job that makes a list of the files; null when the user chose no place for it.
    [[nodiscard]] std::shared_ptr<NURVTask> createMD5(const QStringList &files, NURVTaskQueue *queue, bool sourceSave);
    [[nodiscard]] std::shared_ptr<NURVTask> createST5(const QStringList &files, NURVTaskQueue *queue, bool sourceSave);
    /// All three lists, into the files' folder or one that is asked for.
    [[nodiscard]] std::shared_ptr<NURVTask> createAll(const QStringList &files, NURVTaskQueue *queue, bool sourceSave);

Q_SIGNALS:
    /// Work on this thread begins, and ends: until then no event is handled.
    void longWorkBegan(const QString &what);
    void longWorkEnded();

private:
    using Jobs = std::vector<std::shared_ptr<NURVTask>>;

    [[nodiscard]] Jobs verifyingJobs(const std::shared_ptr<NURVTaskResults> &results) const;
    [[nodiscard]] std::shared_ptr<NURVTask> jobForList(const QString &path, const std::shared_ptr<NURVTaskResults> &results) const;
    [[nodiscard]] std::shared_ptr<NURVTask> jobForFile(const QString &path, const std::shared_ptr<NURVTaskResults> &results) const;
    [[nodiscard]] QStringList filesThat(bool (*isTaken)(const QString &path)) const;
    void queueVerifying();
    void createSelected();
    /// False: the user chose no place.
    [[nodiscard]] bool createFFP(const QStringList &files);
    void writeFFP(const QStringList &files, const QString &listPath);
    /// Whether a list of those files may take that place; why it may not is told.
    [[nodiscard]] bool canBeList(const QString &path, const QStringList &listed);
    /// Whether what stands there may go.
    [[nodiscard]] bool mayReplace(const QStringList &paths);
    /// Where the list is to be; nothing when there is no place, or it is one that no list may take.
    [[nodiscard]] std::optional<QString> listPath(const QStringList &files, bool sourceSave, const QString &nameInFolder,
                                                  const QString &suggestedName, const QString &title);

    bool m_hasWrittenList = false;
};

} // namespace nurv
