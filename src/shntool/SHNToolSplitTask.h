// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shntool/SHNToolEditTask.h"
#include "shntool/SplitPoints.h"

#include <QMap>
#include <QSet>
#include <QString>

#include <optional>

namespace nurv {

/// Splits a file at given points, and gives the pieces the names of their titles.
class SHNToolSplitTask final : public SHNToolEditTask {
public:
    /// `arguments`: see shntool::splitArguments.
    SHNToolSplitTask(NURVTaskQueue *queue, const QString &launchPath, const QStringList &arguments);

    /// The wanted names by those that shntool gives. Before the start.
    void setTrackTitleMap(const QMap<QString, QString> &names) { m_trackTitleMap = names; }
    [[nodiscard]] const QMap<QString, QString> &trackTitleMap() const { return m_trackTitleMap; }
    /// The folder of the pieces.
    void setOutputPath(const QString &folder) { m_outputPath = folder; }
    [[nodiscard]] const QString &outputPath() const { return m_outputPath; }
    /// Keeps the file with the points.
    void setPoints(const SplitPoints &points) { m_points = points; }

protected:
    void showOutput(const QString &chunk) override;
    void willStart() override;
    void findOutputs(Work &work) override;
    void cleanup() override;

private:
    void renamePieces();
    /// The path of that name in the folder of the pieces.
    [[nodiscard]] QString pathOf(const QString &name) const;

    QMap<QString, QString> m_trackTitleMap;
    QString m_outputPath;
    QSet<QString> m_foreign; ///< what had the name of a piece before, which is none of this split
    std::optional<SplitPoints> m_points;
};

} // namespace nurv
