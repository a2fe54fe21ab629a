// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTaskFileOutputRedirection.h"
#include "originals/OutputClaim.h"

#include <optional>

#include <sys/stat.h>

namespace nurv {

/// Writes the cue sheet of files that are joined in their order, as shntool gives it. Ends in error, with what shntool
/// said as its report, when that fails or the sheet cannot be written; what has the sheet's name then stays as it is.
class SHNToolCueTask final : public NURVAsyncNSTaskFileOutputRedirection {
public:
    /// `sheet`: the file that the user has chosen, and has seen as it is now.
    SHNToolCueTask(const QString &sheet, NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

    [[nodiscard]] int sourceCount() const override;
    /// Fails when something has the sheet's name that is no file.
    void startTask() override;

protected:
    void outputEnded() override;
    [[nodiscard]] bool isOutputWanted() const override;
    void couldNotWrite(const QString &problem) override;
    void cleanup() override;
    void finalCleanup() override { m_claim.release(); }

private:
    void warnOfCutSources();
    void fail(const QString &problem, const QString &report);
    void openReport();

    [[nodiscard]] bool isSheetAsItWas() const;

    std::optional<struct stat> m_before; ///< what had the sheet's name; nothing: it was free
    OutputClaim m_claim;
    QString m_complaint; ///< what a run said that failed
};

} // namespace nurv
