// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "journal/OutputJournal.h"
#include "originals/OriginalsControls.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <atomic>
#include <memory>

namespace nurv {

/// What the jobs of one press of the button have in common. Filled by the tab before any
/// of them starts; read by all of them.
struct OutputBatch {
    /// The source of every output that was begun, by the output's place. GUI thread.
    QHash<QString, QString> sourceOfOutput;
    /// The files that are converted, with their links resolved: no output replaces one.
    QSet<QString> sources;
    /// The names that the batch's outputs are to have, folded: see foldedName.
    QSet<QString> outputs;
    /// Whether the program of a member told of damage and went on: the report is
    /// then shown at the end of the batch, although no job failed. Any thread.
    std::atomic<bool> toldOfDamage = false;

    ExistingOutputs existingOutputs = ExistingOutputs::AsTold;
    bool provesBeforeDeleting = true;
    bool dropsMetadata = false;
    /// Below this folder the folders of the outputs are made where they are missing; empty: none is made.
    QString foldersBelow;
    /// Null in a batch that notes nothing.
    std::shared_ptr<OutputJournal> journal;
};

} // namespace nurv
