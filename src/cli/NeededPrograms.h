// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

namespace nurv {

/// The programs that a batch starts.
struct NeededPrograms {
    QStringList launched; ///< started from the resource folder
    QStringList helpers;  ///< started by those, found along PATH or there

    void add(const NeededPrograms &other);

    /// A text for each program that is not there: its name, the folder looked in,
    /// the package that provides it. Starts nothing.
    [[nodiscard]] QStringList missing() const;
};

} // namespace nurv
