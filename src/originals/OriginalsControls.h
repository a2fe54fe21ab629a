// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Control.h"

namespace nurv {

/// What becomes of an output's name that a file has already.
enum class ExistingOutputs {
    AsTold,  ///< each kind of job as its program does; what is replaced goes the way of originals
    Refuse,  ///< it stays, and its job fails by name
    Replace, ///< whatever the kind; what is replaced goes the way of originals
    Skip,    ///< it stays, and no job is made
};

/// The options that every tab has which makes files of files and can delete those.
struct OriginalsControls {
    OriginalsControls();
    /// Enables what matters for a deletion, now and whenever the tab's choice changes. The control belongs to the same
    /// tab.
    void follow(CheckControl &deleteOriginals);
    /// Enables what matters for the tab's own two choices, now and whenever they change. The
    /// controls belong to the same tab.
    void follow(CheckControl &deleteOriginals, CheckControl &besideSource);

    /// Originals go only after both sides were decoded again and found equal.
    CheckControl proveButton;
    /// Originals go although the output does not hold all of their tags, pictures, chunks.
    CheckControl dropMetadataButton;
    /// The folders of the sources are made again below the output folder.
    CheckControl keepFoldersButton;
    /// Set by the command line; the window has no control for it.
    ExistingOutputs existingOutputs = ExistingOutputs::AsTold;
};

} // namespace nurv
