// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"

#include <optional>
#include <utility>

namespace nurv {

/// A command job whose whole output becomes a file instead of a report: it takes
/// part in no result set at its end, and no output window opens for it.
class NURVAsyncNSTaskFileOutputRedirection : public NURVAsyncNSTask {
public:
    /// `fileName`: the file that receives the output, UTF-8, replaced as a whole.
    NURVAsyncNSTaskFileOutputRedirection(const QString &fileName, NURVTaskQueue *queue, const QString &launchPath,
                                         const QStringList &arguments);

    void startTask() override;

    /// The status line while the program runs.
    [[nodiscard]] const std::optional<QString> &subTitle() const { return m_subTitle; }
    void setSubTitle(std::optional<QString> subTitle) { m_subTitle = std::move(subTitle); }

protected:
    [[nodiscard]] const QString &fileName() const { return m_fileName; }
    void completeStop() override;
    /// The program has written all: before its text is taken for the file.
    virtual void outputEnded() {}
    /// Asked then: whether the file is to be written.
    [[nodiscard]] virtual bool isOutputWanted() const { return true; }
    /// The file could not be written. This one tells the log.
    virtual void couldNotWrite(const QString &problem);

private:
    void writeOutput(const QString &text);

    QString m_fileName;
    std::optional<QString> m_subTitle;
};

} // namespace nurv
