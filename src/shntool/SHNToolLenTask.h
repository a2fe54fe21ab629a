// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/NURVAsyncNSTask.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace nurv {

/// Asks shntool how long files are, and reports it: as shntool's own table, with names instead of paths, or as a set list of
/// numbered tracks and their total.
class SHNToolLenTask final : public NURVAsyncNSTask {
public:
    static const QString kNormal;  ///< "normal len output"
    static const QString kFileset; ///< "show len for fileset"
    static const QString kByDisc;  ///< "show len by disc*"

    /// `arguments`: see shntool::lengthArguments. `lenType`: one of the three; of another there is no report.
    SHNToolLenTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments, const QString &lenType);
    /// With a result set that several jobs share.
    SHNToolLenTask(std::shared_ptr<NURVTaskResults> results, NURVTaskQueue *queue, const QString &launchPath,
                   const QStringList &arguments, const QString &lenType);

    // Before the start.

    /// The tracks' names in their order, instead of those of their files.
    void setTrackNames(const QStringList &names) { m_names = names; }
    /// In characters.
    void setMaxTrackNameLength(int length) { m_maxTrackNameLength = length; }
    void setDiscNumber(const QString &number) { m_discNumber = number; }

    [[nodiscard]] int sourceCount() const override;
    void startTask() override;

    // The reports, of what the program has written so far.

    [[nodiscard]] QString normalSHNLenOutput() const;
    [[nodiscard]] QString lenByFileSetOutput() const;

protected:
    void processTaskOutput(const QString &chunk) override;
    void cleanup() override;

private:
    [[nodiscard]] int toldSources() const;

    QString m_type;
    QString m_output;
    std::optional<QStringList> m_names;
    int m_maxTrackNameLength = 0;
    std::optional<QString> m_discNumber;
};

} // namespace nurv
