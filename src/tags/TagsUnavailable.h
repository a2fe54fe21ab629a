// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/NurvFailure.h"

namespace nurv {

/// The tags of a file cannot be had, or nothing can be done with them: its reader refuses it, or the
/// process that does the work did not do it. No file has been changed. A writer that could not write
/// throws a plain NurvFailure.
class TagsUnavailable : public NurvFailure {
public:
    using NurvFailure::NurvFailure;
};

} // namespace nurv
