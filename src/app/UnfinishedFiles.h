// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <memory>
#include <utility>

namespace nurv {

class NURVController;
class NURVTask;

/// The sources of jobs that failed or were canceled, so that they can be put back into the lists that they came from.
///
///     job added while a tab executes ──> settled: failed or canceled ──> here, until put back or tried again
///
/// Sources that a job has deleted are not among them. GUI thread.
class UnfinishedFiles final : public QObject {
    Q_OBJECT

public:
    /// The controller must outlive it.
    explicit UnfinishedFiles(NURVController &controller, QObject *parent = nullptr);

    [[nodiscard]] qsizetype count() const { return m_files.size(); }
    /// Puts all of them back, and selects the page that those belong to which failed last. While a tab executes, it waits.
    void putBack();

Q_SIGNALS:
    void changed();

private:
    /// The label of the page and the path.
    using Source = std::pair<QString, QString>;

    void taskAdded(int row);
    void taskSettled(const std::shared_ptr<NURVTask> &task);
    void putBackNow();

    NURVController &m_controller;
    // With the bases, as a FileIntake has them.
    QHash<const NURVTask *, QHash<Source, QString>> m_sourcesOfTask; ///< until it is settled
    QHash<Source, QString> m_files;
    QString m_lastLabel; ///< of the page whose files failed last
};

} // namespace nurv
