// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>
#include <optional>

class QTemporaryFile;

namespace nurv {

/// The file with the points of a split: a cue sheet or a list, in whatever encoding people have.
class SplitPoints {
public:
    /// Nothing when it cannot be read or is empty, with the reason; the log says so.
    [[nodiscard]] static std::optional<SplitPoints> read(const QString &path, QString *reason);

    [[nodiscard]] const QString &text() const { return m_text; }
    /// The file for the program: the one that was read, or a copy of its text in UTF-8 where the program would see nothing but zeros
    /// between the letters. The copy goes with the last of these objects.
    [[nodiscard]] const QString &path() const { return m_path; }

private:
    QString m_text;
    QString m_path;
    std::shared_ptr<QTemporaryFile> m_copy;
};

} // namespace nurv
