// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace nurv {

/// What an edit by shntool would make, told before anything is made: the name of each output and its length, which
/// names are taken, and what is wrong with the wish. Computed from headers and from the points of a split; reads files,
/// writes none. Blocks; any thread.
class EditPreview {
public:
    struct Output {
        QString name;
        QString length;       ///< "3:07.45" as shntool writes it; "up to 3:07.45" where only decoding tells; empty: not known
        QStringList remarks = {}; ///< "exists already", "does not end on a sector boundary" and the like
    };

    /// The edit "trim", "pad", "strip" or "join". `format` is the outputs' extension. Worthless once it was unwanted.
    [[nodiscard]] static EditPreview ofFiles(const QString &edit, const QStringList &sources,
                                             const QString &outputFolder, const QString &format,
                                             const std::function<bool()> &isUnwanted);
    /// The split of a file at the points of a text: a cue sheet or a list. `titles`: see splitTitles::read.
    [[nodiscard]] static EditPreview ofSplit(const QString &source, const QString &points, const QMap<QString, QString> &titles,
                                             const QString &outputFolder, const QString &format);

    [[nodiscard]] const std::vector<Output> &outputs() const { return m_outputs; }
    /// Why the edit would fail, a line each; empty when nothing speaks against it.
    [[nodiscard]] const QStringList &obstacles() const { return m_obstacles; }
    /// Of a split the points that no piece of sound can end at, with the reason; shntool would cut there all the same.
    [[nodiscard]] const QStringList &brokenPoints() const { return m_brokenPoints; }
    /// A table of the outputs, the obstacles below it; ends with a line end.
    [[nodiscard]] QString text() const;

private:
    void add(const QString &name, const QString &length, QStringList remarks, const QString &outputFolder);

    std::vector<Output> m_outputs;
    QSet<QString> m_names; ///< of the outputs
    QStringList m_obstacles;
    QStringList m_brokenPoints;
};

} // namespace nurv
