// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "originals/OutputBatch.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace nurv {

class Conversion;
class NURVTaskQueue;

/// The conversions of one press of the button, on their way from a tab to the queue. GUI
/// thread.
class ConversionBatch {
public:
    /// `foldersBelow`: the folder below which those of the outputs are made where they are missing; empty
    /// when none is.
    ConversionBatch(const OriginalsControls &controls, bool deletesOriginals, const QString &foldersBelow);

    /// Takes a conversion in. False: its output exists already and is to be passed over, so
    /// the job is not one of the batch.
    bool add(const std::shared_ptr<Conversion> &conversion);
    [[nodiscard]] bool isEmpty() const { return m_conversions.empty(); }
    /// The sources whose conversions were passed over.
    [[nodiscard]] const QStringList &passedOver() const { return m_passedOver; }

    /// Notes all outputs in a journal and queues the jobs, in the order added.
    void queueTasks(NURVTaskQueue &queue);

private:
    std::shared_ptr<OutputBatch> m_batch = std::make_shared<OutputBatch>();
    std::vector<std::shared_ptr<Conversion>> m_conversions;
    QStringList m_passedOver;
    QSet<QString> m_outputs; ///< folded
    bool m_deletesOriginals;
};

} // namespace nurv
