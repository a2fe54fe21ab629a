// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QSet>
#include <QTimer>

#include <memory>

namespace nurv {

class NURVTask;
class NURVTaskQueue;

/// The rows of the queue's status list. Changes are passed on at most thirty
/// times a second; the last one always is.
class StatusListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        /// Why a job has failed, in one line; empty for any other and until the job is settled.
        ReasonRole = Qt::UserRole,
    };

    /// The queue must outlive the model.
    explicit StatusListModel(NURVTaskQueue &queue, QObject *parent = nullptr);

    /// The job of an index of this model, or nothing.
    [[nodiscard]] static NURVTask *taskAt(const QModelIndex &index);
    /// The same, held.
    [[nodiscard]] std::shared_ptr<NURVTask> task(int row) const;
    /// Whether the job has failed and is done: before that its worker still writes the report.
    [[nodiscard]] static bool hasReport(const NURVTask &task);
    /// What such a job has reported; for a job in a batch, its own part.
    [[nodiscard]] static QString reportOf(const NURVTask &task);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

    /// Passes on what is waiting, now.
    void flush();

Q_SIGNALS:
    void scrollRequested(int row);

private:
    void wake();
    void markChanged(int row);
    void readAnew();
    [[nodiscard]] QString reasonOf(const NURVTask &task) const;
    [[nodiscard]] QString spokenText(const NURVTask &task) const;

    NURVTaskQueue &m_queue;
    QTimer m_timer;
    int m_count = 0;
    int m_firstChanged = -1;
    int m_lastChanged = -1;
    int m_scrollRow = -1;
    QSet<const NURVTask *> m_failed;                    ///< and settled
    mutable QHash<const NURVTask *, QString> m_reasons; ///< of those that were asked for
};

} // namespace nurv
