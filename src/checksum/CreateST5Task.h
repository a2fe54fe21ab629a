// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTaskFileOutputRedirection.h"

namespace nurv {

/// Writes the ST5 list of some files, in their order, as `shntool hash` gives their lines. A file that it cannot read has no
/// line; then, and when the list could not be written, the job ends in error. A name that is not read back from the list is a
/// warning.
class CreateST5Task final : public NURVAsyncNSTaskFileOutputRedirection {
public:
    /// `fileName`: the list, an absolute path. `arguments`: see shntool::hashListArguments.
    using NURVAsyncNSTaskFileOutputRedirection::NURVAsyncNSTaskFileOutputRedirection;

    /// The files that are not those that shntool finds by their names: of other folders, or with names that no list can
    /// hold, which are not among the arguments. Before the start.
    void setStrangers(const QStringList &paths) { m_strangers = paths; }
    void startTask() override;

protected:
    void processTaskOutput(const QString &chunk) override;
    void outputEnded() override;
    void cleanup() override;
    void couldNotWrite(const QString &problem) override;
    /// The program of a cancelled job runs to its end, and an older list stays.
    [[nodiscard]] bool isOutputWanted() const override { return !cancelled(); }

private:
    void takeEntries(const QString &chunk);
    void openReport();
    void tellProblem(const QString &problem, const QString &details = {});
    [[nodiscard]] QStringList unlisted() const;

    QString m_unended; ///< the beginning of a line, whose end comes with a later chunk
    QStringList m_listed; ///< the names in the list
    QStringList m_strangers;
    QString m_complaints; ///< of shntool, lines
};

} // namespace nurv
