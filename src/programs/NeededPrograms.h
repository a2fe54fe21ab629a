// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace nurv {

struct ProgramStage;

/// The programs that a job or a batch starts. Those of the application itself that
/// nobody could call, such as the reader of tags, are not told.
struct NeededPrograms {
    QStringList launched; ///< started from the resource folder
    QStringList helpers;  ///< started by those, found along PATH or there

    /// What a run of that program with that command line needs.
    [[nodiscard]] static NeededPrograms ofRun(const QString &name, const QStringList &arguments);
    [[nodiscard]] static NeededPrograms ofStage(const ProgramStage &stage);

    void add(const NeededPrograms &other);

    /// A text for each program that is not there: its name, the folder looked in,
    /// the package that provides it. Starts nothing.
    [[nodiscard]] QStringList missing() const;
};

} // namespace nurv
