// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace nurv {

/// Lays out the lines of a set list after the pattern of the setting "shntoolNamesFormat": "%number. %name %time", in which
/// each of the three stands for a text.
class SHNtoolOutputNamingFormatParser {
public:
    /// Reads the setting.
    SHNtoolOutputNamingFormatParser();
    explicit SHNtoolOutputNamingFormatParser(const QString &pattern);

    /// One line with its line end.
    [[nodiscard]] QString getFormattedLineWithName(const QString &name, const QString &time, const QString &trackNumber) const;
    /// One line with its line end: the total with what is glued to "%time" in the pattern.
    [[nodiscard]] QString getFormattedTotalLine(const QString &time) const;

private:
    QString m_pattern; ///< without slashes at its ends
};

} // namespace nurv
