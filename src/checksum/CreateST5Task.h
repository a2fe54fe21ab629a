// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTaskFileOutputRedirection.h"

namespace nurv {

/// Writes the ST5 list of some files, in their order, as `shntool hash` gives their lines. A file that it cannot read has no
/// line; then, and when the list could not be written, the job ends in error.
class CreateST5Task final : public NURVAsyncNSTaskFileOutputRedirection {
public:
    /// `fileName`: the list, an absolute path. `arguments`: see shntool::hashListArguments.
    using NURVAsyncNSTaskFileOutputRedirection::NURVAsyncNSTaskFileOutputRedirection;

    /// How many of the files are not those that shntool finds by the names: of other folders, or with names that it takes
    /// for options or that no list can hold. Before the start.
    void setStrangers(int count) { m_strangers = count; }
    void startTask() override;

protected:
    void processTaskOutput(const QString &chunk) override;
    void outputEnded() override;
    void cleanup() override;
    void couldNotWrite(const QString &problem) override;

private:
    void takeEntries(const QString &chunk);
    void tellProblem(const QString &problem);

    QString m_unended; ///< the beginning of a line, whose end comes with a later chunk
    int m_lineCount = 0;
    int m_strangers = 0;
};

} // namespace nurv
