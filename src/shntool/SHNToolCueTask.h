// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTaskFileOutputRedirection.h"

namespace nurv {

/// Writes the cue sheet of files that are joined in their order, as shntool gives it. Ends in error when it cannot be written.
class SHNToolCueTask final : public NURVAsyncNSTaskFileOutputRedirection {
public:
    using NURVAsyncNSTaskFileOutputRedirection::NURVAsyncNSTaskFileOutputRedirection;

    [[nodiscard]] int sourceCount() const override;

protected:
    void couldNotWrite(const QString &problem) override;
};

} // namespace nurv
