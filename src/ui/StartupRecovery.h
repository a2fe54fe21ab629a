// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace nurv {

class NURVController;
class UnfinishedWork;

/// At the start of the window: asks once what is to become of what killed runs have left.
///
///     start ──> worker: find ──> ask ──> worker: clean up ──> sources back on their lists
///
/// GUI thread, which never waits for the disk. The controller must outlive it.
class StartupRecovery final : public QObject {
    Q_OBJECT

public:
    explicit StartupRecovery(NURVController &controller, QObject *parent = nullptr);

    /// Returns at once.
    void start();

Q_SIGNALS:
    /// There is nothing more to ask or to do.
    void finished();

private:
    struct Intake {
        QString label; ///< of the page
        QStringList sources;
    };

    void onWorker(const std::function<std::function<void()>()> &work);
    void ask(const UnfinishedWork &work);
    void cleanUp(const UnfinishedWork &work);
    void tell(const UnfinishedWork &done);
    void offer(const QList<Intake> &intakes);

    NURVController &m_controller;
};

} // namespace nurv
